// The rich edit control on the in-memory widget, without the editor.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/editor/editor_fixture.h"

namespace {
using Log = std::vector<std::string>;

// Records the notifications in the order they come.
class RecordingCtrl : public CRichEditCtrl {
public:
    Log log;
    LRESULT protectedAnswer = 0;

protected:
    void Note(const std::string& what, const CHARRANGE& r) {
        log.push_back(what + " " + std::to_string(r.cpMin) + "-" + std::to_string(r.cpMax));
    }
    void OnChange() override { log.push_back("change"); }
    void OnSelChange(NMHDR* info, LRESULT* result) override {
        Note("sel", reinterpret_cast<SELCHANGE*>(info)->chrg);
        *result = 0;
    }
    void OnProtected(NMHDR* info, LRESULT* result) override {
        const auto* notice = reinterpret_cast<ENPROTECTED*>(info);
        Note("protected " + std::to_string(notice->msg), notice->chrg);
        *result = protectedAnswer;
    }
};

struct Control {
    RecordingCtrl ctrl;
    CMemoryRichEdit* widget;
    explicit Control(const char* text = "") {
        ctrl.Create();
        widget = dynamic_cast<CMemoryRichEdit*>(ctrl.GetWidget());
        ctrl.SetEventMask(ENM_CHANGE | ENM_SELCHANGE | ENM_PROTECTED);
        ctrl.SetWindowText(text);
    }
    void Format(long start, long end, DWORD mask, DWORD effects, COLORREF colour = 0) {
        ctrl.SetSel(start, end);
        CHARFORMAT cf;
        cf.dwMask = mask;
        cf.dwEffects = effects;
        cf.crTextColor = colour;
        ctrl.SetSelectionCharFormat(cf);
    }
};
}  // namespace

TEST(RichEditWidget, TextLinesAndSelection) {
    Control c("eins\r\nzwei\ndrei");
    EXPECT_EQ(c.widget->Text(), "eins\rzwei\rdrei");
    EXPECT_EQ(c.ctrl.GetTextLength(), 14);
    EXPECT_EQ(c.ctrl.GetWindowText(), "eins\r\nzwei\r\ndrei");
    // Line index of line 1 and 3, line of characters 4, 5 and 999, length of
    // the line that holds characters 7 and 14.
    const std::vector<long> lines{c.ctrl.GetLineCount(),  c.ctrl.LineIndex(1),    c.ctrl.LineIndex(3),
                                  c.ctrl.LineFromChar(4), c.ctrl.LineFromChar(5), c.ctrl.LineFromChar(999),
                                  c.ctrl.LineLength(7),   c.ctrl.LineLength(14)};
    EXPECT_EQ(lines, (std::vector<long>{3, 5, -1, 0, 1, 2, 4, 4}));
    c.ctrl.SetSel(2, 7);
    EXPECT_EQ(c.ctrl.LineLength(-1), 4);  // "ei" and "ei" stay unselected
    EXPECT_EQ(c.ctrl.LineIndex(-1), 0);
    c.ctrl.SetWindowText("a\r");
    EXPECT_EQ(c.ctrl.GetLineCount(), 2);
    c.ctrl.SetWindowText("");
    EXPECT_EQ(c.ctrl.GetLineCount(), 1);
    EXPECT_EQ(c.ctrl.LineLength(0), 0);

    // The selection is ordered and clamped; -1 selects all.
    c.ctrl.SetWindowText("Hallo");
    c.ctrl.SetSel(0, -1);
    EXPECT_EQ(c.ctrl.GetSelText(), "Hallo");
    c.ctrl.SetSel(4, 1);
    EXPECT_EQ(SelOf(c.ctrl), std::make_pair(1L, 4L));
    c.ctrl.SetSel(3, 99);
    char buffer[8];
    EXPECT_EQ(c.ctrl.GetSelText(buffer), 2);
    EXPECT_STREQ(buffer, "lo");
    c.ctrl.SetSel(-1, 0);  // drops the selection, the caret stays at its end
    EXPECT_EQ(SelOf(c.ctrl), std::make_pair(5L, 5L));
}

TEST(RichEditWidget, NotificationsComeInTheOrderOfTheRichEditControl) {
    Control c("abcdef");
    c.Format(2, 4, CFM_PROTECTED, CFE_PROTECTED);
    c.ctrl.SetSel(3, 3);
    c.ctrl.log.clear();
    c.widget->UserTypes("x");
    EXPECT_EQ(c.ctrl.log, (Log{"protected 258 3-3", "change", "sel 4-4"}));
    EXPECT_EQ(c.widget->Text(), "abcxdef");
    EXPECT_TRUE(c.widget->CharFormatAt(3).dwEffects & CFE_PROTECTED);

    // Unprotected text raises no protected notice.
    c.ctrl.SetSel(0, 0);
    c.ctrl.log.clear();
    c.widget->UserTypes("y");
    EXPECT_EQ(c.ctrl.log, (Log{"change", "sel 1-1"}));

    // A refused change does not happen.
    c.ctrl.protectedAnswer = 1;
    c.ctrl.SetSel(3, 5);
    c.ctrl.log.clear();
    c.widget->UserPressesKey(VK_DELETE);
    EXPECT_EQ(c.ctrl.log, (Log{"protected 256 3-5"}));
    EXPECT_EQ(c.widget->Text(), "yabcxdef");

    // The event mask filters what reaches the message map.
    c.ctrl.protectedAnswer = 0;
    c.ctrl.SetEventMask(ENM_CHANGE);
    c.ctrl.log.clear();
    c.widget->UserPressesKey(VK_BACK);
    EXPECT_EQ(c.ctrl.log, (Log{"change"}));
    EXPECT_EQ(c.widget->Text(), "yabdef");

    // A drag is one change, announced as a cut and a paste.
    c.ctrl.SetEventMask(ENM_CHANGE | ENM_SELCHANGE | ENM_PROTECTED);
    c.ctrl.SetWindowText("0123456789");
    c.Format(0, 10, CFM_PROTECTED, CFE_PROTECTED);
    c.ctrl.SetSel(1, 3);
    c.ctrl.log.clear();
    c.widget->UserDragsSelection(8);
    EXPECT_EQ(c.widget->Text(), "0345671289");
    EXPECT_EQ(c.ctrl.log, (Log{"protected 768 1-3", "protected 770 8-8", "change", "sel 6-8"}));
    c.widget->UserUndoes();
    EXPECT_EQ(c.widget->Text(), "0123456789");
}

TEST(RichEditWidget, FormatsOfTheSelectionAndOfInsertedText) {
    Control c("abc");
    c.Format(1, 2, CFM_COLOR | CFM_BOLD, CFE_BOLD, RGB(255, 0, 0));
    EXPECT_EQ(c.widget->CharFormatAt(1).crTextColor, 0x0000FFu);
    EXPECT_EQ(c.widget->CharFormatAt(0).crTextColor, 0u);

    // Only what the whole selection shares is in the mask.
    CHARFORMAT seen;
    c.ctrl.SetSel(0, 3);
    const DWORD same = c.ctrl.GetSelectionCharFormat(seen);
    EXPECT_EQ(same & (CFM_COLOR | CFM_BOLD | CFM_FACE), static_cast<DWORD>(CFM_FACE));
    EXPECT_STREQ(seen.szFaceName, "Arial");

    // Typed text takes the format of the character before the caret; a format
    // set on an empty selection waits for the next insertion.
    c.ctrl.SetSel(2, 2);
    c.widget->UserTypes("Z");
    EXPECT_EQ(c.widget->CharFormatAt(2).crTextColor, 0x0000FFu);
    c.Format(0, 0, CFM_COLOR, 0, RGB(0, 0, 255));
    c.widget->UserTypes("Q");
    EXPECT_EQ(c.widget->CharFormatAt(0).crTextColor, RGB(0, 0, 255));
    EXPECT_EQ(c.widget->Text(), "QabZc");

    // A face name without its terminating 0 is cut at the field's size.
    CHARFORMAT face;
    face.dwMask = CFM_FACE;
    std::memset(face.szFaceName, 'F', sizeof face.szFaceName);
    c.ctrl.SetSel(0, 1);
    EXPECT_TRUE(c.ctrl.SetSelectionCharFormat(face));
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
    EXPECT_TRUE(c.ctrl.Undo());
    EXPECT_EQ(c.widget->Text(), "xyzbc\r");
    EXPECT_FALSE(c.ctrl.Undo());
    c.ctrl.ReplaceSel("!", TRUE);
    c.ctrl.SetWindowText("neu");
    EXPECT_FALSE(c.ctrl.CanUndo());
}

TEST(RichEditWidget, ClipboardKeysAndReadOnly) {
    Control c("eins\rzwei");
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
    c.ctrl.SetSel(1, 1);
    c.ctrl.Copy();  // an empty selection copies nothing
    EXPECT_EQ(GetClipboard().GetText(), "ns\r\nzw");

    // Keys move the caret and give their characters.
    c.ctrl.SetWindowText("ab\rcdef");
    c.ctrl.SetSel(1, 1);
    c.widget->UserPressesKey(VK_DOWN);
    EXPECT_EQ(SelOf(c.ctrl), std::make_pair(4L, 4L));
    c.widget->UserPressesKey(VK_END, false, true);
    EXPECT_EQ(SelOf(c.ctrl), std::make_pair(4L, 7L));
    c.widget->UserPressesKey(VK_HOME);
    c.widget->UserPressesKey('A');
    EXPECT_EQ(c.widget->Text(), "ab\racdef");
    EXPECT_EQ(c.ctrl.GetKeyState(VK_CONTROL), 0);

    // Read-only text refuses the user (typing: see the text dialog) but not the program.
    c.ctrl.SetWindowText("fest");
    c.ctrl.SetReadOnly(TRUE);
    c.ctrl.SetSel(0, 4);
    c.widget->UserCuts();
    c.widget->UserPastes();
    c.widget->UserPressesKey(VK_DELETE);
    EXPECT_EQ(c.widget->Text(), "fest");
    c.widget->UserCopies();
    EXPECT_EQ(GetClipboard().GetText(), "fest");
    c.ctrl.ReplaceSel("FEST");
    EXPECT_EQ(c.widget->Text(), "FEST");
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

    // A factory that makes no widget makes Create fail.
    const RichEditWidgetFactory previous =
        SetRichEditWidgetFactory([](CWnd*, int) { return std::unique_ptr<CRichEditWidget>(); });
    EXPECT_FALSE(ctrl.Create());
    SetRichEditWidgetFactory(previous);
    EXPECT_TRUE(ctrl.Create());
}
