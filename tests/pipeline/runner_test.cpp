#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/test_support.h"

namespace {

using Seen = std::vector<std::string>;

// What the user saw, a line per window: boxes by icon and text, others by title.
Seen SeenBy(const RecordingUserInterface& ui) {
    static const char* const boxes[] = {"box: ", "info box: ", "error box: "};
    static const char* const others[] = {"", "dialog: ", "number entry: ", "file dialog: ", "print: ",
                                         "beep: "};
    Seen seen;
    for (const UiEvent& e : ui.events)
        seen.push_back(e.kind == UiEvent::Message ? boxes[e.icon] + e.text.str()
                                                  : others[e.kind] + e.caption.str());
    return seen;
}

}  // namespace

TEST(RunScript, RunsOnlyTheGivenTextAndOnlyWhenAsked) {
    ScopedRecordingUi rec;
    EXPECT_NE(hQELKernInstance, nullptr);  // recorded when the library was loaded
    EXPECT_EQ(RunText("BEGIN END."), 1);
    const char* dividing = "VAR x : INTEGER; BEGIN x := 1 / 0 END.";
    EXPECT_EQ(RunText(dividing, true, false), 1) << "compiled, never started";
    EXPECT_TRUE(rec.ui.events.empty());
    EXPECT_EQ(RunText(dividing, true, true), 0);
    EXPECT_EQ(SeenBy(rec.ui), Seen{"error box: Division durch Null"});

    rec.ui.events.clear();
    EXPECT_EQ(RunText("BEGIN END. 1.2.3 \"open (* open"), 1) << "behind the period nothing is read";
    const std::string dir = MakeTempDir("runner-length");
    std::string text = "BEGIN END.BEGIN";
    EXPECT_EQ(RunScript(dir.c_str(), text.data(), 10, false, true), 1);
    EXPECT_EQ(RunScript(dir.c_str(), text.data(), 9, false, true), 0);
    std::string shortText = "BEGIN END.";  // a length beyond the terminator: the text ends at its NUL
    EXPECT_EQ(RunScript(dir.c_str(), shortText.data(), 4096, false, true), 1);
    EXPECT_EQ(RunScript(dir.c_str(), nullptr, 5, false, true), 0);
    EXPECT_EQ(RunScript(dir.c_str(), text.data(), -3, false, true), 0);
    EXPECT_TRUE(rec.ui.events.empty());

    // The listing is written for a clean compile only.
    EXPECT_EQ(ListingOf("BEGIN END."), "0:\tINT 0, 3, \"main\"\n1:\tOPR RET\n");
    EXPECT_EQ(ListingOf("BEGIN END"), "");
}

TEST(RunScript, CompileErrorsShowTheirWindowsThenOneBox) {
    const std::string mark = "box: Scanner: Zeile: 0 Position: ";
    const struct {
        const char* source;
        bool showErrors;
        Seen seen;
    } cases[] = {
        {"BEGIN END", true, {"dialog: Fehler Parser", "error box: Fehler im Parser"}},
        {"", true, {"dialog: Fehler Parser", "error box: Fehler im Parser"}},
        {"VAR d : DOUBLE; BEGIN d := 1.2.3 END.", true,
         {mark + "33: Fehler bei der Zahlenangabe.\n", "error box: Fehler im Scanner"}},
        // Both kinds of error: the dialog of the parser, but the box of the scanner.
        {"BEGIN 1.2.3 END.", true,
         {mark + "12: Fehler bei der Zahlenangabe.\n", "dialog: Fehler Parser",
          "error box: Fehler im Scanner"}},
        // The scanner does not know the flag: its own box comes all the same.
        {"VAR d : DOUBLE; BEGIN d := 1.2.3 END.", false, {mark + "33: Fehler bei der Zahlenangabe.\n"}},
    };
    for (const auto& c : cases) {
        ScopedRecordingUi rec;
        EXPECT_EQ(RunText(c.source, c.showErrors), 0) << c.source;
        EXPECT_EQ(SeenBy(rec.ui), c.seen) << c.source;
    }
}

TEST(RunScript, PreludeJoinsAndLinesCountFromItsFirstLine) {
    ScopedRecordingUi rec;
    const std::string dir = MakeTempDir("runner-prelude");
    WriteFileBytes(dir + "extern.qel", "(* Vorspann *)\r\nCONST\r\n  eins = 1;\r\nVAR\r\n  p : INTEGER;");
    std::string script = "BEGIN\n  p := eins;\n  unbekannt := 2\nEND.\n";
    EXPECT_EQ(RunScript(dir.c_str(), script.data(), static_cast<int>(script.size()), true), 0);
    EXPECT_EQ(SeenBy(rec.ui), (Seen{"dialog: Fehler Parser", "error box: Fehler im Parser"}));
    EXPECT_EQ(rec.ui.events[0].line, 7);
    EXPECT_EQ(rec.ui.events[0].text,
              "(* Vorspann *)\nCONST\n  eins = 1;\nVAR\n  p : INTEGER;\n"
              "BEGIN\n  p := eins;\n  unbekannt := 2\n"
              "<!>!!!!!!!!!Dieser Bezeichner ist nicht vereinbart.\r\nEND.\n");

    // The prelude's declarations serve the script; a script file is decoded, a
    // missing one is empty.
    rec.ui.events.clear();
    script = "BEGIN p := eins + 1 END.";
    EXPECT_EQ(RunScript(dir.c_str(), script.data(), static_cast<int>(script.size()), true), 1);
    WriteFileBytes(dir + "umlaut.qel",
                   "VAR Gr\xC3\xB6\xC3\x9F" "e : INTEGER;\nBEGIN gr\xC3\xB6\xC3\x9F" "e := 3 END.\n");
    WriteFileBytes(dir + "extern.qel", "");
    EXPECT_EQ(RunScript(dir.c_str(), (dir + "umlaut.qel").c_str(), true), 1);
    WriteFileBytes(dir + "extern.qel", "BEGIN END.\n");
    EXPECT_EQ(RunScript(dir.c_str(), (dir + "missing.qel").c_str(), true), 1);
    EXPECT_TRUE(rec.ui.events.empty());
}

TEST(RunScript, TestAsksForAFile) {
    ScopedRecordingUi rec;
    const std::string dir = MakeTempDir("runner-test");
    EXPECT_EQ(::Test(dir.c_str()), 0);
    ASSERT_EQ(SeenBy(rec.ui), Seen{"file dialog: qel"});
    const UiEvent& dialog = rec.ui.events[0];
    EXPECT_TRUE(dialog.integerMode);  // an open dialog
    EXPECT_EQ(dialog.text, "*.qel");
    EXPECT_EQ(static_cast<unsigned>(dialog.line), OFN_FILEMUSTEXIST | OFN_NOCHANGEDIR);

    WriteFileBytes(dir + "chosen.qel", "BEGIN END");
    rec.ui.fileDialogAnswer = (dir + "chosen.qel").c_str();
    rec.ui.events.clear();
    EXPECT_EQ(::Test(dir.c_str()), 0);
    EXPECT_EQ(SeenBy(rec.ui),
              (Seen{"file dialog: qel", "dialog: Fehler Parser", "error box: Fehler im Parser"}))
        << "shown with showErrors set";
}

TEST(LeseTextAusDatei, DecodesAndEndsEveryLineWithALineFeed) {
    const std::string dir = MakeTempDir("lese-text");
    const struct {
        const char* name;
        std::string bytes;
        const char* expected;
    } cases[] = {
        {"utf8.qel", "K\xC3\xA4se\r\nzwei\r\n", "K\xE4se\nzwei\n"},
        {"latin1.qel", "K\xE4se\n\xDF", "K\xE4se\n\xDF\n"},
        {"no-final-end.qel", "a\nb", "a\nb\n"},
        {"blank-lines.qel", "\n\nx\n", "\n\nx\n"},
        {"empty.qel", "", ""},
        // A carriage return ends a line only before a line feed.
        {"returns.qel", "a\rb\r\r\nc\r", "a\rb\r\nc\r\n"},
        // ASCII is looked at eight bytes at a time: what follows a long run still decodes.
        {"late-utf8.qel", "abcdefghijklmnop\xC3\xA4\n", "abcdefghijklmnop\xE4\n"},
        {"late-latin1.qel", "abcdefghijklmnop\xE4q", "abcdefghijklmnop\xE4q\n"},
        {"bom.qel", "\xEF\xBB\xBF" "BEGIN END.", "BEGIN END.\n"},
    };
    for (const auto& c : cases) {
        WriteFileBytes(dir + c.name, c.bytes);
        CString text = "old contents";
        EXPECT_EQ(LeseTextAusDatei((dir + c.name).c_str(), text), 1) << c.name;
        EXPECT_EQ(text, c.expected) << c.name;
    }
    CString text = "unchanged";  // a missing file or a directory leaves the text alone
    EXPECT_EQ(LeseTextAusDatei((dir + "nothing-here.qel").c_str(), text), 0);
    EXPECT_EQ(LeseTextAusDatei(dir.c_str(), text), 0);
    EXPECT_EQ(text, "unchanged");
}
