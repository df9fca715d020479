#include "tests/environment/call_frame.h"

VALUE IntCell(int number) {
    VALUE cell;
    cell = number;
    return cell;
}

VALUE DoubleCell(double number) {
    VALUE cell;
    cell = number;
    return cell;
}

VALUE TextCell(const char* text) {
    VALUE cell;
    cell.SetString(text);
    return cell;
}

CallFrame::CallFrame(int count) : cells(static_cast<size_t>(count), IntCell(7)), callerCells(count) {}

CallFrame& CallFrame::Result() {
    resultIndex = static_cast<int>(cells.size());
    cells.push_back(DoubleCell(0.0));
    return *this;
}

CallFrame& CallFrame::Arg(const VALUE& cell) {
    if (firstArg < 0) firstArg = static_cast<int>(cells.size());
    cells.push_back(cell);
    return *this;
}

int CallFrame::Call(PredefinedRoutine routine) {
    return routine(cells.data(), static_cast<int>(cells.size()) - 1);
}

bool CallFrame::CallerCellsUntouched() const {
    for (int i = 0; i < callerCells; ++i) {
        const VALUE& cell = cells[static_cast<size_t>(i)];
        if (cell.type != 40 || cell.intValue != 7) return false;
    }
    return true;
}
