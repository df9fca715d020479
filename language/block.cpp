// A block: its declaration sections, the frame they lay out, and the code
// that reserves and initialises that frame before the block's statement.
#include <climits>

#include "language/productions.h"
#include "qelkern/machine.h"

void CParser::block(CString name) {
    if (!ok) return;
    WriteString("block");
    NestingGuard depth(*this);
    BlockFrame frame;
    frame.name = name;
    frame.openJump = generator->Label();
    generator->Gen(JMP, 0, 0, name);
    if (!Declarations(frame)) return;
    generator->fixup(frame.openJump);
    ReservePendingCells(frame);
    InitialiseVariables(frame);
    statement();
    generator->fixup(exitList, generator->Label());
    generator->Gen(OPR, 0, oprRet);
}

// false: an error that ends the block at once.
bool CParser::Declarations(BlockFrame& frame) {
    for (;;) {
        if (!ok) return false;
        switch (scanner->sym) {
        case symImport:
            if (!Import()) return false;
            break;
        case symTypedef:
            if (!Typedef()) return false;
            break;
        case symExtern:
            if (!ExternDeclaration()) return false;
            break;
        case symConst:
            ConstSection();
            break;
        case symVar:
            if (!VarSection(frame)) return false;
            break;
        case symProcedure:
        case symFunction:
            if (!RoutineDeclaration()) return false;
            break;
        default:
            return true;
        }
    }
}

void CParser::ReservePendingCells(BlockFrame& frame) {
    if (frame.pendingCells > 0) generator->Gen(INT, 0, frame.pendingCells, frame.name);
    frame.pendingCells = 0;
}

// Arrays and TYPEDEF variables keep what their cells hold.
void CParser::InitialiseVariables(const BlockFrame& frame) {
    for (CObject* item : frame.variables) {
        Object* variable = static_cast<Object*>(item);
        switch (variable->Type()) {
        case symInteger:
            generator->Gen(LIT, 0, IntegerCell(0));
            break;
        case symDouble:
            generator->Gen(LIT, 0, DoubleCell(0.0));
            break;
        case symString:
            generator->Gen(LIT, 0, StringCell(CString()));
            break;
        default:
            continue;
        }
        generator->Gen(STO, 0, variable->address);
    }
}

// Moves a frame's next free address on by `cells`. No frame can ever hold
// more cells than an int counts, so that is refused before it wraps.
bool CParser::ClaimCells(int& nextAddress, long long cells) {
    long long moved = static_cast<long long>(nextAddress) + cells;
    if (moved > INT_MAX || moved < INT_MIN) {
        err("Zu viele Speicherzellen in einem Block.");
        return false;
    }
    nextAddress = static_cast<int>(moved);
    return true;
}

void CParser::ConstSection() {
    ReadOn();
    for (;;) {
        ConstDeclaration();
        if (scanner->sym == symComma) {
            ReadOn();
            continue;
        }
        if (scanner->sym == symSemicolon) {
            ReadOn();
            if (scanner->sym == symIdent) continue;
            return;
        }
        err(5);
        return;
    }
}

void CParser::ConstDeclaration() {
    if (!ok) return;
    WriteString("ConstDeclaration");
    if (scanner->sym != symIdent) {
        err(4);
        return;
    }
    ReadOn();
    Symbol declared = symNull;
    bool typed = false;
    if (scanner->sym == symColon) {
        // Reading a type name overwrites `id`, from which NewObj takes the name.
        CString name = scanner->id;
        ReadOn();
        if (GetTyp(declared)) {
            ReadOn();
            typed = true;
        } else {
            err("Typ erwartet");
        }
        scanner->id = name;
    }
    if (scanner->sym != symEqual && scanner->sym != symBecomes) {
        err(3);
        return;
    }
    if (scanner->sym == symBecomes) err(1);
    ReadOn();
    if (scanner->sym == symNumber) {
        Object* constant = NewObj(Const);
        constant->value = scanner->value;
        if (typed) TypeConstant(constant, declared);
    } else if (scanner->sym == symMinus) {
        ReadOn();
        if (scanner->sym != symNumber || !IsNumericType(scanner->value.type)) {
            err(2);
            return;
        }
        // A negative constant keeps the type of its literal.
        Object* constant = NewObj(Const);
        constant->value = -scanner->value;
    } else {
        err(2);
        return;
    }
    ReadOn();
}

// The literal's payload must suit the declared type: a cell tagged STRING
// has to own a text, and a text must never pass for a number. An integer
// under DOUBLE is converted; every other mismatch is refused.
void CParser::TypeConstant(Object* constant, Symbol declared) {
    VALUE& cell = constant->value;
    if (declared == symDouble && cell.type == symInteger) {
        cell = static_cast<double>(cell.intValue);
        return;
    }
    bool fits;
    switch (declared) {
    case symString:
        fits = cell.type == symString;
        break;
    case symDouble:
        fits = cell.type == symDouble;
        break;
    case symArray:
        fits = false;
        break;
    default:  // INTEGER or a TYPEDEF type: an integer payload
        fits = cell.type == symInteger;
        break;
    }
    if (!fits) {
        err("Konstante passt nicht zum Typ.");
        return;
    }
    cell.type = declared;
}

// false: an array error, which ends the block.
bool CParser::VarSection(BlockFrame& frame) {
    CPtrArray group;
    ReadOn();
    for (;;) {
        if (!ok) return false;
        if (scanner->sym != symIdent) {
            if (group.GetSize() > 0) err("Typdeklaration fehlt.");
            return true;
        }
        Object* variable = NewObj(Var);
        frame.variables.Add(variable);
        variable->level = level;
        ReadOn();
        group.Add(variable);
        if (scanner->sym == symComma) {
            ReadOn();
            continue;
        }
        if (scanner->sym != symColon) {
            err("Typdeklaration fehlt.");
            return true;
        }
        ReadOn();
        Symbol type;
        if (!GetTyp(type)) {
            err("unbekannter Variablentyp");
            continue;
        }
        if (type == symArray) {
            if (!ArrayVariables(frame, group)) return false;
        } else {
            for (void* item : group) {
                Object* scalar = static_cast<Object*>(item);
                SetDeclaredType(scalar, type);
                scalar->arraySize = 0;
                scalar->elementType = symNull;
                scalar->address = frame.nextAddress;
                if (!ClaimCells(frame.nextAddress, 1)) return false;
                frame.pendingCells++;
            }
        }
        group.RemoveAll();
        ReadOn();
        if (scanner->sym == symSemicolon) ReadOn();
    }
}
