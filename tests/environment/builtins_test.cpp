// The built-in routines, called on a stack laid out as EXTCALL hands it over.
#include <clocale>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "environment/basis_routines.h"
#include "support/test_support.h"

namespace {

VALUE Int(int n) { VALUE cell; cell = n; return cell; }
VALUE Dbl(double x) { VALUE cell; cell = x; return cell; }
VALUE Text(const char* text) { VALUE cell; cell.SetString(text); return cell; }

// Three caller cells (integer 7), a function's result cell (double 0.0, as the
// compiler pushes it), then the arguments; `top` is the last argument.
struct Frame {
    Frame(bool function, std::initializer_list<VALUE> args) : cells(3, Int(7)) {
        if (function) cells.push_back(Dbl(0.0));
        cells.insert(cells.end(), args);
    }
    int Call(PredefinedRoutine routine) { return routine(cells.data(), int(cells.size()) - 1); }
    VALUE& result() { return cells[3]; }
    bool CallerCellsUntouched() const {
        for (int i = 0; i < 3; ++i)
            if (cells[i].type != 40 || cells[i].intValue != 7) return false;
        return true;
    }
    std::vector<VALUE> cells;
};

CString StrOf(VALUE x, VALUE digits) {
    Frame frame(true, {x, digits});
    EXPECT_EQ(frame.Call(BasisRoutinen::str), 1);
    EXPECT_TRUE(frame.CallerCellsUntouched());
    const CString* text = frame.result().GetStringPtr();
    return text ? *text : CString("<kein Text>");
}

// "caption|text" of each message box, which must all be error boxes.
std::vector<std::string> Shown(const RecordingUserInterface& ui) {
    std::vector<std::string> shown;
    for (const UiEvent& e : ui.events)
        shown.push_back(e.kind == UiEvent::Message && e.icon == CUserInterface::IconError
                            ? e.caption.str() + "|" + e.text.str() : "<kein Fehlerkasten>");
    return shown;
}

}  // namespace

TEST(BasisRoutinen, DoubleFunctions) {
    using namespace BasisRoutinen;
    ScopedRecordingUi recording;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        PredefinedRoutine routine;
        VALUE x;
        double expected, tolerance;
    } cases[] = {
        // Angles are in degrees and use pi to eleven decimals.
        {sin, Dbl(180), -2.07e-13, 0.005e-13}, {cos, Dbl(90), -1.035e-13, 0.005e-13},
        {tan, Dbl(90), -9.65e12, 0.02e12},     {tan, Dbl(45), 1.0000000000001, 1e-14},
        {sin, Dbl(30), 0.5, 1e-12},            {cos, Dbl(-60), 0.5, 1e-12},
        {sqr, Dbl(-3), 9, 0}, {abs, Dbl(-2.5), 2.5, 0}, {abs, Dbl(2.5), 2.5, 0},
        {sqrt, Dbl(0), 0, 0}, {sqrt, Dbl(-0.0), 0, 0},  {sqrt, Dbl(2.25), 1.5, 0},
        // sign: a symmetric band round zero, its edges included, and NaN give 0.
        {sign, Dbl(-1), -1, 0}, {sign, Dbl(-0.0002), -1, 0}, {sign, Dbl(0.0002), 1, 0},
        {sign, Dbl(0), 0, 0},   {sign, Dbl(0.00005), 0, 0},  {sign, Dbl(-0.0001), 0, 0},
        {sign, Dbl(0.0001), 0, 0}, {sign, Dbl(nan), 0, 0},
        // val reads the term at the start of the text; a number is read as text.
        {val, Text("3.5"), 3.5, 0}, {val, Text("12.5abc"), 12.5, 0}, {val, Text("-4"), -4, 0},
        {val, Text(""), 0, 0},      {val, Text("Meter"), 0, 0},      {val, Dbl(7.25), 7.25, 0},
        {val, Int(3), 3, 0},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        const auto& c = cases[i];
        SCOPED_TRACE(testing::Message() << "case " << i);
        Frame frame(true, {c.x});
        EXPECT_EQ(frame.Call(c.routine), 1);
        ASSERT_EQ(frame.result().type, 41);
        EXPECT_NEAR(frame.result().doubleValue, c.expected, c.tolerance);
        EXPECT_TRUE(frame.CallerCellsUntouched());
    }
    EXPECT_TRUE(recording.ui.events.empty());
    // A negative argument of sqrt is reported; the result cell keeps its 0.0.
    Frame negative(true, {Dbl(-1)});
    EXPECT_EQ(negative.Call(BasisRoutinen::sqrt), 0);
    EXPECT_EQ(negative.result().type, 41);
    EXPECT_EQ(negative.result().doubleValue, 0.0);
    EXPECT_EQ(Shown(recording.ui), std::vector<std::string>{"|sqrt: Negatives Argument"});
}

TEST(BasisRoutinen, StrFormatsWithFixedDecimals) {
    const struct {
        VALUE x, digits;
        const char* text;
    } cases[] = {
        {Dbl(3.14159), Int(2), "3.14"}, {Dbl(3.14159), Int(0), "3"}, {Dbl(-2.5), Int(1), "-2.5"},
        {Dbl(2.675), Int(3), "2.675"},  {Dbl(1234567.0), Int(0), "1234567"},
        // Negative digits count as none, a huge count is capped at 20.
        {Dbl(3.14159), Int(-3), "3"},   {Dbl(0.5), Int(1000000), "0.50000000000000000000"},
        // A digits argument of another tag is converted, not read raw.
        {Dbl(1.25), Dbl(1.0), "1.2"},
    };
    for (const auto& c : cases) EXPECT_EQ(StrOf(c.x, c.digits), c.text) << c.text;
    EXPECT_EQ(StrOf(Dbl(1e300), Int(20)).GetLength(), 301 + 1 + 20);
    // The result replaces a text the result cell held.
    Frame frame(true, {Dbl(1.5), Int(1)});
    frame.result().SetString("alt");
    EXPECT_EQ(frame.Call(BasisRoutinen::str), 1);
    ASSERT_EQ(frame.result().type, 57);
    EXPECT_EQ(*frame.result().GetStringPtr(), "1.5");
}

TEST(BasisRoutinen, NumberTextDoesNotFollowTheCLocale) {
    const std::string saved = std::setlocale(LC_NUMERIC, nullptr);
    const char* found = nullptr;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "de_DE@euro", "fr_FR.UTF-8"})
        if (!found && std::setlocale(LC_NUMERIC, name)) found = name;
    if (!found) GTEST_SKIP() << "no locale with a decimal comma installed";
    ScopedRecordingUi recording;
    const CString text = StrOf(Dbl(2.5), Int(2));
    Frame(false, {Text("A"), Text("B"), Dbl(2.5)}).Call(BasisRoutinen::MeldungDouble);
    std::setlocale(LC_NUMERIC, saved.c_str());
    EXPECT_EQ(text, "2.50");
    EXPECT_EQ(Shown(recording.ui), std::vector<std::string>{"A|B 2.500000"});
}

TEST(BasisRoutinen, MessagesAndSuccessCode) {
    using namespace BasisRoutinen;
    ScopedRecordingUi recording;
    EXPECT_EQ(Frame(false, {Text("A"), Text("B")}).Call(ErrorMsg), 1);
    EXPECT_EQ(Frame(false, {Text("A"), Text("B"), Int(7)}).Call(MeldungInt), 1);
    EXPECT_EQ(Frame(false, {Text("Titel"), Text("Größe"), Dbl(-2.5)}).Call(MeldungDouble), 1);
    // Numbers where strings were declared are shown as text, never read as one.
    EXPECT_EQ(Frame(false, {Int(5), Dbl(0.5), Int(-1)}).Call(MeldungInt), 1);
    EXPECT_EQ(Shown(recording.ui),
              (std::vector<std::string>{"A|B", "A|B 7", "Titel|Größe -2.500000", "5|0.500000 -1"}));
    // SetSuccess keeps the last code, a double truncated.
    const int saved = _VarSuccess;
    const std::pair<VALUE, int> cases[] = {{Int(3), 3}, {Int(-7), -7}, {Dbl(4.9), 4}};
    for (const auto& [code, kept] : cases) {
        EXPECT_EQ(Frame(false, {code}).Call(BasisRoutinen::SetSuccess), 1);
        EXPECT_EQ(_VarSuccess, kept);
    }
    _VarSuccess = saved;
}

TEST(BasisRoutinen, TooFewCellsBelowTopLeaveTheStackAlone) {
    ScopedRecordingUi recording;
    for (const BasisRoutine& row : BasisRoutinen::table) {
        VALUE only = Dbl(-1.0);
        const int done = row.routine == BasisRoutinen::SetSuccess ? 1 : 0;  // needs one cell only
        EXPECT_EQ(row.routine(&only, 0), done) << row.name;
        EXPECT_EQ(only.type, 41) << row.name;
        EXPECT_EQ(only.doubleValue, -1.0) << row.name;
        EXPECT_EQ(row.routine(nullptr, 5), 0) << row.name;
    }
    EXPECT_TRUE(recording.ui.events.empty());
    _VarSuccess = 0;
}
