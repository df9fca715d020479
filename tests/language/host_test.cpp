// EXTERN routines, TYPEDEF types and IMPORT with a host environment.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "language/language_test_support.h"

using Record = std::vector<std::string>;

TEST(Extern, ResolvesByNameWithoutRegardToCase) {
    ScopedEnvironment environment;
    std::string listing = ListingOf("EXTERN FUNCTION SIN(x : DOUBLE) : DOUBLE; VAR d : DOUBLE; "
                                    "BEGIN d := SIN(90) END.");
    EXPECT_NE(listing.find("EXTCALL, \"SIN\""), std::string::npos) << listing;
    EXPECT_EQ(RunRecorded("EXTERN FUNCTION str(x : DOUBLE; n : INTEGER) : STRING; "
                          "EXTERN FUNCTION Sqr(x : DOUBLE) : DOUBLE; "
                          "BEGIN merke(str(Sqr(1.5), 2)) END."),
              Record{"s:2.25"});
}

TEST(Extern, Failures) {
    ScopedEnvironment environment;
    EXPECT_EQ(CompileError("EXTERN PROCEDURE nichtda(); BEGIN END."),
              "Externer Verweis kann nicht aufgelöst werden.");
    EXPECT_EQ(CompileError("EXTERN x; BEGIN END."), "PROCEDURE oder FUNCTION erwartet.");
    EXPECT_EQ(CompileError("EXTERN FUNCTION sin(x : DOUBLE) ; BEGIN END."),
              "Doppelpunkt nach Funktionsdeklaration erwartet.");
    EXPECT_EQ(CompileError("EXTERN FUNCTION sin(x : DOUBLE) : ARRAY; BEGIN END."),
              "Funktionen können nur einfache Datentypen zurückgeben.");
    EXPECT_EQ(CompileError("EXTERN PROCEDURE merke(x : STRING) BEGIN END."),
              "Strichpunkt (oder Komma) fehlt.");
    EXPECT_EQ(CompileError("EXTERN PROCEDURE (x : STRING); BEGIN END."),
              "Nach CONST, VAR, oder PROCEDURE muss ein Bezeichner folgen.");
    EXPECT_EQ(CompileError("EXTERN PROCEDURE merke(x : STRING); "
                           "EXTERN PROCEDURE MERKE(x : STRING); BEGIN END."),
              "Ein Bezeichner darf nur einmal vereinbart werden.");
    // A nested block may declare the name again, with another signature.
    EXPECT_EQ(RunRecorded("PROCEDURE p(); EXTERN PROCEDURE merke(x : INTEGER); "
                          "BEGIN merke(2.7) END; BEGIN p() END."),
              Record{"i:2"});
}

TEST(Extern, WithoutAnEnvironmentIsACompileError) {
    CBasisPredefinedUmgebung* saved = pBasisPredefinedUmgebung;
    pBasisPredefinedUmgebung = nullptr;
    EXPECT_EQ(CompileError("EXTERN PROCEDURE merke(x : STRING); BEGIN END."),
              "Keine Umgebung für EXTERN gesetzt.");
    EXPECT_EQ(CompileError("IMPORT \"a\" \"b\" BEGIN END."), "Keine Umgebung für IMPORT gesetzt.");
    {
        ScopedRecordingUi ui;
        EXPECT_EQ(RunText("EXTERN FUNCTION sin(x : DOUBLE) : DOUBLE; BEGIN END.", false), 0);
        EXPECT_TRUE(ui.ui.events.empty());
    }
    pBasisPredefinedUmgebung = saved;
}

TEST(Typedef, NumbersAndCompatibility) {
    // A value of a derived type may go to its base or INTEGER, not the reverse.
    EXPECT_EQ(RunRecorded("TYPEDEF a : INTEGER; TYPEDEF b : a; "
                          "CONST kb : b = 7; ka : a = 6; VAR va : a; vi : INTEGER; vb : b; "
                          "BEGIN va := kb; vi := kb; vb := kb; merkeZahl(va); merkeZahl(ka); "
                          "merkeZahl(vb); merkeZahl(vi) END."),
              (Record{"t61:7", "t60:6", "t61:7", "t61:7"}));
    EXPECT_EQ(CompileError("TYPEDEF a : INTEGER; TYPEDEF b : a; CONST ka : a = 6; VAR vb : b; "
                           "BEGIN vb := ka END."),
              "Typen sind nicht kompatibel");
    EXPECT_EQ(CompileError("TYPEDEF a : INTEGER; PROCEDURE p(x : a); BEGIN END; BEGIN p(1) END."),
              "Typen sind nicht kompatibel.");
    // The name is known everywhere behind its declaration, also outside the
    // routine that declared it, and apart from the names of the symbol table.
    ScopedRecordingUi ui;
    EXPECT_EQ(RunText("PROCEDURE p(); TYPEDEF h : INTEGER; BEGIN END; "
                      "FUNCTION f(x : h) : h; VAR h : h; BEGIN f := x END; BEGIN END.",
                      true),
              1);
    EXPECT_TRUE(ui.ui.events.empty());
}

TEST(Typedef, Failures) {
    EXPECT_EQ(CompileError("TYPEDEF a : DOUBLE; BEGIN END."), "Bezeichner erwartet.");
    EXPECT_EQ(CompileError("TYPEDEF 5 : INTEGER; BEGIN END."), "Bezeichner erwartet.");
    EXPECT_EQ(CompileError("TYPEDEF a : b; BEGIN END."), "Basisname unbekannt.");
    EXPECT_EQ(CompileError("TYPEDEF a : a; BEGIN END."), "Basisname unbekannt.");
    EXPECT_EQ(CompileError("TYPEDEF a INTEGER; BEGIN END."), "Doppelpunkt erwartet.");
    EXPECT_EQ(CompileError("TYPEDEF a : INTEGER BEGIN END."), "Semicolon erwartet.");
    EXPECT_EQ(CompileError("TYPEDEF h : INTEGER; VAR a : ARRAY [2] OF h; BEGIN END."),
              "Array-Definition erwartet INTEGER, DOUBLE oder STRING.");
    // A failed TYPEDEF leaves the table as it was.
    ScopedRecordingUi ui;
    EXPECT_EQ(RunText("TYPEDEF a : INTEGER; TYPEDEF b : x; BEGIN END.", false), 0);
    ASSERT_EQ(PredefinedTypen.GetSize(), 2);
    EXPECT_EQ(PredefinedTypen[1]->name, "a");
}

TEST(Import, HandsBothStringsToTheHost) {
    ScopedRecordingUi ui;
    ScopedEnvironment environment;
    EXPECT_EQ(ListingOf("IMPORT \"a\" \"b\" BEGIN END."), ListingOf("BEGIN END."));
    ASSERT_EQ(environment.environment.imports.size(), 1u);
    EXPECT_EQ(environment.environment.imports[0], "a|b");
    EXPECT_EQ(CompileError("IMPORT \"a\"; BEGIN END."), "Zeichenkette erwartet");
    EXPECT_EQ(CompileError("IMPORT 1 \"b\" BEGIN END."), "Zeichenkette erwartet");
    EXPECT_EQ(CompileError("IMPORT \"a\" \"b\"; BEGIN END."), "Hier wird ein Punkt erwartet.");
}

TEST(Import, SplicedTextIsCompiledInPlace) {
    // The text of an IMPORT may hold declarations and a further IMPORT.
    EXPECT_EQ(RunRecorded("IMPORT \"text\" \"VAR z : INTEGER; "
                          "IMPORT \\\"text\\\" \\\"CONST k = 4;\\\" \" "
                          "BEGIN z := k + 1; merkeZahl(z) END."),
              Record{"i:5"});
    // An error inside spliced text is shown in the text that was compiled.
    ScopedRecordingUi ui;
    ScopedEnvironment environment;
    EXPECT_EQ(RunText("IMPORT \"text\" \"VAR z : ;\" BEGIN END.", true), 0);
    bool shown = false;
    for (const UiEvent& event : ui.ui.events)
        if (event.kind == UiEvent::TextDialog) {
            shown = true;
            EXPECT_NE(event.text.str().find("VAR z : ;"), std::string::npos);
            EXPECT_NE(event.text.str().find("unbekannter Variablentyp"), std::string::npos);
        }
    EXPECT_TRUE(shown);
}
