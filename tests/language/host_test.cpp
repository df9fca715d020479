// EXTERN routines, TYPEDEF types and IMPORT with a host environment.
#include <gtest/gtest.h>

#include "language/language_test_support.h"

TEST(Extern, ResolvesByNameWithoutRegardToCase) {
    ScopedEnvironment environment;
    // The listing names the routine as the script declared it.
    std::string listing = ListingOf("EXTERN FUNCTION SIN(x : DOUBLE) : DOUBLE; VAR d : DOUBLE; "
                                    "BEGIN d := SIN(90) END.");
    EXPECT_NE(listing.find("EXTCALL, \"SIN\""), std::string::npos) << listing;
    EXPECT_EQ(RunRecorded("EXTERN FUNCTION str(x : DOUBLE; n : INTEGER) : STRING; "
                          "EXTERN FUNCTION Sqr(x : DOUBLE) : DOUBLE; "
                          "BEGIN merke(str(Sqr(1.5), 2)) END."),
              Record{"s:2.25"});
    // A nested block may declare the name again, with another signature.
    EXPECT_EQ(RunRecorded("PROCEDURE p(); EXTERN PROCEDURE merke(x : INTEGER); "
                          "BEGIN merke(2.7) END; BEGIN p() END."),
              Record{"i:2"});
}

TEST(Extern, Failures) {
    ScopedEnvironment environment;
    ExpectErrors({
        {"EXTERN PROCEDURE nichtda(); BEGIN END.", "Externer Verweis kann nicht aufgelöst werden."},
        {"EXTERN x; BEGIN END.", "PROCEDURE oder FUNCTION erwartet."},
        {"EXTERN FUNCTION sin(x : DOUBLE) ; BEGIN END.",
         "Doppelpunkt nach Funktionsdeklaration erwartet."},
        {"EXTERN PROCEDURE merke(x : STRING) BEGIN END.", semicolon},
        {"EXTERN PROCEDURE (x : STRING); BEGIN END.", identifier},
        {"EXTERN PROCEDURE merke(x : STRING); EXTERN PROCEDURE MERKE(x : STRING); BEGIN END.", twice},
    });
    // Without an environment EXTERN and IMPORT are compile errors.
    pBasisPredefinedUmgebung = nullptr;
    ExpectErrors({
        {"EXTERN PROCEDURE merke(x : STRING); BEGIN END.", "Keine Umgebung für EXTERN gesetzt."},
        {"IMPORT \"a\" \"b\" BEGIN END.", "Keine Umgebung für IMPORT gesetzt."},
    });
}

TEST(Typedef, NumbersAndCompatibility) {
    // A value of a derived type may go to its base or INTEGER, not the reverse.
    EXPECT_EQ(RunRecorded("TYPEDEF a : INTEGER; TYPEDEF b : a; "
                          "CONST kb : b = 7; ka : a = 6; VAR va : a; vi : INTEGER; vb : b; "
                          "BEGIN va := kb; vi := kb; vb := kb; merkeZahl(va); merkeZahl(ka); "
                          "merkeZahl(vb); merkeZahl(vi) END."),
              (Record{"t61:7", "t60:6", "t61:7", "t61:7"}));
    ExpectErrors({
        {"TYPEDEF a : INTEGER; TYPEDEF b : a; CONST ka : a = 6; VAR vb : b; BEGIN vb := ka END.",
         incompatible},
        {"TYPEDEF a : INTEGER; PROCEDURE p(x : a); BEGIN END; BEGIN p(1) END.",
         "Typen sind nicht kompatibel."},
        {"TYPEDEF a : DOUBLE; BEGIN END.", "Bezeichner erwartet."},
        {"TYPEDEF 5 : INTEGER; BEGIN END.", "Bezeichner erwartet."},
        {"TYPEDEF a : a; BEGIN END.", "Basisname unbekannt."},
        {"TYPEDEF a INTEGER; BEGIN END.", "Doppelpunkt erwartet."},
        {"TYPEDEF a : INTEGER BEGIN END.", "Semicolon erwartet."},
        {"TYPEDEF h : INTEGER; VAR a : ARRAY [2] OF h; BEGIN END.",
         "Array-Definition erwartet INTEGER, DOUBLE oder STRING."},
        {"TYPEDEF a : INTEGER; TYPEDEF b : x; BEGIN END.", "Basisname unbekannt."},
    });
    // The failed TYPEDEF of the last case left the table as it was.
    ASSERT_EQ(PredefinedTypen.GetSize(), 2);
    EXPECT_EQ(PredefinedTypen[1]->name, "a");
    // The name is known everywhere behind its declaration, also outside the
    // routine that declared it, and apart from the names of the symbol table.
    EXPECT_EQ(RunSilently("PROCEDURE p(); TYPEDEF h : INTEGER; BEGIN END; "
                          "FUNCTION f(x : h) : h; VAR h : h; BEGIN f := x END; BEGIN END."),
              1);
}

TEST(Import, HandsBothStringsToTheHostWhoMaySpliceText) {
    ScopedEnvironment environment;
    EXPECT_EQ(ListingOf("IMPORT \"a\" \"b\" BEGIN END."), ListingOf("BEGIN END."));
    EXPECT_EQ(environment.environment.imports, Record{"a|b"});
    ExpectErrors({
        {"IMPORT \"a\"; BEGIN END.", "Zeichenkette erwartet"},
        {"IMPORT 1 \"b\" BEGIN END.", "Zeichenkette erwartet"},
        {"IMPORT \"a\" \"b\"; BEGIN END.", "Hier wird ein Punkt erwartet."},
    });
    // The text of an IMPORT may hold declarations and a further IMPORT.
    EXPECT_EQ(RunRecorded("IMPORT \"text\" \"VAR z : INTEGER; "
                          "IMPORT \\\"text\\\" \\\"CONST k = 4;\\\" \" "
                          "BEGIN z := k + 1; merkeZahl(z) END."),
              Record{"i:5"});
    // An error inside spliced text is shown in the text that was compiled.
    ScopedRecordingUi ui;
    ScopedEnvironment again;
    EXPECT_EQ(RunText("IMPORT \"text\" \"VAR z : ;\" BEGIN END.", true), 0);
    ASSERT_FALSE(ui.ui.events.empty());
    EXPECT_EQ(ui.ui.events[0].kind, UiEvent::TextDialog);
    EXPECT_NE(ui.ui.events[0].text.str().find("VAR z : ;"), std::string::npos);
    EXPECT_NE(ui.ui.events[0].text.str().find("unbekannter Variablentyp"), std::string::npos);
}

// Spliced texts follow one another in order, also behind a script longer than
// the scanner reads ahead. An error behind them is marked in the text that was
// compiled, and its line counts the lines the texts brought along.
TEST(Import, ManySplicedTextsAndAnErrorBehindThem) {
    std::string imports, spliced, body;
    for (int i = 0; i < 200; ++i) {
        const std::string declaration = "VAR v" + std::to_string(i) + " : INTEGER;\n";
        const std::string import = "IMPORT \"text\" \"" + declaration + "\"\n";
        imports += import;
        spliced += import + declaration;  // behind the look-ahead, the line feed
    }
    for (int i = 0; i < 1000; ++i) body += "  v" + std::to_string(i % 200) + " := " + std::to_string(i) + ";\n";
    const std::string tail = "  v7 := ;\nEND.";
    ScopedRecordingUi ui;
    ScopedEnvironment environment;
    EXPECT_EQ(RunText(imports + "BEGIN\n" + body + tail, true, false), 0);
    EXPECT_EQ(environment.environment.imports.size(), 200u);
    ASSERT_FALSE(ui.ui.events.empty());
    const std::string shown = ui.ui.events[0].text.str();
    // The look-ahead has passed the line feed behind the error: the marker
    // goes under the next line, here the last.
    const std::string compiled = spliced + "BEGIN\n" + body + tail + "\n";
    ASSERT_GT(shown.size(), compiled.size());
    EXPECT_EQ(shown.substr(0, compiled.size()), compiled);
    EXPECT_EQ(shown.substr(compiled.size(), 3), FehlerMeldungStart);
    EXPECT_EQ(GetLastScriptError().line, 3 * 200 + 1 + 1000);
}
