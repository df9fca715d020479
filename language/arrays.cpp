// Array types: reading ARRAY [N] OF type, and reserving the cells of the
// arrays that a VAR section of a block declares.
#include "language/productions.h"
#include "qelkern/machine.h"

// Reads from ARRAY up to the element type, which stays the current symbol.
// The two callers differ only in the text of the element type message.
bool CParser::ArrayType(int& size, Symbol& elementType, const char* elementTypeMessage) {
    ReadOn();
    if (scanner->sym != symLeftBracket) {
        err("Array-Definition erwartet \"[\" .");
        return false;
    }
    ReadOn();
    if (scanner->sym == symPlus) ReadOn();
    if (scanner->sym != symNumber || scanner->value.type != symInteger ||
        scanner->value.intValue <= 0) {
        err("Arraygröße muss eine ganze Zahl größer Null sein.");
        return false;
    }
    size = scanner->value.intValue;
    ReadOn();
    if (scanner->sym != symRightBracket) {
        err("Array-Definition erwartet \"]\" .");
        return false;
    }
    ReadOn();
    if (scanner->sym != symOf) {
        err("Array-Definition erwartet OF .");
        return false;
    }
    ReadOn();
    Symbol element = scanner->sym;
    if (element != symInteger && element != symDouble && element != symString) {
        err(elementTypeMessage);
        return false;
    }
    elementType = element;
    return true;
}

// A size cell is written by LIT at t + 1, so every cell below it must be
// reserved first: the pending cells go out before the arrays, and a new
// jump skips whatever the block still declares behind them.
bool CParser::ArrayVariables(BlockFrame& frame, CPtrArray& group) {
    int size = 0;
    Symbol elementType = symNull;
    if (!ArrayType(size, elementType, "Array-Definition erwartet INTEGER, DOUBLE oder STRING."))
        return false;
    generator->fixup(frame.openJump);
    ReservePendingCells(frame);
    for (void* item : group) {
        Object* array = static_cast<Object*>(item);
        generator->Gen(LIT, 0, IntegerCell(size), "Arraygröße");
        generator->Gen(INT, 0, size, frame.name);
        SetDeclaredType(array, symArray);
        array->arraySize = size;
        array->elementType = elementType;
        array->address = frame.nextAddress;
        if (!ClaimCells(frame.nextAddress, static_cast<long long>(size) + 1)) return false;
    }
    frame.openJump = generator->Label();
    generator->Gen(JMP, 0, 0);
    return true;
}
