// InitTWScriptEdit: the word lists learnt once per process from a prelude.
#include <gtest/gtest.h>

#include "tests/editor/editor_fixture.h"

namespace {
// Each test starts as a fresh process would.
void ForgetWords() {
    szKeywords.Empty();
    szConstants.Empty();
    Keywords.RemoveAll();
    GlobaleSymbole.RemoveAll();
}

class HostEnvironment : public CBasisPredefinedUmgebung {
public:
    CString AddConstants(CStringArray& symbols) override {
        symbols.Add("Hostwert()");
        return " Hostwert ";
    }
    CString AddKeywords(CStringArray& words) override {
        words.Add("SCHLEIFE");
        return " SCHLEIFE ";
    }
};

struct ScopedEnvironment {
    HostEnvironment environment;
    CBasisPredefinedUmgebung* previous = pBasisPredefinedUmgebung;
    ScopedEnvironment() { pBasisPredefinedUmgebung = &environment; }
    ~ScopedEnvironment() { pBasisPredefinedUmgebung = previous; }
};

const char prelude[] =
    "CONST Max = 10;\n"
    "VAR zaehler : INTEGER;\n"
    "PROCEDURE Tausche(VAR a : INTEGER; b : DOUBLE); BEGIN END;\n"
    "FUNCTION Name(x : INTEGER) : STRING; BEGIN END;\n"
    "EXTERN PROCEDURE ErrorMsg(caption, text : STRING);\n";

// Every word has a blank on both sides, neighbours have two between them.
bool IsWordList(const std::string& list) {
    if (list.empty()) return true;
    if (list.front() != ' ' || list.back() != ' ') return false;
    for (size_t at = 0; at < list.size();) {
        const size_t end = list.find(' ', at + 1);
        if (end == std::string::npos || end == at + 1 || end + 1 > list.size()) return false;
        at = end + 1;
    }
    return true;
}
}  // namespace

TEST(InitTWScriptEdit, GathersKeywordsAndGlobalNamesFromThePrelude) {
    ForgetWords();
    ScopedRecordingUi recording;
    ScopedEnvironment host;
    const std::string path = MakeTempDir("init-prelude") + "extern.qel";
    WriteFileBytes(path, prelude);
    CWindowDialog dialog(IDD_TEXTDIALOG, nullptr);
    ASSERT_TRUE(dialog.Create());
    TestEdit edit;
    InitTWScriptEdit(&edit, &dialog, IDC_TEXTDIALOG_EDIT, path.c_str());
    EXPECT_TRUE(recording.ui.events.empty());

    EXPECT_EQ(szConstants, " Hostwert  Max  zaehler  Tausche  Name  ErrorMsg ");
    ASSERT_GE(GlobaleSymbole.GetSize(), 7);
    EXPECT_EQ(GlobaleSymbole[0], "Hostwert()");
    EXPECT_EQ(GlobaleSymbole[1], "");  // the scope's head
    EXPECT_EQ(GlobaleSymbole[2], "Max");
    EXPECT_EQ(GlobaleSymbole[3], "zaehler");
    EXPECT_EQ(GlobaleSymbole[4], "Tausche(a:integer, b:double)");
    EXPECT_EQ(GlobaleSymbole[5], "Name(x:integer):string");
    EXPECT_EQ(GlobaleSymbole[6], "ErrorMsg(caption:string, text:string)");

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
    EXPECT_TRUE(IsWordList(szKeywords.str()));
    EXPECT_TRUE(IsWordList(szConstants.str()));

    // The editor got the words and the language's rules.
    EXPECT_EQ(dialog.GetDlgItem(IDC_TEXTDIALOG_EDIT), &edit);
    EXPECT_EQ(edit.keywords, szKeywords);
    EXPECT_EQ(edit.commentStart, "(*");
    EXPECT_EQ(edit.commentEnd, "*)");
    EXPECT_EQ(edit.GetEventMask(), 0x280001u);
    edit.SetWindowText("begin ZAEHLER := max; schleife (* x *) end");
    EXPECT_EQ(edit.GetWindowText(), "BEGIN zaehler := Max; SCHLEIFE (* x *) END");
    const auto* widget = dynamic_cast<CMemoryRichEdit*>(edit.GetWidget());
    EXPECT_EQ(widget->CharFormatAt(0).crTextColor, 0xFF0000u);
    EXPECT_TRUE(widget->CharFormatAt(6).dwEffects & CFE_BOLD);
}

TEST(InitTWScriptEdit, OnlyTheFirstSuccessfulCallCompiles) {
    ForgetWords();
    ScopedRecordingUi recording;
    const std::string dir = MakeTempDir("init-twice");
    WriteFileBytes(dir + "erste.qel", "VAR erste : INTEGER;");
    WriteFileBytes(dir + "zweite.qel", "VAR zweite : INTEGER;");
    CWindowDialog dialog(IDD_TEXTDIALOG, nullptr);
    ASSERT_TRUE(dialog.Create());
    TestEdit first, second;
    InitTWScriptEdit(&first, &dialog, IDC_TEXTDIALOG_EDIT, (dir + "erste.qel").c_str());
    const CString constants = szConstants;
    const int keywordCount = Keywords.GetSize();
    InitTWScriptEdit(&second, &dialog, IDC_TEXTDIALOG_EDIT, (dir + "zweite.qel").c_str());
    EXPECT_EQ(szConstants, constants);
    EXPECT_EQ(szConstants, " erste ");
    EXPECT_EQ(Keywords.GetSize(), keywordCount);
    EXPECT_EQ(second.constants, " erste ");
    // The item now belongs to the second editor; the first lost nothing else.
    EXPECT_EQ(dialog.GetDlgItem(IDC_TEXTDIALOG_EDIT), &second);
}

TEST(InitTWScriptEdit, AFailedPreludeIsShownAndTheNextCallTriesAgain) {
    ForgetWords();
    ScopedRecordingUi recording;
    const std::string dir = MakeTempDir("init-failed");
    WriteFileBytes(dir + "kaputt.qel", "VAR ;");
    WriteFileBytes(dir + "gut.qel", "CONST Gut = 1;");
    CWindowDialog dialog(IDD_TEXTDIALOG, nullptr);
    ASSERT_TRUE(dialog.Create());
    TestEdit edit;
    InitTWScriptEdit(&edit, &dialog, IDC_TEXTDIALOG_EDIT, (dir + "kaputt.qel").c_str());
    EXPECT_TRUE(szKeywords.IsEmpty());
    ASSERT_FALSE(recording.ui.events.empty());
    EXPECT_EQ(recording.ui.events[0].kind, UiEvent::TextDialog);
    EXPECT_EQ(edit.commentStart, "(*");  // the editor is set up all the same

    InitTWScriptEdit(&edit, &dialog, IDC_TEXTDIALOG_EDIT, (dir + "gut.qel").c_str());
    EXPECT_FALSE(szKeywords.IsEmpty());
    EXPECT_EQ(szConstants, " Gut ");
}

TEST(InitTWScriptEdit, AnEmptyOrMissingPreludeGivesTheKeywordsOnly) {
    ForgetWords();
    ScopedRecordingUi recording;
    CWindowDialog dialog(IDD_TEXTDIALOG, nullptr);
    ASSERT_TRUE(dialog.Create());
    TestEdit edit;
    InitTWScriptEdit(&edit, &dialog, IDC_TEXTDIALOG_EDIT, "");
    EXPECT_TRUE(recording.ui.events.empty());
    EXPECT_NE(szKeywords.Find(" BEGIN "), -1);
    EXPECT_EQ(szConstants, "");
    EXPECT_EQ(GlobaleSymbole.GetSize(), 1);

    ForgetWords();
    InitTWScriptEdit(&edit, &dialog, IDC_TEXTDIALOG_EDIT, (MakeTempDir("init-missing") + "fehlt.qel").c_str());
    EXPECT_NE(szKeywords.Find(" END "), -1);
    EXPECT_TRUE(recording.ui.events.empty());
}

TEST(InitTWScriptEdit, AnEditorThatOutlivesItsDialogLetsGoOfTheWidget) {
    ForgetWords();
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
