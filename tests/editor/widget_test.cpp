// The rich edit control on the in-memory widget, without the editor.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "qelkern/richedit.h"

namespace {
// Records the notifications in the order they come.
class RecordingCtrl : public CRichEditCtrl {
public:
    std::vector<std::string> log;
    LRESULT protectedAnswer = 0;

protected:
    void OnChange() override { log.push_back("change"); }
    void OnSelChange(NMHDR* info, LRESULT* result) override {
        const auto* sel = reinterpret_cast<SELCHANGE*>(info);
        log.push_back("sel " + std::to_string(sel->chrg.cpMin) + "-" + std::to_string(sel->chrg.cpMax));
        *result = 0;
    }
    void OnProtected(NMHDR* info, LRESULT* result) override {
        const auto* notice = reinterpret_cast<ENPROTECTED*>(info);
        log.push_back("protected " + std::to_string(notice->msg) + " " + std::to_string(notice->chrg.cpMin) +
                      "-" + std::to_string(notice->chrg.cpMax));
        *result = protectedAnswer;
    }
};

struct Control {
    RecordingCtrl ctrl;
    CMemoryRichEdit* widget;
    Control() {
        ctrl.Create();
        widget = dynamic_cast<CMemoryRichEdit*>(ctrl.GetWidget());
        ctrl.SetEventMask(ENM_CHANGE | ENM_SELCHANGE | ENM_PROTECTED);
    }
    void Protect(long start, long end) {
        ctrl.SetSel(start, end);
        CHARFORMAT cf;
        cf.dwMask = CFM_PROTECTED;
        cf.dwEffects = CFE_PROTECTED;
        ctrl.SetSelectionCharFormat(cf);
    }
};
}  // namespace

TEST(RichEditWidget, TextUsesCarriageReturnsAndTheWindowTextCrLf) {
    Control c;
    c.ctrl.SetWindowText("eins\r\nzwei\ndrei");
    EXPECT_EQ(c.widget->Text(), "eins\rzwei\rdrei");
    EXPECT_EQ(c.ctrl.GetTextLength(), 14);
    EXPECT_EQ(c.ctrl.GetWindowText(), "eins\r\nzwei\r\ndrei");
    EXPECT_EQ(c.ctrl.GetLineCount(), 3);
    EXPECT_EQ(c.ctrl.LineIndex(1), 5);
    EXPECT_EQ(c.ctrl.LineIndex(3), -1);
    EXPECT_EQ(c.ctrl.LineFromChar(4), 0);
    EXPECT_EQ(c.ctrl.LineFromChar(5), 1);
    EXPECT_EQ(c.ctrl.LineFromChar(999), 2);
    // The length of the line that holds the character index.
    EXPECT_EQ(c.ctrl.LineLength(7), 4);
    EXPECT_EQ(c.ctrl.LineLength(14), 4);
    c.ctrl.SetSel(2, 7);
    EXPECT_EQ(c.ctrl.LineLength(-1), 4);  // "ei" and "ei" stay unselected
    EXPECT_EQ(c.ctrl.LineIndex(-1), 0);

    c.ctrl.SetWindowText("a\r");
    EXPECT_EQ(c.ctrl.GetLineCount(), 2);
    c.ctrl.SetWindowText("");
    EXPECT_EQ(c.ctrl.GetLineCount(), 1);
    EXPECT_EQ(c.ctrl.LineLength(0), 0);
}

TEST(RichEditWidget, SelectionIsClampedAndSelectAllWorks) {
    Control c;
    c.ctrl.SetWindowText("Hallo");
    c.ctrl.SetSel(0, -1);
    EXPECT_EQ(c.ctrl.GetSelText(), "Hallo");
    c.ctrl.SetSel(4, 1);
    long s, e;
    c.ctrl.GetSel(s, e);
    EXPECT_EQ(s, 1);
    EXPECT_EQ(e, 4);
    c.ctrl.SetSel(3, 99);
    char buffer[8];
    EXPECT_EQ(c.ctrl.GetSelText(buffer), 2);
    EXPECT_STREQ(buffer, "lo");
    c.ctrl.SetSel(-1, 0);  // drops the selection, the caret stays at its end
    c.ctrl.GetSel(s, e);
    EXPECT_EQ(s, 5);
    EXPECT_EQ(e, 5);
}

TEST(RichEditWidget, NotificationsComeInTheOrderOfTheRichEditControl) {
    Control c;
    c.ctrl.SetWindowText("abcdef");
    c.Protect(2, 4);
    c.ctrl.SetSel(3, 3);
    c.ctrl.log.clear();
    c.widget->UserTypes("x");
    EXPECT_EQ(c.ctrl.log, (std::vector<std::string>{"protected 258 3-3", "change", "sel 4-4"}));
    EXPECT_EQ(c.widget->Text(), "abcxdef");
    EXPECT_TRUE(c.widget->CharFormatAt(3).dwEffects & CFE_PROTECTED);

    // Unprotected text raises no protected notice.
    c.ctrl.SetSel(0, 0);
    c.ctrl.log.clear();
    c.widget->UserTypes("y");
    EXPECT_EQ(c.ctrl.log, (std::vector<std::string>{"change", "sel 1-1"}));

    // A refused change does not happen.
    c.ctrl.protectedAnswer = 1;
    c.ctrl.SetSel(3, 5);
    c.ctrl.log.clear();
    c.widget->UserPressesKey(VK_DELETE);
    EXPECT_EQ(c.ctrl.log, (std::vector<std::string>{"protected 256 3-5"}));
    EXPECT_EQ(c.widget->Text(), "yabcxdef");

    // The event mask filters what reaches the message map.
    c.ctrl.protectedAnswer = 0;
    c.ctrl.SetEventMask(ENM_CHANGE);
    c.ctrl.log.clear();
    c.widget->UserPressesKey(VK_BACK);
    EXPECT_EQ(c.ctrl.log, (std::vector<std::string>{"change"}));
    EXPECT_EQ(c.widget->Text(), "yabdef");
}

TEST(RichEditWidget, FormatsOfTheSelectionAndOfInsertedText) {
    Control c;
    c.ctrl.SetWindowText("abc");
    CHARFORMAT red;
    red.dwMask = CFM_COLOR | CFM_BOLD;
    red.crTextColor = RGB(255, 0, 0);
    red.dwEffects = CFE_BOLD;
    c.ctrl.SetSel(1, 2);
    EXPECT_TRUE(c.ctrl.SetSelectionCharFormat(red));
    EXPECT_EQ(c.widget->CharFormatAt(1).crTextColor, 0x0000FFu);
    EXPECT_EQ(c.widget->CharFormatAt(0).crTextColor, 0u);

    CHARFORMAT seen;
    c.ctrl.SetSel(0, 3);
    const DWORD same = c.ctrl.GetSelectionCharFormat(seen);
    EXPECT_FALSE(same & CFM_COLOR);
    EXPECT_FALSE(same & CFM_BOLD);
    EXPECT_TRUE(same & CFM_FACE);
    EXPECT_STREQ(seen.szFaceName, "Arial");

    // Typed text takes the format of the character before the caret.
    c.ctrl.SetSel(2, 2);
    c.widget->UserTypes("Z");
    EXPECT_EQ(c.widget->CharFormatAt(2).crTextColor, 0x0000FFu);
    // A format set on an empty selection waits for the next insertion.
    CHARFORMAT blue;
    blue.dwMask = CFM_COLOR;
    blue.crTextColor = RGB(0, 0, 255);
    c.ctrl.SetSel(0, 0);
    c.ctrl.SetSelectionCharFormat(blue);
    c.widget->UserTypes("Q");
    EXPECT_EQ(c.widget->CharFormatAt(0).crTextColor, RGB(0, 0, 255));
    EXPECT_EQ(c.widget->Text(), "QabZc");

    // A face name without its terminating 0 is cut at the field's size.
    CHARFORMAT face;
    face.dwMask = CFM_FACE;
    std::memset(face.szFaceName, 'F', sizeof face.szFaceName);
    c.ctrl.SetSel(0, 1);
    c.ctrl.SetSelectionCharFormat(face);
    EXPECT_EQ(std::string(c.widget->CharFormatAt(0).szFaceName), std::string(LF_FACESIZE - 1, 'F'));
}

TEST(RichEditWidget, UndoJoinsTypingAndKnowsReplacementsWithoutUndo) {
    Control c;
    c.widget->UserTypes("abc\rdef");
    EXPECT_EQ(c.widget->UndoStepCount(), 2);  // a new line begins a new step
    c.ctrl.SetSel(0, 1);
    c.ctrl.ReplaceSel("A", FALSE);  // same length: the steps still fit
    EXPECT_EQ(c.widget->UndoStepCount(), 2);
    c.widget->UserUndoes();
    EXPECT_EQ(c.widget->Text(), "Abc\r");
    c.ctrl.SetSel(0, 1);
    c.ctrl.ReplaceSel("xyz", FALSE);  // another length: older steps would no longer fit
    EXPECT_FALSE(c.ctrl.CanUndo());
    c.ctrl.ReplaceSel("!", TRUE);
    EXPECT_TRUE(c.ctrl.CanUndo());
    EXPECT_TRUE(c.ctrl.Undo());
    EXPECT_EQ(c.widget->Text(), "xyzbc\r");
    EXPECT_FALSE(c.ctrl.Undo());

    c.ctrl.SetWindowText("neu");
    EXPECT_FALSE(c.ctrl.CanUndo());
}

TEST(RichEditWidget, ClipboardCutCopyPasteAndDelete) {
    Control c;
    c.ctrl.SetWindowText("eins\rzwei");
    c.ctrl.SetSel(2, 7);
    c.widget->UserCopies();
    EXPECT_EQ(GetClipboard().GetText(), "ns\r\nzw");
    c.widget->UserPressesKey('X', true);
    EXPECT_EQ(c.widget->Text(), "eiei");
    c.ctrl.SetSel(4, 4);
    c.widget->UserPressesKey('V', true);
    EXPECT_EQ(c.widget->Text(), "eieins\rzw");
    c.widget->UserPressesKey(VK_BACK);
    c.ctrl.SetSel(0, 0);
    c.widget->UserPressesKey(VK_DELETE);
    EXPECT_EQ(c.widget->Text(), "ieins\rz");
    c.widget->UserPressesKey('Z', true);
    EXPECT_EQ(c.widget->Text(), "eieins\rz");

    // An empty selection copies nothing.
    c.ctrl.SetSel(1, 1);
    c.ctrl.Copy();
    EXPECT_EQ(GetClipboard().GetText(), "ns\r\nzw");
}

TEST(RichEditWidget, ReadOnlyRefusesTheUserButNotTheProgram) {
    Control c;
    c.ctrl.SetWindowText("fest");
    c.ctrl.SetReadOnly(TRUE);
    c.ctrl.SetSel(0, 4);
    c.widget->UserTypes("x");
    c.widget->UserCuts();
    c.widget->UserPressesKey(VK_DELETE);
    EXPECT_EQ(c.widget->Text(), "fest");
    c.widget->UserCopies();
    EXPECT_EQ(GetClipboard().GetText(), "fest");
    c.ctrl.ReplaceSel("FEST");
    EXPECT_EQ(c.widget->Text(), "FEST");
}

TEST(RichEditWidget, KeysMoveTheCaretAndGiveTheirCharacters) {
    Control c;
    c.ctrl.SetWindowText("ab\rcdef");
    c.ctrl.SetSel(1, 1);
    c.widget->UserPressesKey(VK_DOWN);
    long s, e;
    c.ctrl.GetSel(s, e);
    EXPECT_EQ(s, 4);
    c.widget->UserPressesKey(VK_END, false, true);
    c.ctrl.GetSel(s, e);
    EXPECT_EQ(s, 4);
    EXPECT_EQ(e, 7);
    c.widget->UserPressesKey(VK_HOME);
    c.widget->UserPressesKey('8', false, true);  // "(" on a German keyboard
    c.widget->UserPressesKey('A');
    EXPECT_EQ(c.widget->Text(), "ab\r(acdef");
    EXPECT_EQ(c.ctrl.GetKeyState(VK_CONTROL), 0);
}

TEST(RichEditWidget, ADragMovesTextAsOneChangeAnnouncedAsCutAndPaste) {
    Control c;
    c.ctrl.SetWindowText("0123456789");
    c.Protect(0, 10);
    c.ctrl.SetSel(1, 3);
    c.ctrl.log.clear();
    c.widget->UserDragsSelection(8);
    EXPECT_EQ(c.widget->Text(), "0345671289");
    EXPECT_EQ(c.ctrl.log, (std::vector<std::string>{"protected 768 1-3", "protected 770 8-8", "change", "sel 6-8"}));
    c.widget->UserUndoes();
    EXPECT_EQ(c.widget->Text(), "0123456789");
}

TEST(RichEditWidget, AControlWithoutWidgetIsHarmless) {
    CRichEditCtrl ctrl;
    EXPECT_FALSE(ctrl.IsWindow());
    ctrl.SetWindowText("x");
    ctrl.SetSel(0, -1);
    ctrl.ReplaceSel("y");
    CHARFORMAT cf;
    EXPECT_EQ(ctrl.GetSelectionCharFormat(cf), 0u);
    EXPECT_EQ(ctrl.GetTextLength(), 0);
    EXPECT_EQ(ctrl.LineIndex(0), -1);
    EXPECT_EQ(ctrl.GetSelText(), "");

    // A widget that dies first leaves its control without one.
    auto* widget = new CMemoryRichEdit;
    ctrl.Attach(widget, false);
    EXPECT_TRUE(ctrl.IsWindow());
    delete widget;
    EXPECT_FALSE(ctrl.IsWindow());
}

TEST(RichEditWidget, AFailingFactoryMakesCreateFail) {
    const RichEditWidgetFactory previous =
        SetRichEditWidgetFactory([](CWnd*, int) { return std::unique_ptr<CRichEditWidget>(); });
    CRichEditCtrl ctrl;
    EXPECT_FALSE(ctrl.Create());
    SetRichEditWidgetFactory(previous);
    EXPECT_TRUE(ctrl.Create());
}
