// Compiled scripts at run time, observed through the recording routines.
#include <gtest/gtest.h>

#include "language/language_test_support.h"

namespace {

// Each script runs to its end and records what it should.
void ExpectRecords(const std::vector<std::pair<std::string, Record>>& cases) {
    for (const auto& [script, record] : cases) {
        int result = 0;
        EXPECT_EQ(RunRecorded(script, &result), record) << script;
        EXPECT_EQ(result, 1) << script;
    }
}

}  // namespace

TEST(Run, ControlFlow) {
    ExpectRecords({
        // IF takes exactly one branch.
        {"VAR x : INTEGER; PROCEDURE wahl(); BEGIN IF x = 1 THEN merke(\"eins\") "
         "  ELSIF x = 2 THEN merke(\"zwei\") ELSIF x = 3 THEN merke(\"drei\") "
         "  ELSE merke(\"sonst\") END END; "
         "BEGIN x := 1; wahl(); x := 2; wahl(); x := 3; wahl(); x := 4; wahl(); "
         "  IF 0 THEN ELSE merke(\"leer\") END; IF 1 THEN merke(\"dann\") ELSE END; "
         "  IF 0 THEN merke(\"nie\") ELSE END; merke(\"ende\") END.",
         {"s:eins", "s:zwei", "s:drei", "s:sonst", "s:leer", "s:dann", "s:ende"}},
        // Empty branches leave nothing on the stack: 1.1 million passes would
        // pass the stack limit if a condition cell stayed behind.
        {"VAR i, x : INTEGER; BEGIN x := 1; FOR i := 1 TO 1100000 DO "
         "  IF x THEN END; IF x THEN ELSIF x THEN END; "
         "  IF x THEN x := 1 ELSE END END; merkeZahl(i) END.",
         {"i:1100001"}},
        // The FOR variable after the loop; the limit is evaluated before each
        // pass, and the body may move the variable.
        {"VAR i, n : INTEGER; BEGIN FOR i := 1 TO 10 DO END; merkeZahl(i); "
         "FOR i := 1 TO 0 DO merke(\"nie\") END; merkeZahl(i); "
         "FOR i := 3 DOWNTO 1 DO merkeZahl(i) END; merkeZahl(i); "
         "n := 3; FOR i := 1 TO n DO merkeZahl(i); n := 2 END; "
         "FOR i := 1 TO 9 DO merkeZahl(i); i := i + 3 END END.",
         {"i:11", "i:1", "i:3", "i:2", "i:1", "i:0", "i:1", "i:2", "i:1", "i:5", "i:9"}},
        // CONTINUE in FOR goes on with the step, in WHILE with the condition,
        // in REPEAT and LOOP with the body, without testing UNTIL.
        {"VAR i : INTEGER; BEGIN FOR i := 1 TO 4 DO IF i = 2 THEN CONTINUE END; merkeZahl(i) END; "
         "i := 0; WHILE i < 3 DO i := i + 1; IF i = 2 THEN CONTINUE END; merkeZahl(i) END; "
         "i := 0; REPEAT i := i + 1; IF i = 3 THEN CONTINUE END UNTIL i >= 3; merkeZahl(i); "
         "i := 0; LOOP i := i + 1; IF i < 3 THEN CONTINUE END; BREAK END; merkeZahl(i) END.",
         {"i:1", "i:3", "i:4", "i:1", "i:3", "i:4", "i:3"}},
        // BREAK leaves only the innermost loop.
        {"VAR i, j : INTEGER; BEGIN FOR i := 1 TO 3 DO "
         "  j := 0; WHILE 1 DO j := j + 1; IF j = i THEN BREAK END END; merkeZahl(i * 10 + j) END; "
         "REPEAT i := i - 1; IF i = 2 THEN BEGIN BREAK END END UNTIL 0; merkeZahl(i) END.",
         {"i:11", "i:22", "i:33", "i:2"}},
        // REPEAT runs at least once, WHILE may not.
        {"BEGIN REPEAT merke(\"r\") UNTIL 1; WHILE 0 DO merke(\"w\") END END.", {"s:r"}},
        // EXIT leaves the routine from any depth.
        {"FUNCTION f(n : INTEGER) : INTEGER; VAR i : INTEGER; BEGIN f := -1; "
         "  LOOP i := i + 1; IF i = n THEN f := i * 2; EXIT END END; f := 99 END; "
         "PROCEDURE p(); PROCEDURE inner(); BEGIN EXIT; merke(\"nie\") END; "
         "  BEGIN inner(); merke(\"nach inner\") END; "
         "BEGIN merkeZahl(f(4)); p() END.",
         {"i:8", "s:nach inner"}},
    });
}

TEST(Run, ValuesAndCalls) {
    ExpectRecords({
        {"VAR d : DOUBLE; i : INTEGER; s : STRING; BEGIN "
         "merkeZahl(7 / 2); merke(7 / 2.0); merkeZahl(-7 / 2); "
         "i := 1 OR 0 AND 0; merkeZahl(i); "  // left to right: (1 OR 0) AND 0
         "merkeZahl(NOT 0.5); merkeZahl(BITNOT 0); merkeZahl(6 BITAND 3 BITOR 8); "
         "merkeZahl((1 = 1) AND (2 > 1)); merkeZahl(\"10\" = 10); s := \"a\" + 1 + 2; merke(s); "
         "s := 1 + \"a\"; merke(s); d := 2.5 - \"1\"; merke(d); merkeZahl(-3 * -2) END.",
         {"i:3", "s:3.500000", "i:-3", "i:0", "i:1", "i:-1", "i:10", "i:1", "i:1", "s:a12",
          "s:1a", "s:1.500000", "i:6"}},
        {"VAR x : INTEGER; a : ARRAY [5] OF INTEGER; b : ARRAY [2] OF STRING; y, i : INTEGER; "
         "BEGIN FOR i := 0 TO HIGH a DO a[i] := i * i END; merkeZahl(a[4] + a[HIGH a - 1]); "
         "merkeZahl(HIGH b); b[0] := \"x\"; b[1] := b[0] + \"y\"; merke(b[1]); merkeZahl(x + y) END.",
         {"i:25", "i:1", "s:xy", "i:0"}},
        // Variables start empty in every activation.
        {"PROCEDURE p(n : INTEGER); VAR i : INTEGER; d : DOUBLE; s : STRING; BEGIN "
         "  merke(s + i + \"/\" + d); i := n; d := n; s := \"voll\"; IF n > 0 THEN p(n - 1) END "
         "END; BEGIN p(1) END.",
         {"s:0/0.000000", "s:0/0.000000"}},
        // VAR parameters are copied in and out: the take-back overwrites what
        // the callee wrote to the same global.
        {"VAR g : INTEGER; PROCEDURE p(VAR a : INTEGER); BEGIN merkeZahl(a); g := 100; "
         "  merkeZahl(a); a := a + 1 END; BEGIN g := 1; p(g); merkeZahl(g) END.",
         {"i:1", "i:1", "i:2"}},
        // Value parameters are copies that the callee may change.
        {"VAR g : INTEGER; d : DOUBLE; PROCEDURE p(a : INTEGER; VAR b : DOUBLE; c : DOUBLE); "
         "BEGIN a := a + 1; b := b + a + c END; "
         "BEGIN g := 1; d := 0.5; p(g, d, 2); merkeZahl(g); merke(d) END.",
         {"i:1", "s:4.500000"}},
        {"VAR a : ARRAY [3] OF STRING; i : INTEGER; PROCEDURE wert(b : ARRAY [3] OF STRING); "
         "  VAR k : INTEGER; BEGIN FOR k := 0 TO HIGH b DO merke(b[k]); b[k] := \"wert\" END END; "
         "PROCEDURE ref(VAR b : ARRAY [3] OF STRING; n : INTEGER); "
         "  BEGIN b[n] := \"ref\" + n; merkeZahl(HIGH b) END; "
         "BEGIN FOR i := 0 TO 2 DO a[i] := \"e\" + i END; wert(a); ref(a, 1); ref(a, 2); "
         "FOR i := 0 TO 2 DO merke(a[i]) END END.",
         {"s:e0", "s:e1", "s:e2", "i:2", "i:2", "s:e0", "s:ref1", "s:ref2"}},
        {"FUNCTION f(n : INTEGER) : INTEGER; BEGIN IF n > 0 THEN f := n * f(n - 1) ELSE f := 1 END "
         "END; BEGIN merkeZahl(f(5)) END.",
         {"i:120"}},
        // A routine nested in a recursive one reaches the frame of its own
        // activation, and a sibling reads the main block's variable.
        {"VAR g : INTEGER; PROCEDURE lies(); BEGIN merkeZahl(g) END; "
         "PROCEDURE r(n : INTEGER); VAR eigen : INTEGER; "
         "  PROCEDURE zeige(); BEGIN merkeZahl(eigen * 10 + n); lies() END; "
         "BEGIN eigen := n; g := g + 1; IF n > 0 THEN r(n - 1) END; zeige() END; "
         "BEGIN r(2) END.",
         {"i:0", "i:3", "i:11", "i:3", "i:22", "i:3"}},
        // A nested routine assigns the function's result through a static link.
        {"FUNCTION f() : STRING; PROCEDURE setze(); BEGIN f := \"innen\" END; "
         "BEGIN setze() END; BEGIN merke(f()) END.",
         {"s:innen"}},
        // Results never assigned: INTEGER starts as integer 0, every other type
        // as double 0.0; a STRING one still reaches a host routine as a text.
        {"FUNCTION i() : INTEGER; BEGIN END; FUNCTION d() : DOUBLE; BEGIN END; "
         "FUNCTION s() : STRING; BEGIN END; VAR x : INTEGER; "
         "BEGIN merkeZahl(i()); merke(d()); merke(s()); x := i() + 5; merkeZahl(x) END.",
         {"i:0", "s:0.000000", "s:0.000000", "i:5"}},
    });
}

TEST(Run, HostRoutinesGetTheTagsTheyDeclare) {
    ScopedEnvironment environment;
    EXPECT_EQ(RunSilently("EXTERN PROCEDURE merke(x : STRING); EXTERN PROCEDURE merkeZahl(x : DOUBLE); "
                          "EXTERN PROCEDURE setze(VAR x : INTEGER); VAR a : ARRAY [2] OF STRING; "
                          "v : INTEGER; PROCEDURE weiter(t : STRING); BEGIN merke(t) END; "
                          "BEGIN merke(5); merke(2.5); weiter(3); merke(a[1]); merkeZahl(\"4.5\"); "
                          "merkeZahl(2); setze(v); merkeZahl(v) END."),
              1);
    EXPECT_EQ(Recorded(), (Record{"s:5", "s:2.500000", "s:3", "s:0", "d:4.5", "d:2", "d:7"}));
}
