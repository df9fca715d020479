// The read-only text dialog that shows a compile error in place.
#include <gtest/gtest.h>

#include "tests/editor/editor_fixture.h"

namespace {
CMemoryRichEdit& WidgetOf(const CTextDialog& dialog) {
    return *dynamic_cast<CMemoryRichEdit*>(dialog.GetItemWidget(IDC_TEXTDIALOG_EDIT));
}
}  // namespace

TEST(TextDialog, ACompileErrorShowsItsMarkerLineInTheErrorStyle) {
    ScopedRecordingUi recording;
    ASSERT_EQ(RunText("BEGIN\n  x := 1\nEND."), 0);
    const UiEvent* shown = nullptr;
    for (const UiEvent& event : recording.ui.events)
        if (event.kind == UiEvent::TextDialog) shown = &event;
    ASSERT_NE(shown, nullptr);

    CTextDialog dialog(shown->caption);
    dialog.text = shown->text;
    dialog.line = shown->line;
    dialog.column = shown->column;
    ASSERT_TRUE(dialog.Create());
    EXPECT_EQ(dialog.GetWindowText(), shown->caption);
    int marker = -1;
    for (int line = 0; line < dialog.edit.GetLineCount(); ++line)
        if (dialog.edit.GetTextRange(dialog.edit.LineIndex(line), dialog.edit.LineIndex(line) + 3) == "<!>")
            marker = line;
    ASSERT_GT(marker, 0);
    const std::string letters = LineLettersOf(dialog.edit, marker);
    EXPECT_EQ(letters, std::string(letters.size(), '!'));
    EXPECT_EQ(LineLettersOf(dialog.edit, 0), "kkkkk");
}

TEST(TextDialog, TheCaretStandsOnTheLineAndFallsBackToTheLastLine) {
    struct Case {
        int line, column;
        long caret;
        int lineAfter, columnAfter;
    };
    const Case cases[] = {
        {1, 2, 7, 1, 2},
        {9, 3, 10, 2, 0},  // beyond the text: the start of the last line
        {0, 3, 0, 0, 3},   // line 0 leaves the caret at the start, whatever the column
        {-4, 3, 0, -4, 3},
        {1, 8, 13, 1, 8},  // a column beyond the line goes on into the text
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.line) + ":" + std::to_string(c.column));
        CTextDialog dialog("Fehler Parser");
        dialog.text = "eins\r\nzwei\r\ndrei";
        dialog.line = c.line;
        dialog.column = c.column;
        ASSERT_TRUE(dialog.Create());
        EXPECT_EQ(SelOf(dialog.edit), std::make_pair(c.caret, c.caret));
        EXPECT_EQ(std::make_pair(dialog.line, dialog.column), std::make_pair(c.lineAfter, c.columnAfter));
    }
}

TEST(TextDialog, TheTextIsReadOnlyAndTheDialogFromItsResourceFillsItsWindow) {
    CTextDialog dialog("Titel");
    dialog.text = "BEGIN END.";
    ASSERT_TRUE(dialog.Create());
    WidgetOf(dialog).UserTypes("x\t");
    WidgetOf(dialog).UserPressesKey(VK_DELETE);
    EXPECT_EQ(dialog.edit.GetWindowText(), "BEGIN END.");
    EXPECT_TRUE(dialog.GetStyle() & WS_CLIPCHILDREN);
    WINDOWPLACEMENT placement;
    dialog.GetWindowPlacement(&placement);
    EXPECT_EQ(placement.showCmd, static_cast<UINT>(SW_SHOWMAXIMIZED));
    EXPECT_EQ(dialog.GetDlgItem(IDC_TEXTDIALOG_EDIT), &dialog.edit);

    dialog.ResizeDialog(CRect(0, 0, 800, 600));
    EXPECT_EQ(dialog.edit.GetWindowRect(), CRect(5, 5, 795, 571));
    EXPECT_EQ(dialog.GetDlgItem(IDOK)->GetWindowRect(), CRect(740, 576, 790, 590));
    dialog.ResizeDialog(CRect(0, 0, 400, 300));
    EXPECT_EQ(dialog.edit.GetWindowRect(), CRect(5, 5, 395, 271));
    EXPECT_EQ(dialog.GetDlgItem(IDOK)->GetWindowRect(), CRect(340, 276, 390, 290));
    CRect empty(0, 0, 0, 300);
    dialog.Layout(empty);
    EXPECT_EQ(dialog.edit.GetWindowRect(), CRect(5, 5, 395, 271));

    CTextDialog modal("Titel");
    modal.text = "a\r\nb";
    EXPECT_EQ(modal.DoModal(), IDOK);
    EXPECT_EQ(modal.text, "a\r\nb");

    // The resource, found by its id; the button's size and the read-only
    // style show above.
    const DialogTemplate* resource = FindDialogTemplate(IDD_TEXTDIALOG);
    ASSERT_EQ(resource, &TextDialogTemplate);
    ASSERT_EQ(resource->itemCount, 2);
    ASSERT_NE(resource->FindItem(IDC_TEXTDIALOG_EDIT), nullptr);
    EXPECT_EQ(resource->FindItem(IDC_TEXTDIALOG_EDIT)->kind, DialogItem::RichEdit);
    const DialogItem* ok = resource->FindItem(IDOK);
    ASSERT_NE(ok, nullptr);
    EXPECT_EQ(ok->kind, DialogItem::DefaultPushButton);
    EXPECT_STREQ(ok->text, "OK");
    EXPECT_EQ(FindDialogTemplate(IDD_ZAHLENEINGABE), &ZahlenEingabeTemplate);
    EXPECT_EQ(FindDialogTemplate(4711), nullptr);
}
