// Fast paths of the dispatch loop: integer and double cells are handled in
// place, without the temporaries of the VALUE operators; every other pair of
// tags falls back to those operators, which define the results.
#pragma once

#include <cmath>
#include <functional>

#include "machine/conversions.h"
#include "qelkern/value.h"

namespace qelkern {

constexpr int tagInteger = 40;
constexpr int tagDouble = 41;
constexpr int tagString = 57;

inline bool IsNumber(const VALUE& v) { return v.type == tagInteger || v.type == tagDouble; }
inline double NumberOf(const VALUE& v) {
    return v.type == tagInteger ? static_cast<double>(v.intValue) : v.doubleValue;
}

inline void SetInt(VALUE& cell, int number) {
    if (cell.type == tagString) {
        cell = number;
        return;
    }
    cell.type = tagInteger;
    cell.intValue = number;
}

inline void SetDouble(VALUE& cell, double number) {
    if (cell.type == tagString) {
        cell = number;
        return;
    }
    cell.type = tagDouble;
    cell.doubleValue = number;
}

// Cell assignment; a text is copied only where one is involved.
inline void Assign(VALUE& target, const VALUE& source) {
    if (target.type != tagString) {
        if (source.type == tagInteger) {
            target.type = tagInteger;
            target.intValue = source.intValue;
            return;
        }
        if (source.type == tagDouble) {
            target.type = tagDouble;
            target.doubleValue = source.doubleValue;
            return;
        }
    }
    target = source;
}

// Truth of JPC and NOT: equal to 0 within the tolerance of the = operator.
inline bool IsZero(const VALUE& v) {
    if (v.type == tagInteger) return v.intValue == 0;
    if (v.type == tagDouble) return std::fabs(v.doubleValue) <= 0.00001;
    return (v == 0).intValue != 0;
}

// Truth of AND and OR: greater than 0.
inline bool IsPositive(const VALUE& v) {
    if (v.type == tagInteger) return v.intValue > 0;
    if (v.type == tagDouble) return v.doubleValue > 0.0;
    VALUE zero;
    return (v > zero).intValue != 0;
}

inline void Add(VALUE& left, const VALUE& right) {
    if (left.type == tagInteger && right.type == tagInteger)
        left.intValue = WrapAdd(left.intValue, right.intValue);
    else if (IsNumber(left) && IsNumber(right))
        SetDouble(left, NumberOf(left) + NumberOf(right));
    else
        left = left + right;
}

inline void Subtract(VALUE& left, const VALUE& right) {
    if (left.type == tagInteger && right.type == tagInteger)
        left.intValue = WrapSub(left.intValue, right.intValue);
    else if (IsNumber(left) && IsNumber(right))
        SetDouble(left, NumberOf(left) - NumberOf(right));
    else
        left = left - right;
}

inline void Multiply(VALUE& left, const VALUE& right) {
    if (left.type == tagInteger && right.type == tagInteger)
        left.intValue = WrapMul(left.intValue, right.intValue);
    else if (IsNumber(left) && IsNumber(right))
        SetDouble(left, NumberOf(left) * NumberOf(right));
    else
        left = left * right;
}

// The divisor has been tested against 0 by the caller.
inline void Divide(VALUE& left, const VALUE& right) {
    if (left.type == tagInteger && right.type == tagInteger)
        left.intValue = SafeDiv(left.intValue, right.intValue);
    else if (IsNumber(left) && IsNumber(right))
        SetDouble(left, NumberOf(left) / NumberOf(right));
    else
        left = left / right;
}

// Relations by the left's tag: an integer left truncates a double right first.
template <class Relation>
inline bool CompareNumbers(VALUE& left, const VALUE& right, Relation relation) {
    bool result;
    if (left.type == tagInteger && right.type == tagInteger)
        result = relation(left.intValue, right.intValue);
    else if (left.type == tagInteger && right.type == tagDouble)
        result = relation(left.intValue, DoubleToInt(right.doubleValue));
    else if (left.type == tagDouble && IsNumber(right))
        result = relation(left.doubleValue, NumberOf(right));
    else
        return false;
    left.type = tagInteger;
    left.intValue = result ? 1 : 0;
    return true;
}

inline void Less(VALUE& left, const VALUE& right) {
    if (!CompareNumbers(left, right, std::less<>())) left = left < right;
}
inline void LessEqual(VALUE& left, const VALUE& right) {
    if (!CompareNumbers(left, right, std::less_equal<>())) left = left <= right;
}
inline void Greater(VALUE& left, const VALUE& right) {
    if (!CompareNumbers(left, right, std::greater<>())) left = left > right;
}
inline void GreaterEqual(VALUE& left, const VALUE& right) {
    if (!CompareNumbers(left, right, std::greater_equal<>())) left = left >= right;
}

inline void Equal(VALUE& left, const VALUE& right, bool negate) {
    bool equal;
    if (IsNumber(left) && IsNumber(right))
        equal = std::fabs(NumberOf(left) - NumberOf(right)) <= 0.00001;
    else
        equal = (left == right).intValue != 0;
    SetInt(left, equal != negate ? 1 : 0);
}

inline void Negate(VALUE& cell) {
    if (cell.type == tagInteger) cell.intValue = WrapNeg(cell.intValue);
    else if (cell.type == tagDouble) cell.doubleValue = -cell.doubleValue;
    else cell = -cell;
}

}  // namespace qelkern
