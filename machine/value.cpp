#include "qelkern/value.h"

#include <cmath>
#include <cstring>

#include "machine/conversions.h"
#include "qelkern/numbers.h"
#include "qelkern/parser.h"

using qelkern::DoubleToInt;

namespace {

constexpr int tagNone = 0;
constexpr int tagInteger = 40;
constexpr int tagDouble = 41;
constexpr int tagArray = 43;
constexpr int tagString = 57;

constexpr double equalityTolerance = 0.00001;

// A host may tag a cell as string before it sets the pointer; such a cell
// reads as an empty text instead of following a null pointer.
const CString& TextOf(const VALUE& v) {
    static const CString empty;
    return v.stringValue ? *v.stringValue : empty;
}

double NumberOfText(const VALUE& v) {
    char* end = nullptr;
    return zahlAusTerm(TextOf(v), &end);
}

VALUE MakeInt(int number) {
    VALUE v;
    v.intValue = number;
    return v;
}

VALUE MakeDouble(double number) {
    VALUE v;
    v = number;
    return v;
}

VALUE MakeZeroOfTag(int tag) {
    VALUE v;
    v.doubleValue = 0.0;
    v.type = tag;
    return v;
}

VALUE MakeTruth(bool truth) { return MakeInt(truth ? 1 : 0); }

// Result tag of -, * and /: double if the left is double, else the right's tag.
int ArithmeticTag(const VALUE& left, const VALUE& right) {
    return left.type == tagDouble ? tagDouble : right.type;
}

}  // namespace

VALUE::VALUE(const VALUE& other) : CObject(), type(tagInteger), intValue(0) { *this = other; }

VALUE::~VALUE() { Release(); }

void VALUE::Release() {
    if (type == tagString) {
        delete stringValue;
        stringValue = nullptr;
    }
}

VALUE& VALUE::operator=(const VALUE& other) {
    if (this == &other) return *this;
    // The new text is made before the old one goes, so a failed allocation
    // leaves this cell as it was.
    CString* text = other.type == tagString ? new CString(TextOf(other)) : nullptr;
    Release();
    type = other.type;
    switch (other.type) {
        case tagDouble: doubleValue = other.doubleValue; break;
        case tagString: stringValue = text; break;
        case tagNone: doubleValue = 0.0; break;
        default: intValue = other.intValue; break;
    }
    return *this;
}

VALUE& VALUE::operator=(const int& number) {
    Release();
    type = tagInteger;
    intValue = number;
    return *this;
}

VALUE& VALUE::operator=(const double& number) {
    Release();
    type = tagDouble;
    doubleValue = number;
    return *this;
}

void VALUE::SetString(const CString& text) {
    CString* copy = new CString(text);
    Release();
    type = tagString;
    stringValue = copy;
}

void VALUE::MoveFrom(VALUE& other) {
    if (this == &other) return;
    Release();
    type = other.type;
    std::memcpy(static_cast<void*>(&doubleValue), &other.doubleValue, sizeof doubleValue);
    other.type = tagInteger;
    other.doubleValue = 0.0;
}

VALUE::operator int() const {
    switch (type) {
        case tagInteger: return intValue;
        case tagDouble: return DoubleToInt(doubleValue);
        case tagString: return DoubleToInt(NumberOfText(*this));
        default: return 0;
    }
}

VALUE::operator double() const {
    switch (type) {
        case tagInteger: return intValue;
        case tagDouble: return doubleValue;
        case tagString: return NumberOfText(*this);
        default: return 0.0;
    }
}

VALUE::operator CString() const {
    CString text;
    switch (type) {
        case tagInteger: text.Format("%d", intValue); break;
        case tagDouble: text = qelkern::FormatFixed(doubleValue); break;
        case tagString: text = TextOf(*this); break;
        default: break;
    }
    return text;
}

// A string has no negative; its number is negated as a double, so that a
// string cell never exists without a text.
VALUE VALUE::operator-() const {
    switch (type) {
        case tagInteger: return MakeInt(qelkern::WrapNeg(intValue));
        case tagDouble: return MakeDouble(-doubleValue);
        case tagString: return MakeDouble(-NumberOfText(*this));
        default: return MakeZeroOfTag(type);
    }
}

VALUE& VALUE::operator++() {
    if (type == tagInteger) intValue = qelkern::WrapAdd(intValue, 1);
    else if (type == tagDouble) doubleValue += 1.0;
    return *this;
}

VALUE& VALUE::operator--() {
    if (type == tagInteger) intValue = qelkern::WrapSub(intValue, 1);
    else if (type == tagDouble) doubleValue -= 1.0;
    return *this;
}

VALUE VALUE::operator+(VALUE right) const {
    if (type == tagString || right.type == tagString) {
        VALUE result;
        result.SetString(static_cast<CString>(*this) + static_cast<CString>(right));
        return result;
    }
    if (type == tagDouble || right.type == tagDouble)
        return MakeDouble(static_cast<double>(*this) + static_cast<double>(right));
    return MakeInt(qelkern::WrapAdd(static_cast<int>(*this), static_cast<int>(right)));
}

// For -, * and / a string result tag (a string on the right of a non-double)
// has no meaning; such a pair is computed as doubles on the numbers of the
// texts, since a text may hold a fraction.
VALUE VALUE::operator-(VALUE right) const {
    int tag = ArithmeticTag(*this, right);
    if (tag == tagInteger)
        return MakeInt(qelkern::WrapSub(static_cast<int>(*this), static_cast<int>(right)));
    if (tag == tagDouble || tag == tagString)
        return MakeDouble(static_cast<double>(*this) - static_cast<double>(right));
    return MakeZeroOfTag(tag);
}

VALUE VALUE::operator*(VALUE right) const {
    int tag = ArithmeticTag(*this, right);
    if (tag == tagInteger)
        return MakeInt(qelkern::WrapMul(static_cast<int>(*this), static_cast<int>(right)));
    if (tag == tagDouble || tag == tagString)
        return MakeDouble(static_cast<double>(*this) * static_cast<double>(right));
    return MakeZeroOfTag(tag);
}

VALUE VALUE::operator/(VALUE right) const {
    int tag = ArithmeticTag(*this, right);
    if (tag == tagInteger)
        return MakeInt(qelkern::SafeDiv(static_cast<int>(*this), static_cast<int>(right)));
    if (tag == tagDouble || tag == tagString)
        return MakeDouble(static_cast<double>(*this) / static_cast<double>(right));
    return MakeZeroOfTag(tag);
}

// A string on the left takes the double rule on the number of its text.
VALUE VALUE::operator%(VALUE right) const {
    if (type == tagInteger) return MakeInt(qelkern::SafeRem(intValue, static_cast<int>(right)));
    if (type == tagDouble || type == tagString) {
        double left = *this;
        double divisor = right;
        return MakeDouble(left - std::floor(left / divisor) * divisor);
    }
    return MakeZeroOfTag(type);
}

VALUE VALUE::operator%(int right) const { return *this % MakeInt(right); }

VALUE VALUE::operator%(double right) const { return *this % MakeDouble(right); }

namespace {

// -1, 0 or 1 for left against right by the left's tag; nullopt-like 2 when
// the left tag has no order.
constexpr int unordered = 2;

int Order(const VALUE& left, const VALUE& right) {
    auto sign = [](auto a, auto b) { return a < b ? -1 : (b < a ? 1 : 0); };
    switch (left.type) {
        case tagInteger: return sign(left.intValue, static_cast<int>(right));
        case tagDouble: {
            double r = right;
            if (std::isnan(left.doubleValue) || std::isnan(r)) return unordered;
            return sign(left.doubleValue, r);
        }
        case tagString: {
            int c = TextOf(left).str().compare(static_cast<CString>(right).str());
            return c < 0 ? -1 : (c > 0 ? 1 : 0);
        }
        default: return unordered;
    }
}

}  // namespace

VALUE VALUE::operator<(VALUE right) const { return MakeTruth(Order(*this, right) == -1); }

VALUE VALUE::operator<=(VALUE right) const {
    int order = Order(*this, right);
    return MakeTruth(order == -1 || order == 0);
}

VALUE VALUE::operator>(VALUE right) const { return MakeTruth(Order(*this, right) == 1); }

VALUE VALUE::operator>=(VALUE right) const {
    int order = Order(*this, right);
    return MakeTruth(order == 1 || order == 0);
}

VALUE VALUE::operator==(VALUE right) const {
    switch (type) {
        case tagInteger:
        case tagDouble:
            return MakeTruth(std::fabs(static_cast<double>(*this) - static_cast<double>(right)) <=
                             equalityTolerance);
        case tagString: return MakeTruth(TextOf(*this) == static_cast<CString>(right));
        default: return MakeTruth(false);
    }
}

VALUE VALUE::operator==(int right) const { return *this == MakeInt(right); }

VALUE VALUE::operator!=(VALUE right) const {
    return MakeTruth((*this == right).intValue == 0);
}

CString VALUE::GetTypeName() const {
    switch (type) {
        case tagNone: return "unbekannt";
        case tagInteger: return "integer";
        case tagDouble: return "double";
        case tagArray: return "array";
        case tagString: return "string";
        default: break;
    }
    for (const CPredefinedTyp* row : PredefinedTypen)
        if (row && row->symbol == type) return row->name;
    return "unbekannt";
}
