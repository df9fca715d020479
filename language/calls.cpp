// Calls: the arguments pushed before the transfer, the transfer itself, and
// the clean-up behind it that drops the arguments and copies VAR ones back.
#include "language/productions.h"
#include "qelkern/machine.h"

namespace {

bool PassedAsVariable(const Object* parameter) {
    return parameter->isReference || parameter->Type() == symArray;
}

}  // namespace

// Used by a procedure statement and by a function in a factor; the caller
// reads past the closing parenthesis.
void CParser::RoutineCall(Object* routine) {
    CPtrArray takeBack;
    ProcFuncArgument(routine, takeBack);
    int distance = level - routine->procLevel;
    if (routine->externalRoutine)
        generator->Gen(EXTCALL, distance, reinterpret_cast<intptr_t>(routine->externalRoutine),
                       routine->name);
    else
        generator->Gen(CALL, distance, routine->entryAddress);
    ProcFuncReferenze(routine, takeBack);
}

void CParser::ProcFuncArgument(Object* routine, CPtrArray& list) {
    list.RemoveAll();
    ReadOn();
    if (scanner->sym != symLeftParen) {
        err("öffnende Klammer erwartet.");
        return;
    }
    ReadOn();
    int count = routine->parameters.GetSize();
    for (int i = 0; i < count; ++i) {
        if (!ok) return;
        Object* parameter = ParameterAt(routine, i);
        if (!PassedAsVariable(parameter))
            ValueArgument(routine, parameter);
        else if (!VariableArgument(routine, parameter, list))
            return;
        if (i < count - 1) {
            if (scanner->sym != symComma) {
                err("Komma erwartet.");
                return;
            }
            ReadOn();
        }
    }
    if (scanner->sym != symRightParen) err("schließende Klammer erwartet.");
}

// A host routine reads each argument by the type its EXTERN declaration
// promises, without looking at the tag. A text given for a number becomes
// that number here, and every STRING argument is made a text.
void CParser::ValueArgument(Object* routine, Object* parameter) {
    Symbol wanted = static_cast<Symbol>(parameter->Type());
    Symbol type = expression();
    GenTypeCast(wanted, type);
    if (!routine->externalRoutine || !ok) return;
    if (wanted == symString)
        HostStringCell();
    else if (type == symString)
        generator->Gen(OPR, 0, wanted == symDouble ? oprDoubleCast : oprIntCast);
}

// Appends "" to the cell on top, which makes it a text whatever it held: a
// number, or a cell that the compiler took for a text without it being one
// (an unassigned STRING function, an unset array element, a STRING value
// parameter given a number). A string literal needs nothing.
void CParser::HostStringCell() {
    int last = generator->Label() - 1;
    if (last >= 0) {
        const Instruction& top = generator->interpreter->code[last];
        if (top.f == LIT && top.value.type == symString) return;
    }
    generator->Gen(LIT, 0, StringCell(CString()));
    generator->Gen(OPR, 0, oprPlus);
}

// VAR parameters and arrays take a bare variable of exactly their type.
bool CParser::VariableArgument(Object* routine, Object* parameter, CPtrArray& list) {
    if (scanner->sym != symIdent) {
        err("Variable erwartet.");
        return false;
    }
    Object* variable = FindName(scanner->id);
    if (parameter->isReference) list.Add(variable);
    if (variable->objectClass != Var) {
        err("Variable erwartet.");
        return false;
    }
    if (variable->Type() != parameter->Type()) {
        err("Argument hat falschen Typ.");
        return false;
    }
    bool hostStrings = routine->externalRoutine != nullptr;
    if (variable->Type() == symArray) {
        if (variable->elementType != parameter->elementType) {
            err("Arrayargument hat falschen Typ.");
            return false;
        }
        if (variable->arraySize != parameter->arraySize) {
            err("Arrayargument hat falsche Größe.");
            return false;
        }
        PushArrayCopy(variable, hostStrings && variable->elementType == symString);
    } else {
        generator->Gen(LOD, LevelOf(variable), variable->address);
        if (hostStrings && variable->Type() == symString) HostStringCell();
    }
    ReadOn();
    return true;
}

// The copy is unrolled, two instructions an element. An array that the
// machine's stack could never hold is refused here, before its copy fills
// the code store.
void CParser::PushArrayCopy(Object* variable, bool hostStrings) {
    int size = variable->arraySize;
    if (size >= generator->interpreter->stackLimit) {
        err("Array ist zu gross für einen Aufruf.");
        return;
    }
    generator->Gen(LIT, 0, IntegerCell(size), "Arraygröße");
    for (int index = 0; index < size; ++index) {
        generator->Gen(LIT, 0, IntegerCell(index));
        generator->Gen(LODI, LevelOf(variable), variable->address);
        if (hostStrings) HostStringCell();
    }
}

// Walks the parameters from the last to the first, so each cell is reached
// from the top. Value cells are dropped in runs by one INT each.
void CParser::ProcFuncReferenze(Object* routine, CPtrArray& list) {
    // After an error the list may be short; the code is never run anyway.
    if (!ok) return;
    int dropped = 0;
    int taken = list.GetSize() - 1;
    for (int i = routine->parameters.GetSize() - 1; i >= 0; --i) {
        Object* parameter = ParameterAt(routine, i);
        if (!parameter->isReference) {
            dropped += 1 + (parameter->Type() == symArray ? parameter->arraySize : 0);
            continue;
        }
        if (dropped > 0) {
            generator->Gen(INT, 0, -dropped);
            dropped = 0;
        }
        if (taken < 0) return;
        TakeBack(static_cast<Object*>(list[taken--]));
    }
    if (dropped > 0) generator->Gen(INT, 0, -dropped);
}

void CParser::TakeBack(Object* variable) {
    int distance = LevelOf(variable);
    if (variable->Type() != symArray) {
        generator->Gen(STO, distance, variable->address);
        return;
    }
    for (int index = variable->arraySize - 1; index >= 0; --index) {
        generator->Gen(LIT, 0, IntegerCell(index));
        generator->Gen(SWAP, 0, 0);
        generator->Gen(STOI, distance, variable->address);
    }
    generator->Gen(INT, 0, -1);
}
