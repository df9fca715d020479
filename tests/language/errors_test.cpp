// The messages of the compile errors, as the marker line shows them.
#include <gtest/gtest.h>

#include "language/language_test_support.h"

TEST(Errors, Declarations) {
    const char* number = "Nach \"=\" muss eine Zahl folgen.";
    const char* type = "Typdeklaration fehlt.";
    const char* mismatch = "Konstante passt nicht zum Typ.";
    ExpectErrors({
        {"CONST a = 1 BEGIN END.", semicolon},
        {"CONST a : DOUBLE := 1; BEGIN END.", "Verwende \"=\" anstatt \":=\"."},
        {"CONST a = x; BEGIN END.", number}, {"CONST a = -\"x\"; BEGIN END.", number},
        {"CONST a 1; BEGIN END.", "Nach dem Bezeichner muss \"=\" folgen."},
        {"CONST 1; BEGIN END.", identifier}, {"CONST a : 5 = 1; BEGIN END.", "Typ erwartet"},
        {"VAR a, ; BEGIN END.", type}, {"VAR a BEGIN END.", type},
        {"VAR a : x; BEGIN END.", "unbekannter Variablentyp"},
        {"VAR a : INTEGER; A : DOUBLE; BEGIN END.", twice}, {"BEGIN x := 1 END.", undeclared},
        // Typed constants must fit their literal.
        {"CONST s : STRING = 1; BEGIN END.", mismatch},
        {"CONST i : INTEGER = \"1\"; BEGIN END.", mismatch},
        {"CONST i : INTEGER = 1.5; BEGIN END.", mismatch},
        {"CONST d : DOUBLE = \"1\"; BEGIN END.", mismatch},
        {"CONST a : ARRAY = 1; BEGIN END.", mismatch},
        {"TYPEDEF h : INTEGER; CONST k : h = 1.5; BEGIN END.", mismatch},
        // A negative constant keeps the type of its literal, so it is no h.
        {"TYPEDEF h : INTEGER; CONST m : h = -5; VAR v : h; BEGIN v := m END.", incompatible},
    });
    // Equal payloads keep the declared tag; an integer under DOUBLE is converted.
    EXPECT_EQ(RunRecorded("TYPEDEF h : INTEGER; CONST k : h = 5; m : h = -5; "
                          "d : DOUBLE = 2; s : STRING = \"t\"; i : INTEGER = 3; "
                          "VAR v : h; w : INTEGER; "
                          "BEGIN v := k; merkeZahl(v); w := m; merke(d); merke(s + i) END."),
              (Record{"t60:5", "s:2.000000", "s:t3"}));
}

TEST(Errors, Arrays) {
    const char* size = "Arraygröße muss eine ganze Zahl größer Null sein.";
    const char* high = "HIGH erwartet Array-Variable.";
    const char* cells = "Zu viele Speicherzellen in einem Block.";
    const std::string a2 = "VAR a : ARRAY [2] OF INTEGER; i : INTEGER; BEGIN ";
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
        {a2 + "i := a END.", "Array-Dereferenzierung erwartet \"[\"."},
        {a2 + "a[1 := 2 END.", "Array-Dereferenzierung erwartet \"]\"."},
        {a2 + "a[1.0] := 2 END.", "Array-Index muss eine ganze Zahl sein."},
        {a2 + "i := HIGH i END.", high}, {a2 + "i := HIGH 3 END.", high},
        {a2 + "a[0] := \"x\" END.", incompatible},
        // Two arrays of this size need more cells than a frame can count.
        {"VAR a, b : ARRAY [2000000000] OF INTEGER; BEGIN END.", cells},
        {"PROCEDURE p(a : ARRAY [2000000000] OF INTEGER; b : ARRAY [2000000000] OF INTEGER); "
         "BEGIN END; BEGIN END.",
         cells},
        {"VAR a : ARRAY [2000000] OF INTEGER; PROCEDURE p(b : ARRAY [2000000] OF INTEGER); "
         "BEGIN END; BEGIN p(a) END.",
         "Array ist zu gross für einen Aufruf."},
    });
}

TEST(Errors, StatementsAndLoops) {
    const char* loopVariable = "FOR erwartet Zuweisung an Schleifenvariable";
    const char* assign = "Zuweisungsoperator ist \":=\".";
    const char* period = "Hier wird ein Punkt erwartet.";
    const std::string i = "VAR i : INTEGER; d : DOUBLE; s : STRING; BEGIN ";
    ExpectErrors({
        {i + "IF i i := 1 END END.", "Hier wird THEN erwartet."},
        {i + "i := 1 i := 2 END.", "Hier wird \";\" oder END erwartet."},
        {"BEGIN BREAK END.", "BREAK ohne umschliessende Schleife"},
        {"BEGIN CONTINUE END.", "CONTINUE ohne umschliessende Schleife"},
        {"BEGIN EXIT END.", "EXIT ohne umschliessende Prozedure/Funktion"},
        {"PROCEDURE p(); BEGIN BREAK END; BEGIN WHILE 1 DO p() END END.",
         "BREAK ohne umschliessende Schleife"},
        {"CONST c = 1; BEGIN c := 2 END.",
         "Zuweisungen zu Konstanten und Prozeduren sind nicht erlaubt."},
        {i + "i = 1 END.", assign}, {i + "s := 1 END.", incompatible},
        {"TYPEDEF h : INTEGER; VAR v : h; BEGIN v := 1 END.", incompatible},
        {"", period}, {"BEGIN END", period}, {"BEGIN WHILE 1 END END.", "Hier wird DO erwartet."},
        {i + "FOR i := 1 TO 2 i := 1 END END.", "FOR erwartet DO."},
        {"BEGIN FOR 1 TO 2 DO END END.", loopVariable},
        {"CONST c = 1; BEGIN FOR c := 1 TO 2 DO END END.", loopVariable},
        {i + "FOR d := 1 TO 2 DO END END.", "Schleifenvariable muss ein INTEGER sein."},
        {i + "FOR i := 1 UNTIL 2 DO END END.", "FOR erwartet TO oder DOWNTO."},
        {i + "FOR i = 1 TO 2 DO END END.", assign},
    });
}

TEST(Errors, AListNeverLoopsOnASymbolItCannotUse) {
    const char* incorrect = "Inkorrektes Symbol in einer Anweisung.";
    const char* follows = "Auf diese Anweisung folgt ein inkorrekt verwendetes Symbol.";
    ExpectErrors({
        {"BEGIN WHILE 1 DO", incorrect}, {"VAR i : INTEGER; BEGIN WHILE 1 DO i := 1", follows},
        {"BEGIN REPEAT ) UNTIL 1 END.", incorrect},
        {"VAR i : INTEGER; BEGIN LOOP i := 1 ) END END.", follows},
        {"VAR a : INTEGER; BEGIN IF a THEN a := 1 .", follows},
        {"BEGIN REPEAT END END.", incorrect},
        {"BEGIN IF 1 THEN ELSE ELSIF 1 THEN END END.", incorrect},
        {"VAR i : INTEGER; BEGIN FOR i := 1 TO 2 DO ; ; 5 END END.", incorrect},
        {"BEGIN WHILE 1 DO UNTIL 1 END.", incorrect}, {"BEGIN LOOP UNTIL END.", incorrect},
    });
    // Statements in a list need no semicolon between them.
    EXPECT_EQ(RunRecorded("VAR i : INTEGER; BEGIN IF 1 THEN i := 1 merkeZahl(i) ; ; END END."),
              Record{"i:1"});
}

TEST(Errors, Expressions) {
    const char* strings = "Keine Rechenoperationen mit Zeichenketten.";
    const char* ending = "Der vorangehende Operator kann nicht mit diesem Symbol enden.";
    const std::string i = "VAR i : INTEGER; s : STRING; PROCEDURE p(); BEGIN END; BEGIN ";
    ExpectErrors({
        {i + "s := \"a\" - 1 END.", strings},   {i + "s := -\"a\" END.", strings},
        {i + "s := \"a\" * 2 END.", strings},   {i + "i := 2 * \"a\" END.", strings},
        {i + "i := 2 - \"a\" END.", strings},   {i + "i := 1 * -\"a\" END.", strings},
        {i + "i := NOT \"a\" END.", strings},   {i + "i := \"a\" AND 1 END.", strings},
        {i + "i := 1 BITOR \"a\" END.", strings},
        // A plus with a text makes a text, whichever side it stands on.
        {i + "i := 1 + \"a\" END.", incompatible},
        {i + "i := (1 + 2 END.", "Schliessende Klammer fehlt."},
        {i + "i := 1 + ; END.", ending}, {i + "i := 2 * -i END.", ending},
        {i + "i := p END.", "Ein Ausdruck darf keinen Prozedurbezeichner enthalten."},
        // A relation and a logical operator need parentheses between them.
        {i + "i := i = 1 AND i = 2 END.", "Hier wird \";\" oder END erwartet."},
    });
}

TEST(Errors, RoutineDeclarations) {
    const char* list =
        "Function/Procedure: Schließende Klammer, Semicolon oder Doppelpunkt erwartet.";
    ExpectErrors({
        {"PROCEDURE p; BEGIN END; BEGIN END.", "öffnende Klammer erwartet."},
        {"PROCEDURE (); BEGIN END; BEGIN END.", identifier},
        {"PROCEDURE p(5); BEGIN END; BEGIN END.", list}, {"PROCEDURE p(a : INTEGER", list},
        {"PROCEDURE p(a : INTEGER 5); BEGIN END; BEGIN END.", list},
        {"PROCEDURE p(a b : INTEGER); BEGIN END; BEGIN END.", "Typdeklaration fehlt."},
        {"PROCEDURE p(a : x); BEGIN END; BEGIN END.", "unbekannter Variablentyp"},
        {"FUNCTION f(); BEGIN END; BEGIN END.", "Doppelpunkt nach Funktionsdeklaration erwartet."},
        {"FUNCTION f() : ARRAY; BEGIN END; BEGIN END.",
         "Funktionen können nur einfache Datentypen zurückgeben."},
        {"FUNCTION f() : 5; BEGIN END; BEGIN END.", "Funktionstyp erwartet."},
        {"PROCEDURE p() BEGIN END; BEGIN END.", semicolon},
        {"PROCEDURE p(); BEGIN END BEGIN END.", semicolon},
        {"PROCEDURE p(a : INTEGER); VAR a : INTEGER; BEGIN END; BEGIN END.", twice},
        {"PROCEDURE p(); BEGIN END; PROCEDURE P(); BEGIN END; BEGIN END.", twice},
        // No forward declaration: a routine cannot call a later sibling, nor
        // see the variables declared behind it.
        {"PROCEDURE a(); BEGIN b() END; PROCEDURE b(); BEGIN END; BEGIN END.", undeclared},
        {"PROCEDURE p(); BEGIN x := 1 END; VAR x : INTEGER; BEGIN END.", undeclared},
        // VAR holds up to the next semicolon of the list only.
        {"PROCEDURE p(VAR a : INTEGER; b : INTEGER); BEGIN END; VAR v : INTEGER; "
         "BEGIN p(1, v) END.",
         "Variable erwartet."},
        // Outside its body the result variable is not in scope.
        {"FUNCTION f() : INTEGER; BEGIN END; BEGIN f := 1 END.", undeclared},
    });
    // Legal forms of parameter lists; a local variable named like its routine.
    EXPECT_EQ(RunSilently("PROCEDURE p(a : INTEGER;); BEGIN END; "
                          "PROCEDURE q(a : INTEGER b : DOUBLE); VAR q : INTEGER; BEGIN q := a END; "
                          "PROCEDURE r(VAR a : INTEGER; b : INTEGER); BEGIN END; VAR v : INTEGER; "
                          "BEGIN p(1); q(1, 2); r(v, 1 + 2) END."),
              1);
}

TEST(Errors, Calls) {
    const char* variable = "Variable erwartet.";
    const char* argument = "Argument hat falschen Typ.";
    const char* comma = "Komma erwartet.";
    const char* closing = "schließende Klammer erwartet.";
    const char* opening = "öffnende Klammer erwartet.";
    const std::string s =
        "VAR i : INTEGER; d : DOUBLE; a3 : ARRAY [3] OF INTEGER; a4 : ARRAY [4] OF INTEGER; "
        "d3 : ARRAY [3] OF DOUBLE; CONST c = 1; "
        "PROCEDURE p(VAR x : INTEGER; y : ARRAY [3] OF INTEGER); BEGIN END; "
        "PROCEDURE q(VAR x : DOUBLE); BEGIN END; "
        "PROCEDURE r(y : ARRAY [3] OF INTEGER; z : INTEGER); BEGIN END; "
        "FUNCTION f() : INTEGER; BEGIN END; BEGIN ";
    ExpectErrors({
        {s + "p END.", opening},          {s + "i := f END.", opening},
        {s + "p(1, a3) END.", variable},  {s + "p(f, a3) END.", variable},
        {s + "p(c, a3) END.", variable},  {s + "q(i) END.", argument},
        {s + "p(a3, a3) END.", argument}, {s + "p(i, i) END.", argument},
        {s + "p(i, a3[0]) END.", closing}, {s + "r(a3[0], 1) END.", comma},
        {s + "p(i, d3) END.", "Arrayargument hat falschen Typ."},
        {s + "p(i, a4) END.", "Arrayargument hat falsche Größe."},
        {s + "p(i) END.", comma},         {s + "p(i, a3, 1) END.", closing},
        {s + "p(i a3) END.", comma},      {s + "p(z, a3) END.", undeclared},
        {"TYPEDEF h : INTEGER; VAR v : INTEGER; PROCEDURE p(VAR x : h); BEGIN END; BEGIN p(v) END.",
         argument},
    });
}

TEST(Errors, SilentCompileShowsNothingAndEnds) {
    // With errors not shown, each failure only clears the result, and the
    // compile still comes to an end on every input.
    for (const char* source : {
             "VAR a : ARRAY [2] OF INTEGER; PROCEDURE p(VAR x : INTEGER; VAR y : INTEGER; "
             "VAR z : INTEGER); BEGIN END; BEGIN p(a, a, a) END.",
             "PROCEDURE p(VAR x : INTEGER; VAR y : INTEGER); BEGIN END; VAR i : INTEGER; "
             "BEGIN p(i) END.",
             "VAR a : x; b : INTEGER; BEGIN b := c + + ( END.",
             "CONST a, b, c ; ; BEGIN IF IF IF END END.",
             "FUNCTION f(VAR VAR : ) : ; BEGIN f(((( END.",
             "TYPEDEF a : a; TYPEDEF : ; IMPORT 1 2 EXTERN x; BEGIN END.",
             "BEGIN FOR x := 1 TO DO BREAK CONTINUE EXIT END; REPEAT UNTIL",
         }) {
        ScopedRecordingUi ui;
        EXPECT_EQ(RunText(source, false), 0) << source;
        EXPECT_TRUE(ui.ui.events.empty()) << source;
    }
}
