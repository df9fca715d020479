// A piece of machine stack laid out as EXTCALL hands it to a callback.
#pragma once

#include <vector>

#include "qelkern/qelkern.h"

VALUE IntCell(int number);
VALUE DoubleCell(double number);
VALUE TextCell(const char* text);

class CallFrame {
public:
    // `callerCells` cells of the caller lie below the call, as in a real frame.
    explicit CallFrame(int callerCells = 3);

    // A function's result cell, pushed first, as the compiler does: double 0.0.
    CallFrame& Result();
    CallFrame& Arg(const VALUE& cell);

    // Calls with `top` on the last argument; the routine's return value.
    int Call(PredefinedRoutine routine);

    VALUE& result() { return cells[static_cast<size_t>(resultIndex)]; }
    VALUE& arg(int i) { return cells[static_cast<size_t>(firstArg + i)]; }
    // True if the caller's cells are still integer 7.
    bool CallerCellsUntouched() const;

private:
    std::vector<VALUE> cells;
    int callerCells;
    int resultIndex = -1;
    int firstArg = -1;
};
