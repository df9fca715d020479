// Strings in scripts: every variable keeps its own text however it was
// copied, and building a long text gives the text expected.
#include <gtest/gtest.h>

#include "language/language_test_support.h"

namespace {

// Changes its argument's text in place, as a host may through stringValue.
int Aendere(VALUE* stack, int top) {
    if (stack[top].type != 57) return 0;
    stack[top].stringValue->MakeUpper();
    *stack[top].stringValue += "!";
    return 1;
}

struct SharingEnvironment : RecordingEnvironment {
    void InitPredefinedArray() override {
        predefinedArray.Add(new CPredefined("aendere", Aendere));
        predefinedArray.Add(new CPredefined("aendereVar", Aendere));
        RecordingEnvironment::InitPredefinedArray();
    }
};

Record RunWithAendere(const std::string& body) {
    ScopedRecordingUi ui;
    ScopedEnvironment recording;
    SharingEnvironment environment;
    pBasisPredefinedUmgebung = &environment;
    EXPECT_EQ(RunText("EXTERN PROCEDURE merke(x : STRING); EXTERN PROCEDURE merkeZahl(x : INTEGER);"
                      "EXTERN PROCEDURE aendere(x : STRING); EXTERN PROCEDURE aendereVar(VAR x : STRING);" +
                      body),
              1);
    EXPECT_TRUE(ui.ui.events.empty());
    return Recorded();
}

}  // namespace

TEST(StringSharing, EveryVariableKeepsItsOwnText) {
    const struct {
        const char* body;
        Record expected;
    } cases[] = {
        // Assignment, then growth of either side.
        {"VAR a, b : STRING; BEGIN a := \"abc\"; b := a; b := b + \"d\"; a := a + \"x\"; "
         "merke(a); merke(b) END.",
         {"s:abcx", "s:abcd"}},
        // Both grow from the same text, one after the other, in a loop.
        {"VAR a, b, s : STRING; i : INTEGER; BEGIN s := \"\"; "
         "FOR i := 1 TO 3 DO s := s + i; a := s + \"a\"; b := s + \"b\" END; "
         "merke(s); merke(a); merke(b) END.",
         {"s:123", "s:123a", "s:123b"}},
        // A host changing its argument's text reaches neither the variable
        // passed by value, nor its copies; by VAR it reaches that one only.
        {"VAR a, b : STRING; BEGIN a := \"abc\"; b := a; aendere(a); merke(a); "
         "aendereVar(b); merke(a); merke(b) END.",
         {"s:abc", "s:abc", "s:ABC!"}},
        // Array elements and parameters copy in and out.
        {"VAR t : ARRAY [2] OF STRING; v : STRING; PROCEDURE p(VAR x : STRING; y : STRING); "
         "BEGIN x := x + y; y := y + \"?\" END; "
         "BEGIN t[0] := \"x\"; t[1] := t[0]; v := t[1]; p(v, t[0]); t[1] := t[1] + \"!\"; "
         "merke(t[0]); merke(t[1]); merke(v) END.",
         {"s:x", "s:x!", "s:xx"}},
    };
    for (const auto& c : cases) EXPECT_EQ(RunWithAendere(c.body), c.expected) << c.body;
}

TEST(StringSharing, LongTextsBuiltPieceByPiece) {
    // 200,000 characters two ways: equal texts, and neither equals a longer one.
    EXPECT_EQ(RunWithAendere("VAR s, t : STRING; i, r : INTEGER; BEGIN s := \"\"; t := \"\"; "
                             "FOR i := 1 TO 100000 DO s := s + \"ab\" END; "
                             "FOR i := 1 TO 50000 DO t := t + \"abab\" END; "
                             "r := 0; IF s = t THEN r := r + 1 END; IF s + \"a\" = t THEN r := r + 2 END; "
                             "IF s < t + \"a\" THEN r := r + 4 END; merkeZahl(r) END."),
              Record{"i:5"});
    // Numbers joined to texts, including the smallest integer.
    EXPECT_EQ(RunWithAendere("VAR s : STRING; i : INTEGER; BEGIN s := \"\"; "
                             "FOR i := -2 TO 2 DO s := s + i + \",\" END; "
                             "merke(s + (-2147483647 - 1)) END."),
              Record{"s:-2,-1,0,1,2,-2147483648"});
}
