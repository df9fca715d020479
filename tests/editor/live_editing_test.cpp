#include <gtest/gtest.h>

#include <string>

#include "tests/editor/editor_fixture.h"

namespace {
bool LineReached(const Editor& e, int line) { return e.Reached(e.edit.LineIndex(line)); }

// First and last line that the last colouring reached; -1 if none.
std::pair<int, int> ReachedLines(const Editor& e) {
    int first = -1, last = -1;
    for (int line = 0; line < e.edit.GetLineCount(); ++line) {
        if (!LineReached(e, line)) continue;
        if (first < 0) first = line;
        last = line;
    }
    return {first, last};
}

void Put(Editor& e, int line) {
    const long at = e.edit.LineIndex(line);
    e.edit.SetSel(at, at);
}
}  // namespace

TEST(LiveEditing, TypingColoursAsTheUserGoes) {
    Editor typed;
    typed.widget->UserTypes("begin x := 1,5; (* c *) \"s\" end");
    Editor set;
    set.SetText("BEGIN x := 1,5; (* c *) \"s\" END");
    EXPECT_EQ(typed.Text(), set.Text());
    EXPECT_EQ(typed.Letters(), set.Letters());
    EXPECT_EQ(typed.Letters(), "kkkkk......nnn..#######.sss.kkk");
    EXPECT_EQ(typed.Sel(), std::make_pair(31L, 31L));
}

TEST(LiveEditing, AnOrdinaryEditColoursTenLinesOnEitherSide) {
    Editor e;
    e.SetText(BeginLines(60).c_str());
    e.Paint();
    Put(e, 30);
    e.widget->UserTypes("x");
    EXPECT_EQ(ReachedLines(e), std::make_pair(20, 40));
    EXPECT_EQ(e.edit.changeType, ChangeNone);

    e.Paint();
    Put(e, 3);
    e.widget->UserPressesKey(VK_BACK);
    EXPECT_EQ(ReachedLines(e), std::make_pair(0, 12));

    e.Paint();
    Put(e, e.edit.GetLineCount() - 1);
    e.widget->UserTypes("\r");  // the backspace had joined two lines: 59 before, 60 now
    EXPECT_EQ(ReachedLines(e), std::make_pair(49, 59));
}

TEST(LiveEditing, TheEndOfTheRangeTakesTheLengthOfTheLastChangedLine) {
    Editor e;
    e.SetText("BEGIN END\rx\rx\rx\rx\rx\rx\rx\rx\rx\rx\rBEGIN END BEGIN");
    e.Paint();
    Put(e, 0);
    e.widget->UserPressesKey(VK_RIGHT);  // a move alone colours nothing
    EXPECT_EQ(ReachedLines(e), std::make_pair(-1, -1));
    e.edit.SetSel(0, 0);
    e.widget->UserTypes(" ");
    // Line 10 holds "x"; the range reaches into line 11 by the length of
    // line 0, " BEGIN END" (10 characters), and ends inside "END".
    EXPECT_EQ(e.LineLetters(11), "kkkkk.xxxxxxxxx");
}

TEST(LiveEditing, ProtectedTextTellsTheKindOfChangeAndItsRange) {
    const std::string clipboardLines = "BEGIN\r\nBEGIN\r\nBEGIN\r\nBEGIN\r\nBEGIN\r\n";

    // A paste colours from where it began to where it ended.
    Editor e;
    e.SetText(BeginLines(60).c_str());
    e.Paint(RGB(1, 2, 3), true);
    Put(e, 30);
    GetClipboard().SetText(clipboardLines.c_str());
    e.widget->UserPastes();
    EXPECT_EQ(ReachedLines(e), std::make_pair(20, 45));
    EXPECT_EQ(e.edit.changeStart, e.edit.LineIndex(30));
    EXPECT_EQ(e.edit.changeType, ChangeNone);

    // Without the protected effect no notice comes: only the caret counts.
    Editor plain;
    plain.SetText(BeginLines(60).c_str());
    plain.Paint();
    Put(plain, 30);
    plain.widget->UserPastes();
    EXPECT_EQ(ReachedLines(plain), std::make_pair(25, 45));

    // A replacement by the program is a replace.
    e.Paint();
    Put(e, 30);
    e.edit.ReplaceSel("BEGIN\rBEGIN\rBEGIN\r", TRUE);
    EXPECT_EQ(ReachedLines(e), std::make_pair(20, 43));

    // Delete notes the deleted range; the colouring's own format notices do not.
    e.Paint();
    const long line30 = e.edit.LineIndex(30);
    e.edit.SetSel(line30, line30 + 5);
    e.widget->UserPressesKey(VK_DELETE);
    EXPECT_EQ(e.edit.changeStart, line30);
    EXPECT_EQ(e.edit.changeEnd, line30 + 5);
    // Line 30 is empty now, and the range ends where line 40 begins.
    EXPECT_EQ(ReachedLines(e), std::make_pair(20, 39));
}

TEST(LiveEditing, AMoveColoursWhereTheTextArrivedAndWhereItLeft) {
    Editor e;
    e.SetText(BeginLines(80).c_str());
    e.Paint(RGB(1, 2, 3), true);
    const long source = e.edit.LineIndex(5);
    e.edit.SetSel(source, e.edit.LineIndex(6));
    e.widget->UserDragsSelection(e.edit.LineIndex(60));
    EXPECT_EQ(e.Sel(), std::make_pair(static_cast<long>(e.edit.LineIndex(59)), static_cast<long>(e.edit.LineIndex(60))));
    for (int line : {0, 15, 49, 70}) EXPECT_TRUE(LineReached(e, line)) << line;
    for (int line : {16, 48, 71}) EXPECT_FALSE(LineReached(e, line)) << line;
    EXPECT_EQ(e.edit.changeStart, source);  // the range of the cut
    EXPECT_EQ(e.edit.changeEnd, source + 6);

    // Moved backward: the place it left is behind the text.
    e.Paint();
    e.edit.SetSel(e.edit.LineIndex(70), e.edit.LineIndex(71));
    e.widget->UserDragsSelection(e.edit.LineIndex(20));
    for (int line : {10, 31, 61, 79}) EXPECT_TRUE(LineReached(e, line)) << line;
    for (int line : {9, 32, 60}) EXPECT_FALSE(LineReached(e, line)) << line;

    Editor plain;
    plain.SetText(BeginLines(80).c_str());
    plain.Paint();
    plain.edit.SetSel(plain.edit.LineIndex(5), plain.edit.LineIndex(6));
    plain.widget->UserDragsSelection(plain.edit.LineIndex(60));
    EXPECT_EQ(ReachedLines(plain), std::make_pair(49, 70));
}

TEST(LiveEditing, AnUnknownKindOfChangeColoursEverything) {
    Editor e;
    e.SetText(BeginLines(60).c_str());
    e.edit.SetSel(0, 5);
    CHARFORMAT protect;
    protect.dwMask = CFM_PROTECTED;
    protect.dwEffects = CFE_PROTECTED;
    e.edit.SetSelectionCharFormat(protect);
    e.Paint();  // a format change of protected text: a notice of another kind
    EXPECT_EQ(e.edit.changeType, ChangeOther);
    Put(e, 50);
    e.widget->UserTypes("x");
    EXPECT_EQ(ReachedLines(e), std::make_pair(0, 59));
    EXPECT_EQ(e.edit.changeType, ChangeNone);
}

TEST(LiveEditing, TheEnginesOwnChangesStartNoColouring) {
    Editor e;
    e.edit.SetChangeCase(0);
    e.SetText("begin");
    e.edit.SetChangeCase(1);
    e.edit.changeType = ChangeReplace;
    e.edit.FormatAll();
    EXPECT_EQ(e.Text(), "BEGIN");
    EXPECT_EQ(e.edit.changeType, ChangeReplace);
}

TEST(LiveEditing, TabGoesIntoTheTextWithoutAnUndoStep) {
    Editor e;
    EXPECT_EQ(e.edit.SendMessage(WM_GETDLGCODE), 0x87);
    e.widget->UserPressesKey(VK_TAB);
    e.widget->UserTypes("\tEND");
    EXPECT_EQ(e.Text(), "\t\tEND");
    EXPECT_EQ(e.Letters(), "..kkk");
    e.widget->UserUndoes();
    EXPECT_EQ(e.Text(), "\t\t");
    EXPECT_FALSE(e.edit.CanUndo());

    const PARAFORMAT& para = e.widget->GetParaFormat();
    EXPECT_EQ(para.cTabCount, 32);
    EXPECT_EQ(para.rgxTabs[0], 288);
    EXPECT_EQ(para.rgxTabs[31], 9216);

    e.edit.SetReadOnly(TRUE);
    e.widget->UserPressesKey(VK_TAB);
    EXPECT_EQ(e.Text(), "\t\t");
}

TEST(LiveEditing, BracketJumpBackward) {
    ScopedRecordingUi recording;
    Editor e;
    e.SetText("a(b(c)d");
    e.edit.SetSel(7, 7);
    e.widget->UserPressesKey('8', true);
    EXPECT_EQ(e.Sel(), std::make_pair(1L, 1L));

    // The search begins before the caret: at 1 only "a" is left, no "(".
    e.widget->UserPressesKey('8', true);
    EXPECT_EQ(e.Sel(), std::make_pair(1L, 1L));
    ASSERT_EQ(recording.ui.events.size(), 1u);
    EXPECT_EQ(recording.ui.events[0].kind, UiEvent::Beep);

    e.edit.SetSel(0, 3);
    e.widget->UserPressesKey('8', true);
    EXPECT_EQ(e.Sel(), std::make_pair(0L, 3L));
    EXPECT_EQ(recording.ui.events.size(), 2u);
    EXPECT_EQ(e.Text(), "a(b(c)d");
}

TEST(LiveEditing, BracketJumpForwardLooksAtMostAThousandCharacters) {
    ScopedRecordingUi recording;
    Editor e;
    e.SetText("f(a(b)c)d");
    e.edit.SetSel(1, 1);
    e.widget->UserPressesKey('9', true);
    EXPECT_EQ(e.Sel(), std::make_pair(7L, 7L));
    // The character right behind the caret is skipped.
    e.edit.SetSel(3, 3);
    e.widget->UserPressesKey('9', true);
    EXPECT_EQ(e.Sel(), std::make_pair(5L, 5L));

    e.SetText(("(" + std::string(999, 'x') + ")").c_str());
    e.edit.SetSel(0, 0);
    e.widget->UserPressesKey('9', true);
    EXPECT_EQ(e.Sel(), std::make_pair(1000L, 1000L));
    EXPECT_TRUE(recording.ui.events.empty());

    e.SetText(("(" + std::string(1000, 'x') + ")").c_str());
    e.edit.SetSel(0, 0);
    e.widget->UserPressesKey('9', true);
    EXPECT_EQ(e.Sel(), std::make_pair(0L, 0L));
    ASSERT_EQ(recording.ui.events.size(), 1u);
    EXPECT_EQ(recording.ui.events[0].kind, UiEvent::Beep);

    // Without Ctrl the keys type their characters.
    e.SetText("");
    e.widget->UserPressesKey('8', false, true);
    e.widget->UserPressesKey('9');
    EXPECT_EQ(e.Text(), "(9");
}

TEST(LiveEditing, FocusCollapsesTheSelectionToItsStart) {
    Editor e;
    e.SetText("BEGIN END");
    e.edit.SetSel(2, 7);
    e.widget->UserFocuses();
    EXPECT_EQ(e.Sel(), std::make_pair(2L, 2L));
    EXPECT_TRUE(e.edit.HasFocus());
    EXPECT_TRUE(e.widget->HasFocus());
}

TEST(LiveEditing, InitializeSetsTheEventMask) {
    Editor e;
    EXPECT_EQ(e.edit.GetEventMask(), 0x280001u);
    CHARFORMAT defaults;
    e.edit.GetDefaultCharFormat(defaults);
    EXPECT_STREQ(defaults.szFaceName, "Arial");  // the widget's own, read and set back
    EXPECT_EQ(e.edit.changeType, ChangeNone);
    EXPECT_EQ(e.edit.commentChar, 1);
    EXPECT_EQ(e.edit.stringQuotes, "\"");
}
