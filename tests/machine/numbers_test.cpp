#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "qelkern/numbers.h"

namespace {

struct Case {
    std::string text;
    double value;
    long used;  // characters taken
};

void Check(double (*parse)(const char*, char**), const Case& c) {
    char* end = nullptr;
    double value = parse(c.text.c_str(), &end);
    EXPECT_DOUBLE_EQ(value, c.value) << c.text;
    EXPECT_EQ(end - c.text.c_str(), c.used) << c.text;
}

const double inf = INFINITY;

}  // namespace

TEST(Numbers, ScriptNumbers) {
    const Case cases[] = {
        {"1.5", 1.5, 3}, {"1.2.3", 1.2, 3}, {"12.", 12.0, 3},  {".25", 0.25, 3},
        {"0.1", 0.1, 3}, {"1,5", 1.0, 1},   {".", 0.0, 0},     {std::string(400, '9') + ".0", inf, 402},
    };
    for (const Case& c : cases) Check(zahlAusText, c);
    EXPECT_EQ(zahlAusText(nullptr, nullptr), 0.0);
}

TEST(Numbers, TermsOfText) {
    const Case cases[] = {
        {"  -3,5e2x", -350.0, 8}, {"10", 10.0, 2},       {"1.5", 1.5, 3},         {"+.5", 0.5, 3},
        {"\t7", 7.0, 2},          {"2e+", 2.0, 1},       {"abc", 0.0, 0},         {"-", 0.0, 0},
        {" ,", 0.0, 0},           {"inf", 0.0, 0},       {"1e999", inf, 5},       {"1e-999", 0.0, 6},
        {"0e99999", 0.0, 7},      {"0.000001e6", 1.0, 10}, {"-1e99999999999999999999", -inf, 23},
    };
    for (const Case& c : cases) Check(zahlAusTerm, c);
}
