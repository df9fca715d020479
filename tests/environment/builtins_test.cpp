// The built-in routines, called directly on a stack laid out as the machine
// lays it out.
#include <clocale>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "environment/basis_routines.h"
#include "support/test_support.h"
#include "tests/environment/call_frame.h"

namespace {

double DoubleOf(PredefinedRoutine routine, double x) {
    CallFrame frame;
    frame.Result().Arg(DoubleCell(x));
    EXPECT_EQ(frame.Call(routine), 1);
    EXPECT_EQ(frame.result().type, 41);
    EXPECT_TRUE(frame.CallerCellsUntouched());
    return frame.result().doubleValue;
}

CString StrOf(const VALUE& x, const VALUE& digits) {
    CallFrame frame;
    frame.Result().Arg(x).Arg(digits);
    EXPECT_EQ(frame.Call(BasisRoutinen::str), 1);
    EXPECT_TRUE(frame.CallerCellsUntouched());
    const CString* text = frame.result().GetStringPtr();
    return text ? *text : CString("<kein Text>");
}

double ValOf(const VALUE& argument) {
    CallFrame frame;
    frame.Result().Arg(argument);
    EXPECT_EQ(frame.Call(BasisRoutinen::val), 1);
    EXPECT_EQ(frame.result().type, 41);
    return frame.result().doubleValue;
}

}  // namespace

TEST(BasisRoutinen, AnglesUseTheElevenDecimalPi) {
    EXPECT_NEAR(DoubleOf(BasisRoutinen::sin, 180), -2.07e-13, 0.005e-13);
    EXPECT_NEAR(DoubleOf(BasisRoutinen::cos, 90), -1.035e-13, 0.005e-13);
    const double tan90 = DoubleOf(BasisRoutinen::tan, 90);
    EXPECT_TRUE(std::isfinite(tan90));
    EXPECT_NEAR(tan90, -9.65e12, 0.02e12);
    const double tan45 = DoubleOf(BasisRoutinen::tan, 45);
    EXPECT_GT(tan45, 1.0);
    EXPECT_NEAR(tan45, 1.0000000000001, 1e-14);
    EXPECT_NEAR(DoubleOf(BasisRoutinen::sin, 30), 0.5, 1e-12);
    EXPECT_NEAR(DoubleOf(BasisRoutinen::cos, -60), 0.5, 1e-12);
}

TEST(BasisRoutinen, SqrAbsAndSign) {
    EXPECT_EQ(DoubleOf(BasisRoutinen::sqr, -3), 9.0);
    EXPECT_EQ(DoubleOf(BasisRoutinen::abs, -2.5), 2.5);
    EXPECT_EQ(DoubleOf(BasisRoutinen::abs, 2.5), 2.5);

    EXPECT_EQ(DoubleOf(BasisRoutinen::sign, -1), -1.0);
    EXPECT_EQ(DoubleOf(BasisRoutinen::sign, 1), 1.0);
    EXPECT_EQ(DoubleOf(BasisRoutinen::sign, -0.0002), -1.0);
    EXPECT_EQ(DoubleOf(BasisRoutinen::sign, 0.0002), 1.0);
    // The band round zero is symmetric, its edges belong to it.
    EXPECT_EQ(DoubleOf(BasisRoutinen::sign, 0), 0.0);
    EXPECT_EQ(DoubleOf(BasisRoutinen::sign, 0.00005), 0.0);
    EXPECT_EQ(DoubleOf(BasisRoutinen::sign, -0.00005), 0.0);
    EXPECT_EQ(DoubleOf(BasisRoutinen::sign, -0.0001), 0.0);
    EXPECT_EQ(DoubleOf(BasisRoutinen::sign, 0.0001), 0.0);
    EXPECT_EQ(DoubleOf(BasisRoutinen::sign, std::numeric_limits<double>::quiet_NaN()), 0.0);
}

TEST(BasisRoutinen, SqrtOfANegativeNumberReportsAndLeavesTheResultCell) {
    ScopedRecordingUi recording;
    CallFrame frame;
    frame.Result().Arg(DoubleCell(-1));
    EXPECT_EQ(frame.Call(BasisRoutinen::sqrt), 0);
    EXPECT_EQ(frame.result().type, 41);
    EXPECT_EQ(frame.result().doubleValue, 0.0);
    ASSERT_EQ(recording.ui.events.size(), 1u);
    EXPECT_EQ(recording.ui.events[0].kind, UiEvent::Message);
    EXPECT_EQ(recording.ui.events[0].text, "sqrt: Negatives Argument");
    EXPECT_EQ(recording.ui.events[0].icon, CUserInterface::IconError);

    EXPECT_EQ(DoubleOf(BasisRoutinen::sqrt, 0), 0.0);
    EXPECT_EQ(DoubleOf(BasisRoutinen::sqrt, -0.0), 0.0);
    EXPECT_EQ(DoubleOf(BasisRoutinen::sqrt, 2.25), 1.5);
    EXPECT_EQ(recording.ui.events.size(), 1u);
}

TEST(BasisRoutinen, StrFormatsWithFixedDecimals) {
    EXPECT_EQ(StrOf(DoubleCell(3.14159), IntCell(2)), "3.14");
    EXPECT_EQ(StrOf(DoubleCell(3.14159), IntCell(0)), "3");
    EXPECT_EQ(StrOf(DoubleCell(-2.5), IntCell(1)), "-2.5");
    EXPECT_EQ(StrOf(DoubleCell(2.675), IntCell(3)), "2.675");
    EXPECT_EQ(StrOf(DoubleCell(1234567.0), IntCell(0)), "1234567");
    // Negative digits count as none; a huge count is capped at 20 decimals.
    EXPECT_EQ(StrOf(DoubleCell(3.14159), IntCell(-3)), "3");
    EXPECT_EQ(StrOf(DoubleCell(0.5), IntCell(1000000)), "0.50000000000000000000");
    EXPECT_EQ(StrOf(DoubleCell(1e300), IntCell(20)).GetLength(), 301 + 1 + 20);
    // A digits argument of another tag is converted, not read raw.
    EXPECT_EQ(StrOf(DoubleCell(1.25), DoubleCell(1.0)), "1.2");
}

TEST(BasisRoutinen, StrReplacesWhateverTheResultCellHeld) {
    CallFrame frame;
    frame.Result().Arg(DoubleCell(1.5)).Arg(IntCell(1));
    frame.result().SetString("alt");
    EXPECT_EQ(frame.Call(BasisRoutinen::str), 1);
    ASSERT_EQ(frame.result().type, 57);
    EXPECT_EQ(*frame.result().GetStringPtr(), "1.5");
}

TEST(BasisRoutinen, NumberTextDoesNotFollowTheCLocale) {
    const char* german[] = {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "de_DE@euro", "fr_FR.UTF-8"};
    std::string saved = std::setlocale(LC_NUMERIC, nullptr);
    const char* found = nullptr;
    for (const char* name : german)
        if (std::setlocale(LC_NUMERIC, name)) {
            found = name;
            break;
        }
    if (!found) GTEST_SKIP() << "no locale with a decimal comma installed";

    ScopedRecordingUi recording;
    const CString text = StrOf(DoubleCell(2.5), IntCell(2));
    CallFrame frame;
    frame.Arg(TextCell("A")).Arg(TextCell("B")).Arg(DoubleCell(2.5));
    frame.Call(BasisRoutinen::MeldungDouble);
    std::setlocale(LC_NUMERIC, saved.c_str());

    EXPECT_EQ(text, "2.50");
    ASSERT_EQ(recording.ui.Messages().size(), 1u);
    EXPECT_EQ(recording.ui.Messages()[0], "B 2.500000");
}

TEST(BasisRoutinen, ValReadsTheTermAtTheStartOfTheText) {
    EXPECT_EQ(ValOf(TextCell("3.5")), 3.5);
    EXPECT_EQ(ValOf(TextCell("12.5abc")), 12.5);
    EXPECT_EQ(ValOf(TextCell("-4")), -4.0);
    EXPECT_EQ(ValOf(TextCell("")), 0.0);
    EXPECT_EQ(ValOf(TextCell("Meter")), 0.0);
    // A number passed for the STRING parameter is read through its text.
    EXPECT_EQ(ValOf(DoubleCell(7.25)), 7.25);
    EXPECT_EQ(ValOf(IntCell(3)), 3.0);
}

TEST(BasisRoutinen, MessageBoxesTakeCaptionFirstAndFormatTheNumber) {
    ScopedRecordingUi recording;
    CallFrame errorMsg;
    errorMsg.Arg(TextCell("A")).Arg(TextCell("B"));
    EXPECT_EQ(errorMsg.Call(BasisRoutinen::ErrorMsg), 1);

    CallFrame meldungInt;
    meldungInt.Arg(TextCell("A")).Arg(TextCell("B")).Arg(IntCell(7));
    EXPECT_EQ(meldungInt.Call(BasisRoutinen::MeldungInt), 1);

    CallFrame meldungDouble;
    meldungDouble.Arg(TextCell("Titel")).Arg(TextCell("Größe")).Arg(DoubleCell(-2.5));
    EXPECT_EQ(meldungDouble.Call(BasisRoutinen::MeldungDouble), 1);

    // Numbers where strings were declared are shown as text, never read as one.
    CallFrame numbers;
    numbers.Arg(IntCell(5)).Arg(DoubleCell(0.5)).Arg(IntCell(-1));
    EXPECT_EQ(numbers.Call(BasisRoutinen::MeldungInt), 1);

    const std::vector<UiEvent>& events = recording.ui.events;
    ASSERT_EQ(events.size(), 4u);
    const char* captions[] = {"A", "A", "Titel", "5"};
    const char* texts[] = {"B", "B 7", "Größe -2.500000", "0.500000 -1"};
    for (size_t i = 0; i < events.size(); ++i) {
        EXPECT_EQ(events[i].kind, UiEvent::Message);
        EXPECT_EQ(events[i].icon, CUserInterface::IconError);
        EXPECT_EQ(events[i].caption, captions[i]) << i;
        EXPECT_EQ(events[i].text, texts[i]) << i;
    }
}

TEST(BasisRoutinen, SetSuccessKeepsTheLastCode) {
    const int saved = _VarSuccess;
    CallFrame first;
    first.Arg(IntCell(3));
    EXPECT_EQ(first.Call(BasisRoutinen::SetSuccess), 1);
    EXPECT_EQ(_VarSuccess, 3);
    CallFrame second;
    second.Arg(IntCell(-7));
    second.Call(BasisRoutinen::SetSuccess);
    EXPECT_EQ(_VarSuccess, -7);
    CallFrame truncated;
    truncated.Arg(DoubleCell(4.9));
    truncated.Call(BasisRoutinen::SetSuccess);
    EXPECT_EQ(_VarSuccess, 4);
    _VarSuccess = saved;
}

TEST(BasisRoutinen, TooFewCellsBelowTopLeaveTheStackAlone) {
    ScopedRecordingUi recording;
    for (const BasisRoutine& row : BasisRoutinen::table) {
        VALUE only = DoubleCell(-1.0);
        const int wanted = row.routine == BasisRoutinen::SetSuccess ? 1 : 0;
        EXPECT_EQ(row.routine(&only, 0), wanted) << row.name;
        EXPECT_EQ(only.type, 41) << row.name;
        EXPECT_EQ(only.doubleValue, -1.0) << row.name;
        EXPECT_EQ(row.routine(nullptr, 5), 0) << row.name;
    }
    EXPECT_TRUE(recording.ui.events.empty());
    _VarSuccess = 0;
}
