#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/test_support.h"

namespace {

int RunIn(const std::string& dir, const std::string& source, bool showErrors, bool run = true) {
    std::string text = source;
    return RunScript(dir.c_str(), text.data(), static_cast<int>(text.size()), showErrors, run);
}

std::vector<UiEvent::Kind> KindsOf(const RecordingUserInterface& ui) {
    std::vector<UiEvent::Kind> kinds;
    for (const UiEvent& e : ui.events) kinds.push_back(e.kind);
    return kinds;
}

}  // namespace

TEST(RunScript, CleanRunAndCompileOnly) {
    ScopedRecordingUi rec;
    EXPECT_NE(hQELKernInstance, nullptr);  // recorded when the library was loaded
    EXPECT_EQ(RunText("BEGIN END."), 1);
    // Compiled but never started: the division by zero is not reached.
    EXPECT_EQ(RunText("VAR x : INTEGER; BEGIN x := 1 / 0 END.", true, false), 1);
    EXPECT_TRUE(rec.ui.events.empty());
    EXPECT_EQ(RunText("VAR x : INTEGER; BEGIN x := 1 / 0 END.", true, true), 0);
    EXPECT_FALSE(rec.ui.events.empty());
}

TEST(RunScript, ParserErrorShowsTheDialogThenTheBox) {
    ScopedRecordingUi rec;
    EXPECT_EQ(RunText("BEGIN END"), 0);
    ASSERT_EQ(KindsOf(rec.ui), (std::vector<UiEvent::Kind>{UiEvent::TextDialog, UiEvent::Message}));
    EXPECT_EQ(rec.ui.events[0].caption, "Fehler Parser");
    EXPECT_NE(rec.ui.events[0].text.Find("Hier wird ein Punkt erwartet."), -1);
    EXPECT_EQ(rec.ui.events[1].text, "Fehler im Parser");
    EXPECT_EQ(rec.ui.events[1].icon, CUserInterface::IconError);

    rec.ui.events.clear();
    EXPECT_EQ(RunText("", true), 0);
    EXPECT_EQ(KindsOf(rec.ui), (std::vector<UiEvent::Kind>{UiEvent::TextDialog, UiEvent::Message}));

    rec.ui.events.clear();
    EXPECT_EQ(RunText("BEGIN x := ; y := END", false), 0);
    EXPECT_TRUE(rec.ui.events.empty());
}

TEST(RunScript, ScannerErrorWinsOverTheParserBox) {
    ScopedRecordingUi rec;
    EXPECT_EQ(RunText("VAR d : DOUBLE; BEGIN d := 1.2.3 END."), 0);
    ASSERT_EQ(rec.ui.Messages().size(), 2u);
    EXPECT_NE(rec.ui.Messages()[0].Find("Fehler bei der Zahlenangabe."), -1);
    EXPECT_EQ(rec.ui.events[0].icon, CUserInterface::IconNone);
    EXPECT_EQ(rec.ui.Messages()[1], "Fehler im Scanner");
    EXPECT_EQ(rec.ui.events[1].icon, CUserInterface::IconError);

    // Both kinds of error: the dialog of the parser, but the box of the scanner.
    rec.ui.events.clear();
    EXPECT_EQ(RunText("BEGIN 1.2.3 END."), 0);
    ASSERT_EQ(KindsOf(rec.ui),
              (std::vector<UiEvent::Kind>{UiEvent::Message, UiEvent::TextDialog, UiEvent::Message}));
    EXPECT_EQ(rec.ui.events[2].text, "Fehler im Scanner");

    // The scanner does not know the flag: its own box comes all the same.
    rec.ui.events.clear();
    EXPECT_EQ(RunText("VAR d : DOUBLE; BEGIN d := 1.2.3 END.", false), 0);
    ASSERT_EQ(rec.ui.Messages().size(), 1u);
    EXPECT_NE(rec.ui.Messages()[0].Find("Scanner: Zeile: 0"), -1);
}

TEST(RunScript, TextBehindThePeriodIsNeverRead) {
    ScopedRecordingUi rec;
    EXPECT_EQ(RunText("BEGIN END. 1.2.3 \"open (* open"), 1);
    EXPECT_TRUE(rec.ui.events.empty());
}

TEST(RunScript, TakesNoMoreThanLengthAndStopsAtTheTerminator) {
    ScopedRecordingUi rec;
    const std::string dir = MakeTempDir("runner-length");
    std::string text = "BEGIN END.BEGIN";
    EXPECT_EQ(RunScript(dir.c_str(), text.data(), 10, false, true), 1);
    EXPECT_EQ(RunScript(dir.c_str(), text.data(), 9, false, true), 0);
    // A length beyond the terminator: the text ends at its NUL.
    std::string shortText = "BEGIN END.";
    EXPECT_EQ(RunScript(dir.c_str(), shortText.data(), 4096, false, true), 1);
    EXPECT_EQ(RunScript(dir.c_str(), nullptr, 5, false, true), 0);
    EXPECT_EQ(RunScript(dir.c_str(), text.data(), -3, false, true), 0);
    EXPECT_TRUE(rec.ui.events.empty());
}

TEST(RunScript, PreludeJoinsAndLinesCountFromItsFirstLine) {
    ScopedRecordingUi rec;
    const std::string dir = MakeTempDir("runner-prelude");
    WriteFileBytes(dir + "extern.qel",
                   "(* Vorspann *)\r\nCONST\r\n  eins = 1;\r\nVAR\r\n  p : INTEGER;");
    const std::string script =
        "BEGIN\n"
        "  p := eins;\n"
        "  unbekannt := 2\n"
        "END.\n";
    EXPECT_EQ(RunIn(dir, script, true), 0);
    ASSERT_EQ(KindsOf(rec.ui), (std::vector<UiEvent::Kind>{UiEvent::TextDialog, UiEvent::Message}));
    const UiEvent& dialog = rec.ui.events[0];
    EXPECT_EQ(dialog.line, 7);
    EXPECT_EQ(dialog.text,
              "(* Vorspann *)\nCONST\n  eins = 1;\nVAR\n  p : INTEGER;\n"
              "BEGIN\n  p := eins;\n  unbekannt := 2\n"
              "<!>!!!!!!!!!Dieser Bezeichner ist nicht vereinbart.\r\n"
              "END.\n");

    // The prelude's declarations serve the script.
    rec.ui.events.clear();
    EXPECT_EQ(RunIn(dir, "BEGIN p := eins + 1 END.", true), 1);
    EXPECT_TRUE(rec.ui.events.empty());
}

TEST(RunScript, FromAFile) {
    ScopedRecordingUi rec;
    const std::string dir = MakeTempDir("runner-file");
    WriteFileBytes(dir + "umlaut.qel", "VAR Gr\xC3\xB6\xC3\x9F" "e : INTEGER;\nBEGIN gr\xC3\xB6\xC3\x9F" "e := 3 END.\n");
    EXPECT_EQ(RunScript(dir.c_str(), (dir + "umlaut.qel").c_str(), true), 1);
    EXPECT_TRUE(rec.ui.events.empty());

    // A missing script is an empty one: the prelude alone is compiled.
    WriteFileBytes(dir + "extern.qel", "BEGIN END.\n");
    EXPECT_EQ(RunScript(dir.c_str(), (dir + "missing.qel").c_str(), true), 1);
    EXPECT_TRUE(rec.ui.events.empty());
}

TEST(RunScript, TestAsksForAFile) {
    ScopedRecordingUi rec;
    const std::string dir = MakeTempDir("runner-test");
    EXPECT_EQ(::Test(dir.c_str()), 0);
    ASSERT_EQ(rec.ui.events.size(), 1u);
    const UiEvent& dialog = rec.ui.events[0];
    EXPECT_EQ(dialog.kind, UiEvent::FileDialog);
    EXPECT_TRUE(dialog.integerMode);  // an open dialog
    EXPECT_EQ(dialog.text, "*.qel");
    EXPECT_EQ(dialog.caption, "qel");
    EXPECT_EQ(static_cast<unsigned>(dialog.line), OFN_FILEMUSTEXIST | OFN_NOCHANGEDIR);

    WriteFileBytes(dir + "chosen.qel", "BEGIN END");
    rec.ui.fileDialogAnswer = (dir + "chosen.qel").c_str();
    rec.ui.events.clear();
    EXPECT_EQ(::Test(dir.c_str()), 0);
    // Shown with showErrors set: the dialog, then the box.
    EXPECT_EQ(KindsOf(rec.ui), (std::vector<UiEvent::Kind>{UiEvent::FileDialog, UiEvent::TextDialog,
                                                            UiEvent::Message}));
}

TEST(RunScript, WorkedExampleListing) {
    EXPECT_EQ(ListingOf("CONST c = 2; VAR x : INTEGER; BEGIN x := c + 3 END."),
              "0:\tINT 0, 4, \"main\"\n"
              "1:\tLIT (int)0\n"
              "2:\tSTO 0, 3\n"
              "3:\tLIT (int)2\n"
              "4:\tLIT (int)3\n"
              "5:\tOPR +\n"
              "6:\tSTO 0, 3\n"
              "7:\tOPR RET\n");
    EXPECT_EQ(ListingOf("BEGIN END."), "0:\tINT 0, 3, \"main\"\n1:\tOPR RET\n");
}
