// Procedures and functions: the head of a routine, its parameter list and
// the frame offsets of its parameters and result, then its own block.
#include "language/productions.h"
#include "machine/debug_info.h"
#include "qelkern/machine.h"

namespace {

// Gives the enclosing routine's EXIT jumps back when a routine's block ends.
class ExitJumps {
public:
    explicit ExitJumps(CParser& owner) : parser(owner), outer(owner.exitList) {
        owner.exitList = &exits;
    }
    ~ExitJumps() { parser.exitList = outer; }
    ExitJumps(const ExitJumps&) = delete;
    ExitJumps& operator=(const ExitJumps&) = delete;

private:
    CParser& parser;
    CUIntArray* outer;
    CUIntArray exits;
};

}  // namespace

// false: an error in the function type, which ends the enclosing block.
bool CParser::RoutineDeclaration() {
    bool isFunction = scanner->sym == symFunction;
    ReadOn();
    if (scanner->sym == symIdent)
        ReadOn();
    else
        err(4);
    Object* routine = NewObj(isFunction ? Func : Proc);
    NewBlock();
    int resultAddress = -1;
    ProcFuncArgumentDeklaration(routine, resultAddress);
    if (isFunction && !FunctionType(routine)) return false;
    routine->procLevel = level - 1;
    routine->entryAddress = generator->Label();
    if (scanner->sym == symSemicolon)
        ReadOn();
    else
        err(5);
    {
        ExitJumps exits(*this);
        if (isFunction) {
            DeclareResultVariable(routine, resultAddress);
            block("func. " + routine->name);
        } else {
            block("proc. " + routine->name);
        }
        if (debugInfo) debugInfo->Routine(*routine, *topScope, generator->Label());
        DoneBlock();
    }
    if (scanner->sym == symSemicolon)
        ReadOn();
    else
        err(5);
    return true;
}

bool CParser::FunctionType(Object* routine) {
    if (scanner->sym != symColon) {
        err("Doppelpunkt nach Funktionsdeklaration erwartet.");
        return false;
    }
    ReadOn();
    if (scanner->sym == symArray) {
        err("Funktionen können nur einfache Datentypen zurückgeben.");
        return false;
    }
    Symbol type;
    if (!GetTyp(type)) {
        err("Funktionstyp erwartet.");
        return false;
    }
    SetDeclaredType(routine, type);
    ReadOn();
    return true;
}

// The result cell, named so that no script identifier can equal it; an
// assignment to the function's name inside its body finds it.
void CParser::DeclareResultVariable(Object* function, int address) {
    CString savedId = scanner->id;
    scanner->id = "(" + function->name;
    Object* result = NewObj(Var);
    scanner->id = savedId;
    result->level = level;
    result->arraySize = 1;
    result->address = address;
    SetDeclaredType(result, function->Type());
}

void CParser::ProcFuncArgumentDeklaration(Object* routine, int& nextAddress) {
    CPtrArray section;
    if (scanner->sym != symLeftParen) {
        err("öffnende Klammer erwartet.");
        return;
    }
    ReadOn();
    // Each pass consumes at least one symbol, so the loop ends at any input.
    while (scanner->sym != symRightParen) {
        if (!ok) return;
        if (scanner->sym != symVar && scanner->sym != symIdent) {
            err(parameterListMessage);
            return;
        }
        int byReference = 0;
        if (scanner->sym == symVar) {
            byReference = 1;
            ReadOn();
        }
        section.RemoveAll();
        ProcFuncVariablenDeklaration(section);
        for (void* item : section) {
            static_cast<Object*>(item)->isReference = byReference;
            routine->parameters.Add(item);
        }
    }
    AssignParameterAddresses(routine, nextAddress);
    ReadOn();
}

// The last parameter ends at -1; an array's address is its size cell, with
// the elements above it.
void CParser::AssignParameterAddresses(Object* routine, int& nextAddress) {
    for (int i = routine->parameters.GetSize() - 1; i >= 0; --i) {
        Object* parameter = ParameterAt(routine, i);
        if (parameter->Type() == symArray && !ClaimCells(nextAddress, -parameter->arraySize))
            return;
        parameter->address = nextAddress;
        if (!ClaimCells(nextAddress, -1)) return;
    }
}

// One section: groups up to a semicolon (read) or the closing parenthesis.
void CParser::ProcFuncVariablenDeklaration(CPtrArray& names) {
    int untypedFrom = names.GetSize();
    for (;;) {
        if (!ok || scanner->sym != symIdent) return;
        Object* parameter = NewObj(Var);
        parameter->level = level;
        ReadOn();
        names.Add(parameter);
        if (scanner->sym == symComma) {
            ReadOn();
        } else {
            if (scanner->sym != symColon) {
                err("Typdeklaration fehlt.");
                return;
            }
            ReadOn();
            Symbol type;
            if (!GetTyp(type)) {
                err("unbekannter Variablentyp");
            } else {
                int size = 0;
                Symbol elementType = symNull;
                if (type == symArray &&
                    !ArrayType(size, elementType,
                               "Array-Definition erwartet INTEGER, DOUBLE ODER STRING."))
                    return;
                for (int i = untypedFrom; i < names.GetSize(); ++i) {
                    Object* named = static_cast<Object*>(names[i]);
                    SetDeclaredType(named, type);
                    named->arraySize = size;
                    named->elementType = elementType;
                }
                untypedFrom = names.GetSize();
                ReadOn();
            }
        }
        Symbol sym = scanner->sym;
        if (sym != symSemicolon && sym != symRightParen && sym != symIdent && sym != symColon) {
            err(parameterListMessage);
            return;
        }
        if (sym == symSemicolon) {
            ReadOn();
            return;
        }
    }
}
