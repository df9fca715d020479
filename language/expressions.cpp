// Expressions: relations and logic, sums, products, factors, array
// elements and HIGH. Each production returns the type it leaves on the stack.
#include "language/productions.h"
#include "qelkern/machine.h"

namespace {

int RelationOperation(Symbol sym) {
    switch (sym) {
    case symEqual: return oprEqual;
    case symNotEqual: return oprNotEqual;
    case symLess: return oprLess;
    case symLessEqual: return oprLessEqual;
    case symGreater: return oprGreater;
    case symGreaterEqual: return oprGreaterEqual;
    default: return -1;
    }
}

int LogicalOperation(Symbol sym) {
    switch (sym) {
    case symBitAnd: return oprBitAnd;
    case symBitOr: return oprBitOr;
    case symAnd: return oprAnd;
    case symOr: return oprOr;
    default: return -1;
    }
}

bool IsBitOperator(Symbol sym) { return sym == symBitAnd || sym == symBitOr; }

}  // namespace

Symbol CParser::expression() {
    if (!ok) return symNull;
    WriteString("expression");
    NestingGuard depth(*this);
    if (scanner->sym == symNot || scanner->sym == symBitNot) return PrefixExpression();
    Symbol type = SimpleExpression();
    int relation = RelationOperation(scanner->sym);
    if (relation >= 0) {
        ReadOn();
        SimpleExpression();
        generator->Gen(OPR, 0, relation);
        return symInteger;
    }
    if (LogicalOperation(scanner->sym) >= 0) return LogicalChain(type);
    return type;
}

// NOT and BITNOT take a SimpleExpression: NOT a = b stops before the "=".
Symbol CParser::PrefixExpression() {
    Symbol op = scanner->sym;
    ReadOn();
    Symbol type = SimpleExpression();
    if (type == symString) {
        err(noStringArithmetic);
        return symString;
    }
    GenTypeCast(symInteger, type);
    generator->Gen(OPR, 0, op == symBitNot ? oprBitNot : oprNot);
    return symInteger;
}

// AND, OR, BITAND and BITOR share one level and group from the left. Both
// operands are always evaluated. A text has no bits, so a string on either
// side of BITAND or BITOR is refused.
Symbol CParser::LogicalChain(Symbol left) {
    Symbol pending = scanner->sym;
    for (;;) {
        bool bitwise = IsBitOperator(pending);
        if (bitwise) GenTypeCast(symInteger, left);
        if (left == symString) {
            err(noStringArithmetic);
            return symString;
        }
        ReadOn();
        Symbol right = SimpleExpression();
        if (bitwise) {
            if (right == symString) {
                err(noStringArithmetic);
                return symString;
            }
            GenTypeCast(symInteger, right);
        }
        generator->Gen(OPR, 0, LogicalOperation(pending));
        left = symInteger;
        pending = scanner->sym;
        if (LogicalOperation(pending) < 0) return symInteger;
    }
}

// A plus with a text on either side makes a text at run time, and the type
// says so; otherwise a DOUBLE operand makes the sum a DOUBLE.
Symbol CParser::SimpleExpression() {
    if (!ok) return symNull;
    WriteString("SimpleExpression");
    Symbol type;
    if (scanner->sym == symPlus || scanner->sym == symMinus) {
        Symbol sign = scanner->sym;
        ReadOn();
        type = term();
        if (sign == symMinus) {
            if (type == symString) {
                err(noStringArithmetic);
                return symString;
            }
            generator->Gen(OPR, 0, oprNegate);
        }
    } else {
        type = term();
    }
    while (scanner->sym == symPlus || scanner->sym == symMinus) {
        Symbol op = scanner->sym;
        if (op == symMinus && type == symString) {
            err(noStringArithmetic);
            return symString;
        }
        ReadOn();
        Symbol right = term();
        if (op == symPlus) {
            if (right == symString)
                type = symString;
            else if (right == symDouble && type != symString)
                type = symDouble;
            generator->Gen(OPR, 0, oprPlus);
        } else {
            if (right == symString && type != symDouble) {
                err(noStringArithmetic);
                return symString;
            }
            if (right == symDouble) type = symDouble;
            generator->Gen(OPR, 0, oprMinus);
        }
    }
    return type;
}

// A text on the right of "*" or "/" is read as a number only behind a DOUBLE.
Symbol CParser::term() {
    if (!ok) return symNull;
    WriteString("term");
    Symbol type = factor();
    while (scanner->sym == symTimes || scanner->sym == symDivide) {
        Symbol op = scanner->sym;
        if (type == symString) {
            err(noStringArithmetic);
            return symString;
        }
        ReadOn();
        Symbol right = factor();
        if (right == symString && type != symDouble) {
            err(noStringArithmetic);
            return symString;
        }
        if (right == symDouble) type = symDouble;
        generator->Gen(OPR, 0, op == symTimes ? oprTimes : oprDivide);
    }
    return type;
}

Symbol CParser::factor() {
    if (!ok) return symNull;
    WriteString("factor");
    Symbol type;
    switch (scanner->sym) {
    case symNumber:
        generator->Gen(LIT, 0, scanner->value);
        type = static_cast<Symbol>(scanner->value.type);
        break;
    case symMinus:
        type = NegativeLiteral();
        if (type == symNull) return symNull;
        break;
    case symIdent:
        type = IdentifierFactor();
        break;
    case symLeftParen:
        ReadOn();
        type = expression();
        if (scanner->sym != symRightParen) {
            err(7);
            return type;
        }
        break;
    case symHigh:
        return High();
    default:
        err(8);
        return symNull;
    }
    ReadOn();
    return type;
}

// "a * -1": a minus inside a term takes a number literal only; a text has
// no negative.
Symbol CParser::NegativeLiteral() {
    ReadOn();
    if (scanner->sym == symNumber && scanner->value.type == symString) {
        err(noStringArithmetic);
        return symNull;
    }
    if (scanner->sym != symNumber || !IsNumericType(scanner->value.type)) {
        err(8);
        return symNull;
    }
    VALUE negative = -scanner->value;
    generator->Gen(LIT, 0, negative);
    return static_cast<Symbol>(negative.type);
}

Symbol CParser::IdentifierFactor() {
    Object* entry = FindName(scanner->id);
    switch (entry->objectClass) {
    case Const:
        generator->Gen(LIT, 0, entry->value);
        return static_cast<Symbol>(entry->Type());
    case Var:
        if (entry->Type() == symArray) {
            ArrayDereferenzierung();
            generator->Gen(LODI, LevelOf(entry), entry->address);
            return entry->elementType;
        }
        generator->Gen(LOD, LevelOf(entry), entry->address);
        return static_cast<Symbol>(entry->Type());
    case Func:
        // The result cell lies below the arguments.
        if (entry->Type() == symInteger)
            generator->Gen(LIT, 0, IntegerCell(0));
        else
            generator->Gen(LIT, 0, DoubleCell(0.0));
        RoutineCall(entry);
        return static_cast<Symbol>(entry->Type());
    default:
        err(21);
        return symNull;
    }
}

// The size cell of an array holds N; HIGH is N - 1, read at run time.
Symbol CParser::High() {
    ReadOn();
    if (scanner->sym != symIdent) {
        err("HIGH erwartet Array-Variable.");
        return symNull;
    }
    Object* entry = FindName(scanner->id);
    if (entry->objectClass != Var || entry->Type() != symArray) {
        err("HIGH erwartet Array-Variable.");
        return symNull;
    }
    generator->Gen(LOD, LevelOf(entry), entry->address);
    generator->Gen(OPR, 0, oprDecrement);
    ReadOn();
    return symInteger;
}

// Leaves the index on the stack and stops on the closing bracket.
void CParser::ArrayDereferenzierung() {
    ReadOn();
    if (scanner->sym != symLeftBracket) {
        err("Array-Dereferenzierung erwartet \"[\".");
        return;
    }
    ReadOn();
    Symbol index = expression();
    if (index != symInteger) {
        err("Array-Index muss eine ganze Zahl sein.");
        return;
    }
    if (scanner->sym != symRightBracket) err("Array-Dereferenzierung erwartet \"]\".");
}
