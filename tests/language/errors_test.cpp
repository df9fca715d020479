// The messages of the compile errors, as the marker line shows them.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "language/language_test_support.h"

namespace {

using Cases = std::vector<std::pair<std::string, std::string>>;

void ExpectErrors(const Cases& cases) {
    for (const auto& [source, message] : cases) {
        EXPECT_EQ(CompileError(source), message) << source;
        ScopedRecordingUi ui;
        EXPECT_EQ(RunText(source, true), 0) << source;
    }
}

}  // namespace

TEST(Errors, Declarations) {
    ExpectErrors({
        {"CONST a = 1 BEGIN END.", "Strichpunkt (oder Komma) fehlt."},
        {"CONST a : DOUBLE := 1; BEGIN END.", "Verwende \"=\" anstatt \":=\"."},
        {"CONST a = x; BEGIN END.", "Nach \"=\" muss eine Zahl folgen."},
        {"CONST a = -\"x\"; BEGIN END.", "Nach \"=\" muss eine Zahl folgen."},
        {"CONST a 1; BEGIN END.", "Nach dem Bezeichner muss \"=\" folgen."},
        {"CONST 1; BEGIN END.", "Nach CONST, VAR, oder PROCEDURE muss ein Bezeichner folgen."},
        {"CONST a : 5 = 1; BEGIN END.", "Typ erwartet"},
        {"VAR a, ; BEGIN END.", "Typdeklaration fehlt."},
        {"VAR a BEGIN END.", "Typdeklaration fehlt."},
        {"VAR a : x; BEGIN END.", "unbekannter Variablentyp"},
        {"VAR a : INTEGER; A : DOUBLE; BEGIN END.",
         "Ein Bezeichner darf nur einmal vereinbart werden."},
        {"BEGIN x := 1 END.", "Dieser Bezeichner ist nicht vereinbart."},
    });
}

TEST(Errors, TypedConstantsMustFitTheirLiteral) {
    ExpectErrors({
        {"CONST s : STRING = 1; BEGIN END.", "Konstante passt nicht zum Typ."},
        {"CONST i : INTEGER = \"1\"; BEGIN END.", "Konstante passt nicht zum Typ."},
        {"CONST i : INTEGER = 1.5; BEGIN END.", "Konstante passt nicht zum Typ."},
        {"CONST d : DOUBLE = \"1\"; BEGIN END.", "Konstante passt nicht zum Typ."},
        {"CONST a : ARRAY = 1; BEGIN END.", "Konstante passt nicht zum Typ."},
        {"TYPEDEF h : INTEGER; CONST k : h = 1.5; BEGIN END.", "Konstante passt nicht zum Typ."},
    });
    // Equal payloads keep the declared tag; an integer under DOUBLE is converted.
    EXPECT_EQ(RunRecorded("TYPEDEF h : INTEGER; CONST k : h = 5; m : h = -5; "
                          "d : DOUBLE = 2; s : STRING = \"t\"; i : INTEGER = 3; "
                          "VAR v : h; w : INTEGER; "
                          "BEGIN v := k; merkeZahl(v); w := m; merke(d); merke(s + i) END."),
              (std::vector<std::string>{"t60:5", "s:2.000000", "s:t3"}));
    // A negative constant keeps the type of its literal, so it is no h.
    EXPECT_EQ(CompileError("TYPEDEF h : INTEGER; CONST m : h = -5; VAR v : h; BEGIN v := m END."),
              "Typen sind nicht kompatibel");
}

TEST(Errors, Arrays) {
    const char* size = "Arraygröße muss eine ganze Zahl größer Null sein.";
    ExpectErrors({
        {"VAR a : ARRAY 3] OF INTEGER; BEGIN END.", "Array-Definition erwartet \"[\" ."},
        {"VAR a : ARRAY [0] OF INTEGER; BEGIN END.", size},
        {"VAR a : ARRAY [-1] OF INTEGER; BEGIN END.", size},
        {"VAR a : ARRAY [2.0] OF INTEGER; BEGIN END.", size},
        {"CONST n = 2; VAR a : ARRAY [n] OF INTEGER; BEGIN END.", size},
        {"VAR a : ARRAY [2 OF INTEGER; BEGIN END.", "Array-Definition erwartet \"]\" ."},
        {"VAR a : ARRAY [2] INTEGER; BEGIN END.", "Array-Definition erwartet OF ."},
        {"VAR a : ARRAY [2] OF ARRAY; BEGIN END.",
         "Array-Definition erwartet INTEGER, DOUBLE oder STRING."},
        {"PROCEDURE p(a : ARRAY [2] OF x); BEGIN END; BEGIN END.",
         "Array-Definition erwartet INTEGER, DOUBLE ODER STRING."},
        {"VAR a : ARRAY [2] OF INTEGER; i : INTEGER; BEGIN i := a END.",
         "Array-Dereferenzierung erwartet \"[\"."},
        {"VAR a : ARRAY [2] OF INTEGER; BEGIN a[1 := 2 END.",
         "Array-Dereferenzierung erwartet \"]\"."},
        {"VAR a : ARRAY [2] OF INTEGER; BEGIN a[1.0] := 2 END.",
         "Array-Index muss eine ganze Zahl sein."},
        {"VAR i : INTEGER; BEGIN i := HIGH i END.", "HIGH erwartet Array-Variable."},
        {"VAR i : INTEGER; BEGIN i := HIGH 3 END.", "HIGH erwartet Array-Variable."},
        {"VAR a : ARRAY [2] OF INTEGER; BEGIN a[0] := \"x\" END.", "Typen sind nicht kompatibel"},
        // Two arrays of this size need more cells than a frame can count.
        {"VAR a, b : ARRAY [2000000000] OF INTEGER; BEGIN END.",
         "Zu viele Speicherzellen in einem Block."},
        {"PROCEDURE p(a : ARRAY [2000000000] OF INTEGER; b : ARRAY [2000000000] OF INTEGER); "
         "BEGIN END; BEGIN END.",
         "Zu viele Speicherzellen in einem Block."},
        {"VAR a : ARRAY [2000000] OF INTEGER; PROCEDURE p(b : ARRAY [2000000] OF INTEGER); "
         "BEGIN END; BEGIN p(a) END.",
         "Array ist zu gross für einen Aufruf."},
    });
}

TEST(Errors, Statements) {
    ExpectErrors({
        {"VAR a : INTEGER; BEGIN IF a x := 1 END END.", "Hier wird THEN erwartet."},
        {"VAR a : INTEGER; BEGIN a := 1 a := 2 END.", "Hier wird \";\" oder END erwartet."},
        {"BEGIN BREAK END.", "BREAK ohne umschliessende Schleife"},
        {"BEGIN CONTINUE END.", "CONTINUE ohne umschliessende Schleife"},
        {"BEGIN EXIT END.", "EXIT ohne umschliessende Prozedure/Funktion"},
        {"PROCEDURE p(); BEGIN BREAK END; BEGIN WHILE 1 DO p() END END.",
         "BREAK ohne umschliessende Schleife"},
        {"CONST c = 1; BEGIN c := 2 END.",
         "Zuweisungen zu Konstanten und Prozeduren sind nicht erlaubt."},
        {"VAR a : INTEGER; BEGIN a = 1 END.", "Zuweisungsoperator ist \":=\"."},
        {"VAR s : STRING; BEGIN s := 1 END.", "Typen sind nicht kompatibel"},
        {"TYPEDEF h : INTEGER; VAR v : h; BEGIN v := 1 END.", "Typen sind nicht kompatibel"},
        {"", "Hier wird ein Punkt erwartet."},
        {"BEGIN END", "Hier wird ein Punkt erwartet."},
    });
}

TEST(Errors, AListNeverLoopsOnASymbolItCannotUse) {
    const char* incorrect = "Inkorrektes Symbol in einer Anweisung.";
    const char* follows = "Auf diese Anweisung folgt ein inkorrekt verwendetes Symbol.";
    ExpectErrors({
        {"BEGIN WHILE 1 DO", incorrect},
        {"VAR i : INTEGER; BEGIN WHILE 1 DO i := 1", follows},
        {"BEGIN REPEAT ) UNTIL 1 END.", incorrect},
        {"VAR i : INTEGER; BEGIN LOOP i := 1 ) END END.", follows},
        {"VAR a : INTEGER; BEGIN IF a THEN a := 1 .", follows},
        {"BEGIN REPEAT END END.", incorrect},
        {"BEGIN IF 1 THEN ELSE ELSIF 1 THEN END END.", incorrect},
        {"VAR i : INTEGER; BEGIN FOR i := 1 TO 2 DO ; ; 5 END END.", incorrect},
    });
    // Statements in a list need no semicolon between them.
    EXPECT_EQ(RunRecorded("VAR i : INTEGER; BEGIN IF 1 THEN i := 1 merkeZahl(i) ; ; END END."),
              std::vector<std::string>{"i:1"});
}

TEST(Errors, Loops) {
    ExpectErrors({
        {"BEGIN WHILE 1 END END.", "Hier wird DO erwartet."},
        {"VAR i : INTEGER; BEGIN FOR i := 1 TO 2 i := 1 END END.", "FOR erwartet DO."},
        {"BEGIN WHILE 1 DO UNTIL 1 END.", "Inkorrektes Symbol in einer Anweisung."},
        {"BEGIN LOOP UNTIL END.", "Inkorrektes Symbol in einer Anweisung."},
        {"BEGIN FOR 1 TO 2 DO END END.", "FOR erwartet Zuweisung an Schleifenvariable"},
        {"CONST c = 1; BEGIN FOR c := 1 TO 2 DO END END.",
         "FOR erwartet Zuweisung an Schleifenvariable"},
        {"VAR d : DOUBLE; BEGIN FOR d := 1 TO 2 DO END END.",
         "Schleifenvariable muss ein INTEGER sein."},
        {"VAR i : INTEGER; BEGIN FOR i := 1 UNTIL 2 DO END END.", "FOR erwartet TO oder DOWNTO."},
        {"VAR i : INTEGER; BEGIN FOR i = 1 TO 2 DO END END.", "Zuweisungsoperator ist \":=\"."},
    });
}

TEST(Errors, Expressions) {
    const char* strings = "Keine Rechenoperationen mit Zeichenketten.";
    ExpectErrors({
        {"VAR s : STRING; BEGIN s := \"a\" - 1 END.", strings},
        {"VAR s : STRING; BEGIN s := -\"a\" END.", strings},
        {"VAR s : STRING; BEGIN s := \"a\" * 2 END.", strings},
        {"VAR i : INTEGER; BEGIN i := 2 * \"a\" END.", strings},
        {"VAR i : INTEGER; BEGIN i := 2 - \"a\" END.", strings},
        {"VAR i : INTEGER; BEGIN i := 1 * -\"a\" END.", strings},
        {"VAR i : INTEGER; BEGIN i := NOT \"a\" END.", strings},
        {"VAR i : INTEGER; BEGIN i := \"a\" AND 1 END.", strings},
        {"VAR i : INTEGER; BEGIN i := 1 BITOR \"a\" END.", strings},
        // A plus with a text makes a text, whichever side it stands on.
        {"VAR i : INTEGER; BEGIN i := 1 + \"a\" END.", "Typen sind nicht kompatibel"},
        {"VAR i : INTEGER; BEGIN i := (1 + 2 END.", "Schliessende Klammer fehlt."},
        {"VAR i : INTEGER; BEGIN i := 1 + ; END.",
         "Der vorangehende Operator kann nicht mit diesem Symbol enden."},
        {"VAR i : INTEGER; BEGIN i := 2 * -i END.",
         "Der vorangehende Operator kann nicht mit diesem Symbol enden."},
        {"VAR i : INTEGER; PROCEDURE p(); BEGIN END; BEGIN i := p END.",
         "Ein Ausdruck darf keinen Prozedurbezeichner enthalten."},
    });
    // A relation and a logical operator need parentheses between them.
    EXPECT_EQ(CompileError("VAR i : INTEGER; BEGIN i := i = 1 AND i = 2 END."),
              "Hier wird \";\" oder END erwartet.");
}

TEST(Errors, RoutineDeclarations) {
    const char* list = "Function/Procedure: Schließende Klammer, Semicolon oder Doppelpunkt erwartet.";
    ExpectErrors({
        {"PROCEDURE p; BEGIN END; BEGIN END.", "öffnende Klammer erwartet."},
        {"PROCEDURE (); BEGIN END; BEGIN END.",
         "Nach CONST, VAR, oder PROCEDURE muss ein Bezeichner folgen."},
        {"PROCEDURE p(5); BEGIN END; BEGIN END.", list},
        {"PROCEDURE p(a : INTEGER", list},
        {"PROCEDURE p(a : INTEGER 5); BEGIN END; BEGIN END.", list},
        {"PROCEDURE p(a b : INTEGER); BEGIN END; BEGIN END.", "Typdeklaration fehlt."},
        {"PROCEDURE p(a : x); BEGIN END; BEGIN END.", "unbekannter Variablentyp"},
        {"FUNCTION f(); BEGIN END; BEGIN END.", "Doppelpunkt nach Funktionsdeklaration erwartet."},
        {"FUNCTION f() : ARRAY; BEGIN END; BEGIN END.",
         "Funktionen können nur einfache Datentypen zurückgeben."},
        {"FUNCTION f() : 5; BEGIN END; BEGIN END.", "Funktionstyp erwartet."},
        {"PROCEDURE p() BEGIN END; BEGIN END.", "Strichpunkt (oder Komma) fehlt."},
        {"PROCEDURE p(); BEGIN END BEGIN END.", "Strichpunkt (oder Komma) fehlt."},
        {"PROCEDURE p(a : INTEGER); VAR a : INTEGER; BEGIN END; BEGIN END.",
         "Ein Bezeichner darf nur einmal vereinbart werden."},
        {"PROCEDURE p(); BEGIN END; PROCEDURE P(); BEGIN END; BEGIN END.",
         "Ein Bezeichner darf nur einmal vereinbart werden."},
        // No forward declaration: a routine cannot call a later sibling.
        {"PROCEDURE a(); BEGIN b() END; PROCEDURE b(); BEGIN END; BEGIN END.",
         "Dieser Bezeichner ist nicht vereinbart."},
        // A routine does not see the variables declared behind it.
        {"PROCEDURE p(); BEGIN x := 1 END; VAR x : INTEGER; BEGIN END.",
         "Dieser Bezeichner ist nicht vereinbart."},
        // VAR holds up to the next semicolon of the list only.
        {"PROCEDURE p(VAR a : INTEGER; b : INTEGER); BEGIN END; VAR v : INTEGER; "
         "BEGIN p(1, v) END.",
         "Variable erwartet."},
        // Outside its body the result variable is not in scope.
        {"FUNCTION f() : INTEGER; BEGIN END; BEGIN f := 1 END.",
         "Dieser Bezeichner ist nicht vereinbart."},
    });
    // Legal forms of parameter lists; a local variable named like its routine.
    ScopedRecordingUi ui;
    EXPECT_EQ(RunText("PROCEDURE p(a : INTEGER;); BEGIN END; "
                      "PROCEDURE q(a : INTEGER b : DOUBLE); VAR q : INTEGER; BEGIN q := a END; "
                      "PROCEDURE r(VAR a : INTEGER; b : INTEGER); BEGIN END; VAR v : INTEGER; "
                      "BEGIN p(1); q(1, 2); r(v, 1 + 2) END.",
                      true),
              1);
    EXPECT_TRUE(ui.ui.events.empty());
}

TEST(Errors, Calls) {
    const std::string declarations =
        "VAR i : INTEGER; d : DOUBLE; a3 : ARRAY [3] OF INTEGER; a4 : ARRAY [4] OF INTEGER; "
        "d3 : ARRAY [3] OF DOUBLE; "
        "PROCEDURE p(VAR x : INTEGER; y : ARRAY [3] OF INTEGER); BEGIN END; "
        "PROCEDURE q(VAR x : DOUBLE); BEGIN END; "
        "PROCEDURE r(y : ARRAY [3] OF INTEGER; z : INTEGER); BEGIN END; "
        "FUNCTION f() : INTEGER; BEGIN END; "
        "BEGIN ";
    ExpectErrors({
        {declarations + "p END.", "öffnende Klammer erwartet."},
        {declarations + "i := f END.", "öffnende Klammer erwartet."},
        {declarations + "p(1, a3) END.", "Variable erwartet."},
        {declarations + "p(f, a3) END.", "Variable erwartet."},
        {"CONST c = 1; PROCEDURE p(VAR x : INTEGER); BEGIN END; BEGIN p(c) END.",
         "Variable erwartet."},
        {declarations + "q(i) END.", "Argument hat falschen Typ."},
        {declarations + "p(a3, a3) END.", "Argument hat falschen Typ."},
        {declarations + "p(i, i) END.", "Argument hat falschen Typ."},
        {declarations + "p(i, a3[0]) END.", "schließende Klammer erwartet."},
        {declarations + "r(a3[0], 1) END.", "Komma erwartet."},
        {declarations + "p(i, d3) END.", "Arrayargument hat falschen Typ."},
        {declarations + "p(i, a4) END.", "Arrayargument hat falsche Größe."},
        {declarations + "p(i) END.", "Komma erwartet."},
        {declarations + "p(i, a3, 1) END.", "schließende Klammer erwartet."},
        {declarations + "p(i a3) END.", "Komma erwartet."},
        {declarations + "p(z, a3) END.", "Dieser Bezeichner ist nicht vereinbart."},
        {"TYPEDEF h : INTEGER; VAR v : INTEGER; PROCEDURE p(VAR x : h); BEGIN END; "
         "BEGIN p(v) END.",
         "Argument hat falschen Typ."},
    });
}

TEST(Errors, SilentCompileShowsNothingAndEnds) {
    // With errors not shown, each failure only clears the result, and the
    // compile still comes to an end on every input.
    const char* scripts[] = {
        "BEGIN WHILE 1 DO",
        "PROCEDURE p(a : INTEGER",
        "VAR a : ARRAY [2] OF INTEGER; PROCEDURE p(VAR x : INTEGER; VAR y : INTEGER; "
        "VAR z : INTEGER); BEGIN END; BEGIN p(a, a, a) END.",
        "PROCEDURE p(VAR x : INTEGER; VAR y : INTEGER); BEGIN END; VAR i : INTEGER; "
        "BEGIN p(i) END.",
        "VAR a : x; b : INTEGER; BEGIN b := c + + ( END.",
        "CONST a, b, c ; ; BEGIN IF IF IF END END.",
        "FUNCTION f(VAR VAR : ) : ; BEGIN f(((( END.",
        "TYPEDEF a : a; TYPEDEF : ; IMPORT 1 2 EXTERN x; BEGIN END.",
        "BEGIN FOR x := 1 TO DO BREAK CONTINUE EXIT END; REPEAT UNTIL",
    };
    for (const char* source : scripts) {
        ScopedRecordingUi ui;
        EXPECT_EQ(RunText(source, false), 0) << source;
        EXPECT_TRUE(ui.ui.events.empty()) << source;
    }
}
