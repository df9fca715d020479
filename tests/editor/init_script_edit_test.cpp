// InitTWScriptEdit: the word lists learnt once per process from a prelude.
#include <gtest/gtest.h>

#include "tests/editor/editor_fixture.h"

namespace {
class HostEnvironment : public CBasisPredefinedUmgebung {
public:
    CString AddConstants(CStringArray& symbols) override { symbols.Add("Hostwert()"); return " Hostwert "; }
    CString AddKeywords(CStringArray& words) override { words.Add("SCHLEIFE"); return " SCHLEIFE "; }
};

// Each test starts as a fresh process would, with a dialog to take the editor.
class ScriptEditInit : public ::testing::Test {
protected:
    static void Forget() {
        szKeywords.Empty();
        szConstants.Empty();
        Keywords.RemoveAll();
        GlobaleSymbole.RemoveAll();
    }
    void SetUp() override {
        Forget();
        ASSERT_TRUE(dialog.Create());
    }
    void Init(TestEdit& edit, const std::string& prelude) {
        InitTWScriptEdit(&edit, &dialog, IDC_TEXTDIALOG_EDIT, prelude.c_str());
    }
    ScopedRecordingUi recording;
    CWindowDialog dialog{IDD_TEXTDIALOG, nullptr};
};
}  // namespace

TEST_F(ScriptEditInit, GathersKeywordsAndGlobalNamesFromThePrelude) {
    HostEnvironment host;
    CBasisPredefinedUmgebung* previous = pBasisPredefinedUmgebung;
    pBasisPredefinedUmgebung = &host;
    const std::string path = MakeTempDir("init-prelude") + "extern.qel";
    WriteFileBytes(path,
                   "CONST Max = 10;\n"
                   "VAR zaehler : INTEGER;\n"
                   "PROCEDURE Tausche(VAR a : INTEGER; b : DOUBLE); BEGIN END;\n"
                   "FUNCTION Name(x : INTEGER) : STRING; BEGIN END;\n"
                   "EXTERN PROCEDURE ErrorMsg(caption, text : STRING);\n");
    TestEdit edit;
    Init(edit, path);
    pBasisPredefinedUmgebung = previous;
    EXPECT_TRUE(recording.ui.events.empty());

    EXPECT_EQ(szConstants, " Hostwert  Max  zaehler  Tausche  Name  ErrorMsg ");
    CString symbols;  // the second is the scope's head
    for (int i = 0; i < GlobaleSymbole.GetSize(); ++i) symbols += GlobaleSymbole[i] + "|";
    EXPECT_EQ(symbols, "Hostwert()||Max|zaehler|Tausche(a:integer, b:double)|Name(x:integer):string|"
                       "ErrorMsg(caption:string, text:string)|");

    // The keywords follow the host's, in the order of the scanner's table.
    std::string empty = ".";
    CScanner table(empty.data(), 1);
    ASSERT_EQ(Keywords.GetSize(), 1 + table.keywordCount);
    EXPECT_EQ(Keywords[0], "SCHLEIFE");
    CString expected = " SCHLEIFE ";
    for (int i = 0; i < table.keywordCount; ++i) {
        EXPECT_EQ(Keywords[i + 1], table.keywords[i].name);
        expected += " " + table.keywords[i].name + " ";
    }
    EXPECT_EQ(szKeywords, expected);

    // The editor took the dialog's item, the words and the language's rules.
    EXPECT_EQ(dialog.GetDlgItem(IDC_TEXTDIALOG_EDIT), &edit);
    EXPECT_EQ(edit.GetEventMask(), 0x280001u);
    edit.SetWindowText("begin ZAEHLER := max; schleife (* x *) end");
    EXPECT_EQ(edit.GetWindowText(), "BEGIN zaehler := Max; SCHLEIFE (* x *) END");
    EXPECT_EQ(LettersOf(edit, 0, 42), "kkkkk.ccccccc....ccc..kkkkkkkk.#######.kkk");
}

TEST_F(ScriptEditInit, OnlyTheFirstSuccessfulCallCompiles) {
    const std::string dir = MakeTempDir("init-twice");
    WriteFileBytes(dir + "kaputt.qel", "VAR ;");
    WriteFileBytes(dir + "erste.qel", "VAR erste : INTEGER;");
    WriteFileBytes(dir + "zweite.qel", "VAR zweite : INTEGER;");
    // An empty or missing prelude gives the keywords only.
    TestEdit first, second;
    for (const std::string& prelude : {std::string(), dir + "fehlt.qel"}) {
        Forget();
        Init(first, prelude);
        EXPECT_NE(szKeywords.Find(" BEGIN "), -1) << prelude;
        EXPECT_EQ(szConstants, "") << prelude;
        EXPECT_EQ(GlobaleSymbole.GetSize(), 1) << prelude;
    }
    EXPECT_TRUE(recording.ui.events.empty());

    // A failed prelude is shown; the editor is set up all the same.
    Forget();
    Init(first, dir + "kaputt.qel");
    EXPECT_TRUE(szKeywords.IsEmpty());
    ASSERT_EQ(recording.ui.events.size(), 1u);
    EXPECT_EQ(recording.ui.events[0].kind, UiEvent::TextDialog);
    EXPECT_EQ(first.commentStart, "(*");

    Init(first, dir + "erste.qel");
    const int keywordCount = Keywords.GetSize();
    EXPECT_GT(keywordCount, 0);
    Init(first, dir + "zweite.qel");
    Init(second, dir + "zweite.qel");
    EXPECT_EQ(szConstants, " erste ");
    EXPECT_EQ(Keywords.GetSize(), keywordCount);
    EXPECT_EQ(first.constants, " erste ");  // not twice
    EXPECT_EQ(second.constants, " erste ");
    // The item now belongs to the second editor.
    EXPECT_EQ(dialog.GetDlgItem(IDC_TEXTDIALOG_EDIT), &second);
}

TEST(InitTWScriptEdit, AnEditorThatOutlivesItsDialogLetsGoOfTheWidget) {
    TestEdit edit;
    {
        CWindowDialog dialog(IDD_TEXTDIALOG, nullptr);
        ASSERT_TRUE(dialog.Create());
        InitTWScriptEdit(&edit, &dialog, IDC_TEXTDIALOG_EDIT, "");
        EXPECT_TRUE(edit.IsWindow());
    }
    EXPECT_FALSE(edit.IsWindow());
    edit.SetWindowText("BEGIN");
    edit.FormatAll();
    EXPECT_EQ(edit.GetTextLength(), 0);

    // Nothing to subclass: the editor stays without a widget.
    TestEdit lonely;
    InitTWScriptEdit(&lonely, nullptr, IDC_TEXTDIALOG_EDIT, "");
    EXPECT_FALSE(lonely.IsWindow());
}
