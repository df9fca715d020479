// The read-only text dialog that shows a compile error in place.
#include <gtest/gtest.h>

#include "tests/editor/editor_fixture.h"

namespace {
std::pair<long, long> CaretOf(const CTextDialog& dialog) {
    long s = 0, e = 0;
    dialog.edit.GetSel(s, e);
    return {s, e};
}

CMemoryRichEdit& WidgetOf(const CTextDialog& dialog) {
    return *dynamic_cast<CMemoryRichEdit*>(dialog.GetItemWidget(IDC_TEXTDIALOG_EDIT));
}

// The editor's letters (see editor_fixture.h) of one line of the dialog.
std::string DialogLineLetters(const CTextDialog& dialog, int line) {
    std::string letters;
    const CMemoryRichEdit& widget = WidgetOf(dialog);
    const int start = dialog.edit.LineIndex(line);
    for (int i = start; i < start + dialog.edit.LineLength(start); ++i) {
        const CHARFORMAT cf = widget.CharFormatAt(i);
        const bool bold = (cf.dwEffects & CFE_BOLD) != 0;
        if (cf.crTextColor == 0x0000FF && bold) letters += '!';
        else if (cf.crTextColor == 0xFF0000 && !bold) letters += 'k';
        else letters += '.';
    }
    return letters;
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

    int marker = -1;
    for (int line = 0; line < dialog.edit.GetLineCount(); ++line)
        if (dialog.edit.GetTextRange(dialog.edit.LineIndex(line), dialog.edit.LineIndex(line) + 3) == "<!>")
            marker = line;
    ASSERT_GT(marker, 0);
    const std::string letters = DialogLineLetters(dialog, marker);
    EXPECT_EQ(letters, std::string(letters.size(), '!'));
    EXPECT_EQ(DialogLineLetters(dialog, 0), "kkkkk");
    EXPECT_EQ(dialog.GetWindowText(), shown->caption);
}

TEST(TextDialog, TheCaretStandsOnTheLineAndFallsBackToTheLastLine) {
    auto open = [](int line, int column) {
        auto dialog = std::make_unique<CTextDialog>("Fehler Parser");
        dialog->text = "eins\r\nzwei\r\ndrei";
        dialog->line = line;
        dialog->column = column;
        dialog->Create();
        return dialog;
    };
    EXPECT_EQ(CaretOf(*open(1, 2)), std::make_pair(7L, 7L));
    // Beyond the text: the start of the last line, and the column falls to 0.
    auto beyond = open(9, 3);
    EXPECT_EQ(CaretOf(*beyond), std::make_pair(10L, 10L));
    EXPECT_EQ(beyond->line, 2);
    EXPECT_EQ(beyond->column, 0);
    // Line 0 leaves the caret at the start of the text, whatever the column.
    EXPECT_EQ(CaretOf(*open(0, 3)), std::make_pair(0L, 0L));
    EXPECT_EQ(CaretOf(*open(-4, 3)), std::make_pair(0L, 0L));
    // A column beyond the line goes on into the text.
    EXPECT_EQ(CaretOf(*open(1, 8)), std::make_pair(13L, 13L));
}

TEST(TextDialog, TheTextIsReadOnlyAndTheDialogFillsItsWindow) {
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
}

TEST(TextDialog, DoModalEndsWithOkAndGivesTheTextBack) {
    CTextDialog dialog("Titel");
    dialog.text = "a\r\nb";
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_EQ(dialog.text, "a\r\nb");
}

TEST(TextDialog, TheResourceIsDataForEveryUserInterface) {
    const DialogTemplate* resource = FindDialogTemplate(IDD_TEXTDIALOG);
    ASSERT_EQ(resource, &TextDialogTemplate);
    EXPECT_STREQ(resource->title, "Dialog");
    EXPECT_STREQ(resource->fontName, "MS Sans Serif");
    EXPECT_EQ(resource->fontPointSize, 8);
    EXPECT_EQ(resource->width, 387);
    EXPECT_EQ(resource->height, 293);
    ASSERT_EQ(resource->itemCount, 2);
    const DialogItem* edit = resource->FindItem(1002);
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(edit->kind, DialogItem::RichEdit);
    EXPECT_EQ(edit->text, nullptr);
    EXPECT_EQ(edit->width, 385);
    EXPECT_EQ(edit->height, 270);
    EXPECT_TRUE(edit->style & DialogItem::ReadOnly);
    EXPECT_TRUE(edit->style & DialogItem::MultiLine);
    const DialogItem* ok = resource->FindItem(IDOK);
    ASSERT_NE(ok, nullptr);
    EXPECT_EQ(ok->kind, DialogItem::DefaultPushButton);
    EXPECT_STREQ(ok->text, "OK");
    EXPECT_EQ(ok->x, 335);
    EXPECT_EQ(ok->y, 275);
    EXPECT_EQ(FindDialogTemplate(IDD_ZAHLENEINGABE), &ZahlenEingabeTemplate);
    EXPECT_EQ(FindDialogTemplate(4711), nullptr);
}
