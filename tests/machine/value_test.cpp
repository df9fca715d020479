#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <iterator>
#include <sstream>
#include <utility>

#include "qelkern/parser.h"
#include "qelkern/value.h"

namespace {

VALUE I(int n) { VALUE v; v = n; return v; }
VALUE D(double d) { VALUE v; v = d; return v; }
VALUE S(const char* s) { VALUE v; v.SetString(s); return v; }
VALUE Tagged(int tag, int payload) { VALUE v; v.type = tag; v.intValue = payload; return v; }

// Tag and contents of a cell: "int 7", "double 7.5", "string 1a", "tag60 0".
std::string Show(const VALUE& v) {
    std::ostringstream out;
    switch (v.type) {
        case 40: out << "int " << v.intValue; break;
        case 41: out << "double " << v.doubleValue; break;
        case 57: out << "string " << static_cast<CString>(v).str(); break;
        default: out << "tag" << v.type << " " << v.intValue; break;
    }
    return out.str();
}

CString Text(const VALUE& v) { return static_cast<CString>(v); }

}  // namespace

TEST(Value, TypeNames) {
    EXPECT_EQ(Show(VALUE()), "int 0");
    EXPECT_EQ(VALUE().GetTypeName(), "integer");
    EXPECT_EQ(D(1).GetTypeName(), "double");
    EXPECT_EQ(S("").GetTypeName(), "string");
    EXPECT_EQ(Tagged(0, 0).GetTypeName(), "unbekannt");
    EXPECT_EQ(Tagged(43, 0).GetTypeName(), "array");
    // A host type's name comes from the type table.
    auto* row = new CPredefinedTyp(61);
    row->name = "farbe";
    PredefinedTypen.Add(row);
    EXPECT_EQ(Tagged(61, 5).GetTypeName(), "farbe");
    EXPECT_EQ(Tagged(62, 5).GetTypeName(), "unbekannt");
    PredefinedTypen.RemoveAt(PredefinedTypen.GetUpperBound());
    delete row;
}

TEST(Value, Conversions) {
    EXPECT_EQ(static_cast<int>(D(-2.7)), -2);
    EXPECT_EQ(static_cast<int>(D(2147483647.9)), INT_MAX);
    for (double outside : {3e9, -3e9, std::nan("")}) EXPECT_EQ(static_cast<int>(D(outside)), INT_MIN);
    EXPECT_EQ(static_cast<int>(S("  -12.9xyz")), -12);
    EXPECT_DOUBLE_EQ(static_cast<double>(S("3,5")), 3.5);
    EXPECT_EQ(Text(D(-0.0000004)), "-0.000000");
    EXPECT_EQ(Text(Tagged(0, 9)), "");
    EXPECT_EQ(static_cast<int>(Tagged(60, 9)), 0);
    EXPECT_DOUBLE_EQ(static_cast<double>(Tagged(60, 9)), 0.0);
}

TEST(Value, Arithmetic) {
    VALUE up = I(INT_MAX);
    const std::pair<VALUE, const char*> cases[] = {
        // + makes a string when either side is one, else follows the widest operand.
        {I(1) + S("a"), "string 1a"}, {D(1.5) + S("a"), "string 1.500000a"}, {S("a") + I(2), "string a2"},
        {S("") + I(INT_MIN), "string -2147483648"}, {I(-40) + S(""), "string -40"},
        {I(1) + D(0.5), "double 1.5"},
        // Integers wrap around; nothing traps.
        {I(INT_MAX) + I(1), "int -2147483648"}, {I(INT_MIN) - I(1), "int 2147483647"},
        {I(65536) * I(65536), "int 0"}, {-I(INT_MIN), "int -2147483648"}, {++up, "int -2147483648"},
        {I(-7) / I(2), "int -3"}, {I(7) / D(2.0), "double 3.5"}, {I(INT_MIN) / I(-1), "int -2147483648"},
        {I(5) / I(0), "int 0"}, {I(-7) % I(2), "int -1"}, {I(INT_MIN) % -1, "int 0"}, {I(5) % 0, "int 0"},
        {D(7.5) % 2.0, "double 1.5"}, {D(-7.5) % 2, "double 0.5"},
        // -, *, / and % with a string but no string result compute the numbers.
        {I(10) - S("2.5"), "double 7.5"}, {S("3") * S("4"), "double 12"}, {I(1) / S("0"), "double inf"},
        {S("10") - I(3), "int 7"}, {-S("3.5"), "double -3.5"}, {S("7") % 2, "double 1"},
        {Tagged(60, 8) - I(3), "int -3"},  // the right's tag decides
        {I(3) - Tagged(60, 8), "tag60 0"},
    };
    for (size_t row = 0; row < std::size(cases); ++row)
        EXPECT_EQ(Show(cases[row].first), cases[row].second) << "row " << row;
}

TEST(Value, RelationsGoByTheLeftTag) {
    const std::pair<VALUE, int> cases[] = {
        {I(1) == D(1.000001), 1}, {I(1) == D(1.00002), 0},  // equal within 0.00001
        {I(1) < D(1.5), 0}, {D(1.5) > I(1), 1}, {I(1) <= D(1.9), 1},  // an integer left truncates the right
        {S("10") == I(10), 1}, {I(10) == S("10"), 1},
        {S("10.0") == I(10), 0},  // a string left compares texts
        {I(10) == S("10.0"), 1},  // a number left compares numbers
        {S("abc") < S("abd"), 1}, {S("b") >= S("b"), 1}, {I(2) != I(2), 0},
        {S("a") < S("B"), 0}, {S("\xe4") > S("z"), 1},  // bytes, unsigned and case-sensitive
        {Tagged(0, 0) == Tagged(0, 0), 0}, {Tagged(0, 0) != Tagged(0, 0), 1}, {Tagged(60, 1) < I(5), 0},
        {D(NAN) < D(1), 0}, {D(NAN) >= D(1), 0}, {D(NAN) == D(NAN), 0},  // NaN is unordered
    };
    for (size_t row = 0; row < std::size(cases); ++row)
        EXPECT_EQ(Show(cases[row].first), "int " + std::to_string(cases[row].second)) << "row " << row;
}

TEST(Value, EveryCopyOwnsItsText) {
    VALUE original = S("eins");
    VALUE copy(original);
    VALUE assigned;
    assigned = original;
    ASSERT_NE(copy.stringValue, original.stringValue);
    ASSERT_NE(assigned.stringValue, original.stringValue);
    *copy.stringValue = "zwei";
    *assigned.stringValue = "drei";
    original = original;
    EXPECT_EQ(Text(original), "eins");
    // Edits through the pointer and growth in place stay in their cell.
    VALUE grown(original);
    grown += S("!");
    grown.stringValue->SetAt(0, 'E');
    VALUE sum = original + I(3);
    sum += sum;
    EXPECT_EQ(Text(original), "eins");
    EXPECT_EQ(Text(grown), "Eins!");
    EXPECT_EQ(Text(sum), "eins3eins3");
    original = 5;
    EXPECT_EQ(Text(copy), "zwei");

    VALUE target = S("alt");
    VALUE source = S("neu");
    CString* text = source.stringValue;
    target.MoveFrom(source);
    EXPECT_EQ(target.stringValue, text) << "a move hands the text over";
    EXPECT_EQ(Show(source), "int 0");

    VALUE fromHost;
    fromHost.type = 57;
    fromHost.stringValue = nullptr;  // tagged before the text was set
    EXPECT_EQ(Text(fromHost), "");
    EXPECT_EQ(Text(VALUE(fromHost)), "");
}
