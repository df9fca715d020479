#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "qelkern/parser.h"
#include "qelkern/value.h"

namespace {

VALUE I(int n) { VALUE v; v = n; return v; }
VALUE D(double d) { VALUE v; v = d; return v; }
VALUE S(const char* s) { VALUE v; v.SetString(s); return v; }
VALUE Tagged(int tag, int payload) { VALUE v; v.type = tag; v.intValue = payload; return v; }

int Truth(const VALUE& v) {
    EXPECT_EQ(v.type, 40);
    return v.intValue;
}

CString Text(const VALUE& v) { return static_cast<CString>(v); }

}  // namespace

TEST(Value, DefaultIsIntegerZero) {
    VALUE v;
    EXPECT_EQ(v.type, 40);
    EXPECT_EQ(v.intValue, 0);
    EXPECT_EQ(v.GetTypeName(), "integer");
    EXPECT_EQ(D(1).GetTypeName(), "double");
    EXPECT_EQ(S("").GetTypeName(), "string");
    EXPECT_EQ(Tagged(0, 0).GetTypeName(), "unbekannt");
    EXPECT_EQ(Tagged(43, 0).GetTypeName(), "array");
    EXPECT_EQ(Tagged(77, 0).GetTypeName(), "unbekannt");
}

TEST(Value, HostTypeNameComesFromTypeTable) {
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
    EXPECT_EQ(static_cast<int>(D(2.7)), 2);
    EXPECT_EQ(static_cast<int>(D(3e9)), INT_MIN);
    EXPECT_EQ(static_cast<int>(D(-3e9)), INT_MIN);
    EXPECT_EQ(static_cast<int>(D(std::nan(""))), INT_MIN);
    EXPECT_EQ(static_cast<int>(D(2147483647.9)), INT_MAX);
    EXPECT_EQ(static_cast<int>(S("  -12.9xyz")), -12);
    EXPECT_DOUBLE_EQ(static_cast<double>(S("3,5")), 3.5);
    EXPECT_DOUBLE_EQ(static_cast<double>(S("kein")), 0.0);
    EXPECT_DOUBLE_EQ(static_cast<double>(I(-4)), -4.0);
    EXPECT_EQ(Text(I(-17)), "-17");
    EXPECT_EQ(Text(D(2.5)), "2.500000");
    EXPECT_EQ(Text(D(-0.0000004)), "-0.000000");
    EXPECT_EQ(Text(S("abc")), "abc");
    EXPECT_EQ(Text(Tagged(0, 9)), "");
    EXPECT_EQ(static_cast<int>(Tagged(60, 9)), 0);
    EXPECT_DOUBLE_EQ(static_cast<double>(Tagged(60, 9)), 0.0);
}

TEST(Value, AdditionFollowsTheWidestOperand) {
    VALUE sum = I(1) + S("a");
    ASSERT_EQ(sum.type, 57);
    EXPECT_EQ(Text(sum), "1a");
    EXPECT_EQ(Text(D(1.5) + S("a")), "1.500000a");
    EXPECT_EQ(Text(S("a") + I(2)), "a2");
    VALUE mixed = I(1) + D(0.5);
    EXPECT_EQ(mixed.type, 41);
    EXPECT_DOUBLE_EQ(mixed.doubleValue, 1.5);
    EXPECT_EQ((I(INT_MAX) + I(1)).intValue, INT_MIN);
    EXPECT_EQ((I(INT_MIN) - I(1)).intValue, INT_MAX);
    EXPECT_EQ((I(65536) * I(65536)).intValue, 0);
    EXPECT_EQ((-I(INT_MIN)).intValue, INT_MIN);
    VALUE up = I(INT_MAX);
    EXPECT_EQ((++up).intValue, INT_MIN);
}

TEST(Value, DivisionAndRemainder) {
    EXPECT_EQ((I(7) / I(2)).intValue, 3);
    EXPECT_EQ((I(-7) / I(2)).intValue, -3);
    VALUE q = I(7) / D(2.0);
    EXPECT_EQ(q.type, 41);
    EXPECT_DOUBLE_EQ(q.doubleValue, 3.5);
    EXPECT_EQ((I(INT_MIN) / I(-1)).intValue, INT_MIN);
    EXPECT_EQ((I(5) / I(0)).intValue, 0);
    EXPECT_EQ((I(-7) % I(2)).intValue, -1);
    EXPECT_EQ((I(INT_MIN) % -1).intValue, 0);
    EXPECT_EQ((I(5) % 0).intValue, 0);
    EXPECT_DOUBLE_EQ((D(7.5) % 2.0).doubleValue, 1.5);
    EXPECT_DOUBLE_EQ((D(-7.5) % 2).doubleValue, 0.5);
}

TEST(Value, StringOperandsWithoutStringResultAreComputedAsNumbers) {
    VALUE difference = I(10) - S("2.5");
    ASSERT_EQ(difference.type, 41);
    EXPECT_DOUBLE_EQ(difference.doubleValue, 7.5);
    VALUE product = S("3") * S("4");
    ASSERT_EQ(product.type, 41);
    EXPECT_DOUBLE_EQ(product.doubleValue, 12.0);
    VALUE quotient = I(1) / S("0");
    ASSERT_EQ(quotient.type, 41);
    EXPECT_TRUE(std::isinf(quotient.doubleValue));
    VALUE stringLeft = S("10") - I(3);
    EXPECT_EQ(stringLeft.type, 40);
    EXPECT_EQ(stringLeft.intValue, 7);
    VALUE negated = -S("3.5");
    ASSERT_EQ(negated.type, 41);
    EXPECT_DOUBLE_EQ(negated.doubleValue, -3.5);
    VALUE remainder = S("7") % 2;
    ASSERT_EQ(remainder.type, 41);
    EXPECT_DOUBLE_EQ(remainder.doubleValue, 1.0);
    VALUE host = Tagged(60, 8) - I(3);
    EXPECT_EQ(host.type, 40) << "the right's tag decides";
    VALUE hostResult = I(3) - Tagged(60, 8);
    EXPECT_EQ(hostResult.type, 60);
    EXPECT_EQ(hostResult.intValue, 0);
}

TEST(Value, RelationsGoByTheLeftTag) {
    EXPECT_EQ(Truth(I(1) == D(1.000001)), 1);
    EXPECT_EQ(Truth(I(1) == D(1.00002)), 0);
    EXPECT_EQ(Truth(I(1) < D(1.5)), 0) << "an integer left truncates the right";
    EXPECT_EQ(Truth(D(1.5) > I(1)), 1);
    EXPECT_EQ(Truth(I(1) <= D(1.9)), 1);
    EXPECT_EQ(Truth(S("10") == I(10)), 1);
    EXPECT_EQ(Truth(I(10) == S("10")), 1);
    EXPECT_EQ(Truth(S("10.0") == I(10)), 0) << "a string left compares texts";
    EXPECT_EQ(Truth(I(10) == S("10.0")), 1) << "a number left compares numbers";
    EXPECT_EQ(Truth(S("abc") < S("abd")), 1);
    EXPECT_EQ(Truth(S("a") < S("B")), 0) << "case-sensitive byte order";
    EXPECT_EQ(Truth(S("\xe4") > S("z")), 1) << "bytes compare unsigned";
    EXPECT_EQ(Truth(S("b") >= S("b")), 1);
    EXPECT_EQ(Truth(I(2) != I(2)), 0);
    EXPECT_EQ(Truth(Tagged(0, 0) == Tagged(0, 0)), 0);
    EXPECT_EQ(Truth(Tagged(0, 0) != Tagged(0, 0)), 1);
    EXPECT_EQ(Truth(Tagged(60, 1) < I(5)), 0);
    double nan = std::nan("");
    EXPECT_EQ(Truth(D(nan) < D(1)), 0);
    EXPECT_EQ(Truth(D(nan) >= D(1)), 0);
    EXPECT_EQ(Truth(D(nan) == D(nan)), 0);
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
    EXPECT_EQ(Text(original), "eins");
    original = original;
    EXPECT_EQ(Text(original), "eins");
    original = 5;
    EXPECT_EQ(Text(copy), "zwei");

    VALUE target = S("alt");
    VALUE source = S("neu");
    CString* text = source.stringValue;
    target.MoveFrom(source);
    EXPECT_EQ(target.stringValue, text) << "a move hands the text over";
    EXPECT_EQ(source.type, 40);
    EXPECT_EQ(source.intValue, 0);

    VALUE fromHost;
    fromHost.type = 57;
    fromHost.stringValue = nullptr;  // tagged before the text was set
    EXPECT_EQ(Text(fromHost), "");
    VALUE copyOfHost(fromHost);
    EXPECT_EQ(Text(copyOfHost), "");
}
