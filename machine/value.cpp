#include "qelkern/value.h"

#include <cmath>
#include <cstring>
#include <iterator>
#include <string_view>

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

const CString emptyText;

// A host may tag a cell as string before it sets the pointer; such a cell
// reads as an empty text instead of following a null pointer.
inline const CString& TextOf(const VALUE& v) { return v.stringValue ? *v.stringValue : emptyText; }

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

// Makes `cell` a string owning `text`, whatever it held before.
void AdoptString(VALUE& cell, CString* text) {
    if (cell.type == tagString) delete cell.stringValue;
    cell.type = tagString;
    cell.stringValue = text;
}

// "%d" without the cost of printf: the digits end at `end`.
std::string_view IntegerText(int number, char* end) {
    char* first = end;
    unsigned magnitude = number < 0 ? 0u - static_cast<unsigned>(number) : static_cast<unsigned>(number);
    do *--first = static_cast<char>('0' + magnitude % 10);
    while (magnitude /= 10);
    if (number < 0) *--first = '-';
    return std::string_view(first, static_cast<size_t>(end - first));
}

// The text of a cell as operator CString has it, as a view: a string's own
// characters, an integer's digits in `digits`, other numbers in `room`.
struct TextRoom {
    char digits[16];
    CString text;
};

std::string_view TextView(const VALUE& v, TextRoom& room) {
    if (v.type == tagString) return TextOf(v).view();
    if (v.type == tagInteger) return IntegerText(v.intValue, std::end(room.digits));
    room.text = static_cast<CString>(v);
    return room.text.view();
}

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

VALUE& VALUE::AssignOther(const VALUE& other) {
    if (other.type == tagString) {
        // A cell that holds a string keeps its string object and shares the
        // new text; a new object is made before the old payload goes, so a
        // failed allocation leaves this cell as it was.
        if (type == tagString && stringValue) *stringValue = TextOf(other);
        else AdoptString(*this, new CString(TextOf(other)));
        return *this;
    }
    if (type == tagString) Release();
    type = other.type;
    switch (other.type) {
        case tagDouble: doubleValue = other.doubleValue; break;
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
    if (type == tagString && stringValue) *stringValue = text;
    else AdoptString(*this, new CString(text));
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
        case tagInteger: {
            char digits[16];
            text = CString(IntegerText(intValue, std::end(digits)));
            break;
        }
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

VALUE VALUE::operator+(const VALUE& right) const {
    if (type == tagString || right.type == tagString) {
        VALUE result;
        TextRoom room;
        AdoptString(result, new CString(type == tagString ? TextOf(*this) : static_cast<CString>(*this)));
        result.stringValue->Append(TextView(right, room));
        return result;
    }
    if (type == tagDouble || right.type == tagDouble)
        return MakeDouble(static_cast<double>(*this) + static_cast<double>(right));
    return MakeInt(qelkern::WrapAdd(static_cast<int>(*this), static_cast<int>(right)));
}

VALUE& VALUE::operator+=(const VALUE& right) {
    if (type == tagString && stringValue) {
        TextRoom room;
        stringValue->Append(TextView(right, room));
        return *this;
    }
    return *this = *this + right;
}

// For -, * and / a string result tag (a string on the right of a non-double)
// has no meaning; such a pair is computed as doubles on the numbers of the
// texts, since a text may hold a fraction.
VALUE VALUE::operator-(const VALUE& right) const {
    int tag = ArithmeticTag(*this, right);
    if (tag == tagInteger)
        return MakeInt(qelkern::WrapSub(static_cast<int>(*this), static_cast<int>(right)));
    if (tag == tagDouble || tag == tagString)
        return MakeDouble(static_cast<double>(*this) - static_cast<double>(right));
    return MakeZeroOfTag(tag);
}

VALUE VALUE::operator*(const VALUE& right) const {
    int tag = ArithmeticTag(*this, right);
    if (tag == tagInteger)
        return MakeInt(qelkern::WrapMul(static_cast<int>(*this), static_cast<int>(right)));
    if (tag == tagDouble || tag == tagString)
        return MakeDouble(static_cast<double>(*this) * static_cast<double>(right));
    return MakeZeroOfTag(tag);
}

VALUE VALUE::operator/(const VALUE& right) const {
    int tag = ArithmeticTag(*this, right);
    if (tag == tagInteger)
        return MakeInt(qelkern::SafeDiv(static_cast<int>(*this), static_cast<int>(right)));
    if (tag == tagDouble || tag == tagString)
        return MakeDouble(static_cast<double>(*this) / static_cast<double>(right));
    return MakeZeroOfTag(tag);
}

// A string on the left takes the double rule on the number of its text.
VALUE VALUE::operator%(const VALUE& right) const {
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
            TextRoom room;
            int c = TextOf(left).view().compare(TextView(right, room));
            return c < 0 ? -1 : (c > 0 ? 1 : 0);
        }
        default: return unordered;
    }
}

}  // namespace

VALUE VALUE::operator<(const VALUE& right) const { return MakeTruth(Order(*this, right) == -1); }

VALUE VALUE::operator<=(const VALUE& right) const {
    int order = Order(*this, right);
    return MakeTruth(order == -1 || order == 0);
}

VALUE VALUE::operator>(const VALUE& right) const { return MakeTruth(Order(*this, right) == 1); }

VALUE VALUE::operator>=(const VALUE& right) const {
    int order = Order(*this, right);
    return MakeTruth(order == 1 || order == 0);
}

VALUE VALUE::operator==(const VALUE& right) const {
    switch (type) {
        case tagInteger:
        case tagDouble:
            return MakeTruth(std::fabs(static_cast<double>(*this) - static_cast<double>(right)) <=
                             qelkern::equalityTolerance);
        case tagString: {
            TextRoom room;
            return MakeTruth(TextOf(*this).view() == TextView(right, room));
        }
        default: return MakeTruth(false);
    }
}

VALUE VALUE::operator==(int right) const { return *this == MakeInt(right); }

VALUE VALUE::operator!=(const VALUE& right) const {
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
