// Number conversions shared by the cell operators, the listing and the
// output operation. Independent of the C locale: a host may have set one
// with a decimal comma, and the engine's texts must not change with it.
#pragma once

#include <cmath>
#include <cstdint>

#include "qelkern/platform.h"

namespace qelkern {

// Numbers closer than this are equal to = and <>, and a double this close
// to 0 is false and no divisor.
constexpr double equalityTolerance = 0.00001;

// Truncates toward zero; NaN and values outside 32 bits give INT32_MIN,
// so no double ever reaches an undefined conversion.
inline int DoubleToInt(double number) {
    if (!(number > -2147483649.0 && number < 2147483648.0)) return INT32_MIN;
    return static_cast<int>(number);
}

// 32-bit arithmetic that wraps instead of overflowing.
inline int WrapAdd(int left, int right) {
    return static_cast<int>(static_cast<uint32_t>(left) + static_cast<uint32_t>(right));
}
inline int WrapSub(int left, int right) {
    return static_cast<int>(static_cast<uint32_t>(left) - static_cast<uint32_t>(right));
}
inline int WrapMul(int left, int right) {
    return static_cast<int>(static_cast<uint32_t>(left) * static_cast<uint32_t>(right));
}
inline int WrapNeg(int number) { return static_cast<int>(0u - static_cast<uint32_t>(number)); }

// A zero divisor gives 0 and INT32_MIN / -1 wraps to INT32_MIN, so a host
// calling the operators directly cannot trap the process.
inline int SafeDiv(int left, int right) {
    if (right == 0) return 0;
    if (right == -1) return WrapNeg(left);
    return left / right;
}
inline int SafeRem(int left, int right) {
    if (right == 0 || right == -1) return 0;
    return left % right;
}

// The text of "%f": six decimals, always a point.
CString FormatFixed(double number);

}  // namespace qelkern
