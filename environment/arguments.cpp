#include "environment/arguments.h"

#include <algorithm>
#include <charconv>

CString ArgumentText(const VALUE& cell) {
    if (const CString* text = cell.GetStringPtr()) return *text;
    if (cell.type == 57) return CString();  // a string cell without a text object
    return static_cast<CString>(cell);
}

// Cells of TYPEDEF types carry an integer payload under their own tag.
double ArgumentDouble(const VALUE& cell) {
    if (cell.type == 41) return cell.doubleValue;
    if (cell.type == 57) return static_cast<double>(cell);
    return cell.intValue;
}

int ArgumentInt(const VALUE& cell) {
    if (cell.type == 41 || cell.type == 57) return static_cast<int>(cell);
    return cell.intValue;
}

CString FormatFixed(double x, int digits) {
    digits = std::clamp(digits, 0, maxFixedDigits);
    // 309 integer digits, sign, point and the decimals fit with room to spare.
    char buffer[400];
    auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, x,
                                      std::chars_format::fixed, digits);
    if (error != std::errc()) return CString();
    return CString(buffer, static_cast<int>(end - buffer));
}
