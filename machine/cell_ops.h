// Fast paths of the dispatch loop: integer and double cells are handled in
// place, without the temporaries of the VALUE operators; every other pair of
// tags falls back to those operators, which define the results.
//
// The Try forms call nothing: they return false, with nothing changed, when
// the tags need the operators or a text would have to be released. The loop
// that runs without calls uses them; the forms without Try complete them.
#pragma once

#include <charconv>
#include <cmath>
#include <functional>

#include "machine/conversions.h"
#include "machine/text_pool.h"
#include "qelkern/value.h"

namespace qelkern {

constexpr int tagInteger = 40;
constexpr int tagDouble = 41;
constexpr int tagString = 57;

inline bool IsNumber(const VALUE& v) { return v.type == tagInteger || v.type == tagDouble; }
inline double NumberOf(const VALUE& v) {
    return v.type == tagInteger ? static_cast<double>(v.intValue) : v.doubleValue;
}

inline bool TrySetInt(VALUE& cell, int number) {
    if (cell.type == tagString) return false;
    cell.type = tagInteger;
    cell.intValue = number;
    return true;
}

inline bool TrySetDouble(VALUE& cell, double number) {
    if (cell.type == tagString) return false;
    cell.type = tagDouble;
    cell.doubleValue = number;
    return true;
}

// A cell that gives up its text hands the string object to the pool.
inline void DropText(VALUE& cell) {
    if (cell.type == tagString && cell.stringValue) ThreadTextPool().Give(cell.stringValue);
    cell.type = tagInteger;
    cell.intValue = 0;
}

inline void SetInt(VALUE& cell, int number) {
    if (!TrySetInt(cell, number)) {
        DropText(cell);
        cell.intValue = number;
    }
}

inline void SetDouble(VALUE& cell, double number) {
    if (!TrySetDouble(cell, number)) {
        DropText(cell);
        cell.type = tagDouble;
        cell.doubleValue = number;
    }
}

// Cell assignment; a text is copied only where one is involved.
inline bool TryAssign(VALUE& target, const VALUE& source) {
    if (target.type == tagString) return false;
    if (source.type == tagInteger) [[likely]] {
        target.type = tagInteger;
        target.intValue = source.intValue;
        return true;
    }
    if (source.type == tagDouble) {
        target.type = tagDouble;
        target.doubleValue = source.doubleValue;
        return true;
    }
    return false;
}

// Both cells hold a text with its string object.
inline bool AreTexts(const VALUE& a, const VALUE& b) {
    return a.type == tagString && b.type == tagString && a.stringValue && b.stringValue;
}

// A text into a cell that holds one: the cell keeps its own string object
// and takes the text into it, so a loop that fills the same cells again and
// again allocates nothing.
inline void Assign(VALUE& target, const VALUE& source) {
    if (TryAssign(target, source)) return;
    // A number over a text: the string object goes to the pool for the
    // next text of a cell rather than to the allocator.
    if (IsNumber(source)) {
        DropText(target);
        TryAssign(target, source);
        return;
    }
    if (AreTexts(target, source)) {
        if (&target != &source) *target.stringValue = *source.stringValue;
        return;
    }
    if (source.type == tagString && source.stringValue && target.type != tagString) {
        target.stringValue = ThreadTextPool().Take(*source.stringValue);
        target.type = tagString;
        return;
    }
    target = source;
}

// Truth of JPC and NOT: equal to 0 within the tolerance of the = operator.
inline bool NumberIsZero(const VALUE& number) {
    return number.type == tagInteger ? number.intValue == 0
                                     : std::fabs(number.doubleValue) <= equalityTolerance;
}

inline bool IsZero(const VALUE& v) {
    if (IsNumber(v)) return NumberIsZero(v);
    return (v == 0).intValue != 0;
}

// Truth of AND and OR: greater than 0.
inline bool NumberIsPositive(const VALUE& number) {
    return number.type == tagInteger ? number.intValue > 0 : number.doubleValue > 0.0;
}

inline bool IsPositive(const VALUE& v) {
    if (IsNumber(v)) return NumberIsPositive(v);
    VALUE zero;
    return (v > zero).intValue != 0;
}

// +, -, * and / on two numbers: integer if both are, else double. The
// divisor of / has been tested against 0 by the caller.
#define QEL_TRY_ARITHMETIC(name, integer, op)                                 \
    inline bool name(VALUE& left, const VALUE& right) {                      \
        if (left.type == tagInteger && right.type == tagInteger) {            \
            left.intValue = integer(left.intValue, right.intValue);           \
        } else if (left.type == tagDouble && right.type == tagDouble) {       \
            left.doubleValue = left.doubleValue op right.doubleValue;         \
        } else if (IsNumber(left) && IsNumber(right)) {                       \
            left.doubleValue = NumberOf(left) op NumberOf(right);             \
            left.type = tagDouble;                                            \
        } else {                                                              \
            return false;                                                     \
        }                                                                     \
        return true;                                                          \
    }
QEL_TRY_ARITHMETIC(TryAdd, WrapAdd, +)
QEL_TRY_ARITHMETIC(TrySubtract, WrapSub, -)
QEL_TRY_ARITHMETIC(TryMultiply, WrapMul, *)
QEL_TRY_ARITHMETIC(TryDivide, SafeDiv, /)
#undef QEL_TRY_ARITHMETIC

// Division where a zero divisor is left to the caller's report.
inline bool TryCheckedDivide(VALUE& left, const VALUE& right) {
    return IsNumber(right) && !NumberIsZero(right) && TryDivide(left, right);
}

// Text + anything: the right's text appended in place, as the + operator
// makes it (a number as its text, any other tag as nothing).
inline bool TryAppend(VALUE& left, const VALUE& right) {
    if (left.type != tagString || !left.stringValue) return false;
    CString& text = *left.stringValue;
    switch (right.type) {
        case tagString:
            if (right.stringValue) text += *right.stringValue;
            break;
        case tagInteger: {
            char digits[16];
            const auto written = std::to_chars(digits, digits + sizeof digits, right.intValue);
            text += CString(digits, static_cast<int>(written.ptr - digits));
            break;
        }
        case tagDouble: text += FormatFixed(right.doubleValue); break;
        default: break;
    }
    return true;
}

// The binary operations on two integers or two doubles, for the fused steps
// that push both operands: what each leaves in the left cell, whose tag the
// caller has set to the operands' one. A relation puts its integer over the
// double that the left cell held, as the plain steps leave it.
template <class IntegerForm, class DoubleForm>
struct ArithmeticPair {
    static constexpr bool known = true;
    static bool Takes(int) { return true; }
    static bool Takes(double) { return true; }
    static int Of(int a, int b) { return IntegerForm()(a, b); }
    static double Of(double a, double b) { return DoubleForm()(a, b); }
    static void Integers(VALUE& left, int a, int b) { left.intValue = Of(a, b); }
    static void Doubles(VALUE& left, double a, double b) { left.doubleValue = Of(a, b); }
};
template <class Relation>
struct RelationPair {
    static constexpr bool known = true;
    static bool Takes(int) { return true; }
    static bool Takes(double) { return true; }
    static void Integers(VALUE& left, int a, int b) { left.intValue = Relation()(a, b) ? 1 : 0; }
    static void Doubles(VALUE& left, double a, double b) {
        left.doubleValue = a;
        left.type = tagInteger;
        left.intValue = Relation()(a, b) ? 1 : 0;
    }
};
struct WrappingPlus { int operator()(int a, int b) const { return WrapAdd(a, b); } };
struct WrappingMinus { int operator()(int a, int b) const { return WrapSub(a, b); } };
struct WrappingTimes { int operator()(int a, int b) const { return WrapMul(a, b); } };
struct IntegerQuotient { int operator()(int a, int b) const { return SafeDiv(a, b); } };
// Equal within the tolerance of the = operator; integers only when equal.
struct Near {
    bool operator()(int a, int b) const { return a == b; }
    bool operator()(double a, double b) const { return std::fabs(a - b) <= equalityTolerance; }
};
struct NotNear {
    template <class Number>
    bool operator()(Number a, Number b) const { return !Near()(a, b); }
};
using PlusPair = ArithmeticPair<WrappingPlus, std::plus<>>;
using MinusPair = ArithmeticPair<WrappingMinus, std::minus<>>;
using TimesPair = ArithmeticPair<WrappingTimes, std::multiplies<>>;
// A zero divisor is left to the plain step's report.
struct DividePair : ArithmeticPair<IntegerQuotient, std::divides<>> {
    static bool Takes(int divisor) { return divisor != 0; }
    static bool Takes(double divisor) { return std::fabs(divisor) > equalityTolerance; }
};
using EqualPair = RelationPair<Near>;
using NotEqualPair = RelationPair<NotNear>;
using LessPair = RelationPair<std::less<>>;
using GreaterEqualPair = RelationPair<std::greater_equal<>>;
using GreaterPair = RelationPair<std::greater<>>;
using LessEqualPair = RelationPair<std::less_equal<>>;
// The logical and bit operations keep to their Try forms.
struct NoPair {
    static constexpr bool known = false;
};
using BitOrPair = NoPair;
using BitAndPair = NoPair;
using OrPair = NoPair;
using AndPair = NoPair;

// c = first; c[1] = second; c = c op c[1], for two integers or two doubles
// and cells above that hold no text. False, with nothing changed, for
// anything else. A second operand in c itself would be the first by then.
template <class Pair>
inline bool TryPushPair(VALUE* c, const VALUE& first, const VALUE& second) {
    if constexpr (!Pair::known) return false;
    else {
        const int tag = first.type;
        if (tag != second.type || c->type == tagString || c[1].type == tagString || &second == c)
            return false;
        if (tag == tagInteger) {
            const int a = first.intValue, b = second.intValue;
            if (!Pair::Takes(b)) return false;
            c[1].type = tagInteger;
            c[1].intValue = b;
            c->type = tagInteger;
            c->intValue = a;
            Pair::Integers(*c, a, b);
            return true;
        }
        if (tag == tagDouble) {
            const double a = first.doubleValue, b = second.doubleValue;
            if (!Pair::Takes(b)) return false;
            c[1].type = tagDouble;
            c[1].doubleValue = b;
            c->type = tagDouble;
            Pair::Doubles(*c, a, b);
            return true;
        }
        return false;
    }
}

// OPR first; OPR then; STO target on three cells of one number tag at the
// top, the divisors not 0: the same cells, and the result in the target.
// False, with nothing changed, for anything else.
template <class First, class Then, class Number>
inline bool TryTwo(const VALUE& c, Number VALUE::*member, VALUE& a, VALUE& b, VALUE& target) {
    if (!First::Takes(c.*member)) return false;
    const Number inner = First::Of(b.*member, c.*member);
    if (!Then::Takes(inner)) return false;
    const Number result = Then::Of(a.*member, inner);
    b.*member = inner;
    a.*member = result;
    target.type = c.type;
    target.*member = result;
    return true;
}

template <class First, class Then>
inline bool TryTwoAndStore(VALUE* top, VALUE& target) {
    VALUE& a = top[-2];
    VALUE& b = top[-1];
    const VALUE& c = top[0];
    const int tag = c.type;
    if (a.type != tag || b.type != tag || target.type == tagString) return false;
    if (tag == tagInteger) return TryTwo<First, Then, int>(c, &VALUE::intValue, a, b, target);
    if (tag == tagDouble) return TryTwo<First, Then, double>(c, &VALUE::doubleValue, a, b, target);
    return false;
}

// The same with the left operand in place below: c = operand; c[-1] op= c.
template <class Pair>
inline bool TryPushOne(VALUE* c, const VALUE& operand) {
    if constexpr (!Pair::known) return false;
    else {
        VALUE& left = c[-1];
        const int tag = left.type;
        if (tag != operand.type || c->type == tagString) return false;
        if (tag == tagInteger) {
            const int a = left.intValue, b = operand.intValue;
            if (!Pair::Takes(b)) return false;
            c->type = tagInteger;
            c->intValue = b;
            Pair::Integers(left, a, b);
            return true;
        }
        if (tag == tagDouble) {
            const double a = left.doubleValue, b = operand.doubleValue;
            if (!Pair::Takes(b)) return false;
            c->type = tagDouble;
            c->doubleValue = b;
            Pair::Doubles(left, a, b);
            return true;
        }
        return false;
    }
}

inline void Add(VALUE& left, const VALUE& right) {
    if (!TryAdd(left, right) && !TryAppend(left, right)) left = left + right;
}
inline void Subtract(VALUE& left, const VALUE& right) {
    if (!TrySubtract(left, right)) left = left - right;
}
inline void Multiply(VALUE& left, const VALUE& right) {
    if (!TryMultiply(left, right)) left = left * right;
}
inline void Divide(VALUE& left, const VALUE& right) {
    if (!TryDivide(left, right)) left = left / right;
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

inline bool TryLess(VALUE& left, const VALUE& right) {
    return CompareNumbers(left, right, std::less<>());
}
inline bool TryLessEqual(VALUE& left, const VALUE& right) {
    return CompareNumbers(left, right, std::less_equal<>());
}
inline bool TryGreater(VALUE& left, const VALUE& right) {
    return CompareNumbers(left, right, std::greater<>());
}
inline bool TryGreaterEqual(VALUE& left, const VALUE& right) {
    return CompareNumbers(left, right, std::greater_equal<>());
}

// Two texts compare byte by byte without a copy of either.
template <class Relation>
inline bool CompareTexts(VALUE& left, const VALUE& right, Relation relation) {
    if (!AreTexts(left, right)) return false;
    const int order = left.stringValue->view().compare(right.stringValue->view());
    SetInt(left, relation(order, 0) ? 1 : 0);
    return true;
}

inline void Less(VALUE& left, const VALUE& right) {
    if (!TryLess(left, right) && !CompareTexts(left, right, std::less<>())) left = left < right;
}
inline void LessEqual(VALUE& left, const VALUE& right) {
    if (!TryLessEqual(left, right) && !CompareTexts(left, right, std::less_equal<>()))
        left = left <= right;
}
inline void Greater(VALUE& left, const VALUE& right) {
    if (!TryGreater(left, right) && !CompareTexts(left, right, std::greater<>())) left = left > right;
}
inline void GreaterEqual(VALUE& left, const VALUE& right) {
    if (!TryGreaterEqual(left, right) && !CompareTexts(left, right, std::greater_equal<>()))
        left = left >= right;
}

// Two integers are within the tolerance of each other only when equal.
inline bool TryEqual(VALUE& left, const VALUE& right, bool negate) {
    bool equal;
    if (left.type == tagInteger && right.type == tagInteger)
        equal = left.intValue == right.intValue;
    else if (IsNumber(left) && IsNumber(right))
        equal = std::fabs(NumberOf(left) - NumberOf(right)) <= equalityTolerance;
    else
        return false;
    left.type = tagInteger;
    left.intValue = equal != negate ? 1 : 0;
    return true;
}
inline bool TryEqual(VALUE& left, const VALUE& right) { return TryEqual(left, right, false); }
inline bool TryNotEqual(VALUE& left, const VALUE& right) { return TryEqual(left, right, true); }

inline void Equal(VALUE& left, const VALUE& right, bool negate) {
    if (TryEqual(left, right, negate)) return;
    const bool equal = AreTexts(left, right) ? *left.stringValue == *right.stringValue
                                             : (left == right).intValue != 0;
    SetInt(left, equal != negate ? 1 : 0);
}
inline void Equal(VALUE& left, const VALUE& right) { Equal(left, right, false); }
inline void NotEqual(VALUE& left, const VALUE& right) { Equal(left, right, true); }

// The compiler casts both operands to integer first, so the tags are not looked at.
inline bool TryBitOr(VALUE& left, const VALUE& right) {
    return TrySetInt(left, left.intValue | right.intValue);
}
inline bool TryBitAnd(VALUE& left, const VALUE& right) {
    return TrySetInt(left, left.intValue & right.intValue);
}
inline void BitOr(VALUE& left, const VALUE& right) {
    SetInt(left, left.intValue | right.intValue);
}
inline void BitAnd(VALUE& left, const VALUE& right) {
    SetInt(left, left.intValue & right.intValue);
}

inline bool TryOr(VALUE& left, const VALUE& right) {
    if (!IsNumber(left) || !IsNumber(right)) return false;
    return TrySetInt(left, (NumberIsPositive(left) || NumberIsPositive(right)) ? 1 : 0);
}
inline bool TryAnd(VALUE& left, const VALUE& right) {
    if (!IsNumber(left) || !IsNumber(right)) return false;
    return TrySetInt(left, (NumberIsPositive(left) && NumberIsPositive(right)) ? 1 : 0);
}
inline void Or(VALUE& left, const VALUE& right) {
    SetInt(left, (IsPositive(left) || IsPositive(right)) ? 1 : 0);
}
inline void And(VALUE& left, const VALUE& right) {
    SetInt(left, (IsPositive(left) && IsPositive(right)) ? 1 : 0);
}

// Operations on one cell.
inline bool TryNegate(VALUE& cell) {
    if (cell.type == tagInteger) cell.intValue = WrapNeg(cell.intValue);
    else if (cell.type == tagDouble) cell.doubleValue = -cell.doubleValue;
    else return false;
    return true;
}
inline void Negate(VALUE& cell) {
    if (!TryNegate(cell)) cell = -cell;
}

inline bool TryStep(VALUE& cell, int by) {
    if (cell.type == tagInteger) cell.intValue = WrapAdd(cell.intValue, by);
    else if (cell.type == tagDouble) cell.doubleValue += by;
    else return false;
    return true;
}
inline bool TryIncrement(VALUE& cell) { return TryStep(cell, 1); }
inline bool TryDecrement(VALUE& cell) { return TryStep(cell, -1); }
inline void Increment(VALUE& cell) {
    if (!TryIncrement(cell)) ++cell;
}
inline void Decrement(VALUE& cell) {
    if (!TryDecrement(cell)) --cell;
}

inline bool TryIntCast(VALUE& cell) {
    if (cell.type == tagDouble) return TrySetInt(cell, DoubleToInt(cell.doubleValue));
    return cell.type == tagInteger;
}
inline void IntCast(VALUE& cell) {
    if (!TryIntCast(cell)) SetInt(cell, static_cast<int>(cell));
}

inline bool TryDoubleCast(VALUE& cell) {
    if (cell.type == tagInteger) return TrySetDouble(cell, cell.intValue);
    return cell.type == tagDouble;
}
inline void DoubleCast(VALUE& cell) {
    if (!TryDoubleCast(cell)) SetDouble(cell, static_cast<double>(cell));
}

inline bool TryBitNot(VALUE& cell) { return TrySetInt(cell, ~cell.intValue); }
inline void BitNot(VALUE& cell) { SetInt(cell, ~cell.intValue); }

inline bool TryNot(VALUE& cell) {
    if (!IsNumber(cell)) return false;
    return TrySetInt(cell, NumberIsZero(cell) ? 1 : 0);
}
inline void Not(VALUE& cell) { SetInt(cell, IsZero(cell) ? 1 : 0); }

}  // namespace qelkern
