#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "qelkern/numbers.h"

namespace {

struct Parsed {
    double value;
    long used;
};

Parsed Text(const char* text) {
    char* end = nullptr;
    double value = zahlAusText(text, &end);
    return {value, static_cast<long>(end - text)};
}

Parsed Term(const char* text) {
    char* end = nullptr;
    double value = zahlAusTerm(text, &end);
    return {value, static_cast<long>(end - text)};
}

}  // namespace

TEST(Numbers, ScriptNumbers) {
    EXPECT_DOUBLE_EQ(Text("1.5").value, 1.5);
    EXPECT_EQ(Text("1.5").used, 3);
    EXPECT_EQ(Text("1.2.3").used, 3) << "the second point is not used";
    EXPECT_DOUBLE_EQ(Text("12.").value, 12.0);
    EXPECT_EQ(Text("12.").used, 3);
    EXPECT_DOUBLE_EQ(Text(".25").value, 0.25);
    EXPECT_EQ(Text("1,5").used, 1) << "no comma in script text";
    EXPECT_EQ(Text(".").used, 0);
    EXPECT_DOUBLE_EQ(Text("0.1").value, 0.1);
    std::string huge(400, '9');
    huge += ".0";
    EXPECT_TRUE(std::isinf(Text(huge.c_str()).value));
    EXPECT_EQ(zahlAusText(nullptr, nullptr), 0.0);
}

TEST(Numbers, TermsOfText) {
    Parsed term = Term("  -3,5e2x");
    EXPECT_DOUBLE_EQ(term.value, -350.0);
    EXPECT_EQ(term.used, 8);
    EXPECT_DOUBLE_EQ(Term("10").value, 10.0);
    EXPECT_DOUBLE_EQ(Term("1.5").value, 1.5);
    EXPECT_DOUBLE_EQ(Term("+.5").value, 0.5);
    EXPECT_DOUBLE_EQ(Term("\t7").value, 7.0);
    Parsed noExponent = Term("2e+");
    EXPECT_DOUBLE_EQ(noExponent.value, 2.0);
    EXPECT_EQ(noExponent.used, 1);
    Parsed none = Term("abc");
    EXPECT_EQ(none.value, 0.0);
    EXPECT_EQ(none.used, 0);
    EXPECT_EQ(Term("-").used, 0);
    EXPECT_EQ(Term(" ,").value, 0.0);
    EXPECT_EQ(Term("inf").value, 0.0) << "only decimal numbers are terms";
    EXPECT_TRUE(std::isinf(Term("1e999").value));
    EXPECT_EQ(Term("1e-999").value, 0.0);
    EXPECT_TRUE(std::isinf(Term("-1e99999999999999999999").value));
    EXPECT_EQ(Term("0e99999").value, 0.0);
    EXPECT_DOUBLE_EQ(Term("0.000001e6").value, 1.0);
}
