#include <gtest/gtest.h>

#include <string>

#include "tests/editor/editor_fixture.h"

namespace {
bool LineReached(const Editor& e, int line) { return e.Reached(e.edit.LineIndex(line)); }

// The runs of lines that the last colouring reached: "first-last first-last".
std::string ReachedLines(const Editor& e) {
    std::string runs;
    for (int line = 0, count = e.edit.GetLineCount(); line < count; ++line) {
        if (!LineReached(e, line) || (line > 0 && LineReached(e, line - 1))) continue;
        int last = line;
        while (last + 1 < count && LineReached(e, last + 1)) ++last;
        runs += (runs.empty() ? "" : " ") + std::to_string(line) + "-" + std::to_string(last);
    }
    return runs;
}

void Drag(Editor& e, int line, int to) {
    e.edit.SetSel(e.edit.LineIndex(line), e.edit.LineIndex(line + 1));
    e.widget->UserDragsSelection(e.edit.LineIndex(to));
}

void Put(Editor& e, int line) {
    const long at = e.edit.LineIndex(line);
    e.edit.SetSel(at, at);
}

void Paste5(Editor& e) {
    GetClipboard().SetText("BEGIN\r\nBEGIN\r\nBEGIN\r\nBEGIN\r\nBEGIN\r\n");
    e.widget->UserPastes();
}
}  // namespace

TEST(LiveEditing, TypingColoursAsTheUserGoes) {
    Editor typed;
    typed.widget->UserTypes("begin x := 1,5; (* c *) \"s\" end");
    EXPECT_EQ(typed.Text(), "BEGIN x := 1,5; (* c *) \"s\" END");
    EXPECT_EQ(typed.Letters(), "kkkkk......nnn..#######.sss.kkk");
    EXPECT_EQ(typed.Sel(), std::make_pair(31L, 31L));
}

// Text marked protected makes the widget tell the kind of a change and its
// range; without it only the caret counts. Ten lines on either side are coloured.
TEST(LiveEditing, AChangeColoursTheLinesAroundItByItsKind) {
    struct Case {
        const char* what;
        bool protect;
        int caretLine;  // -1: the action places it
        void (*act)(Editor&);
        const char* reached;
    };
    const Case cases[] = {
        {"caret move", false, 30, [](Editor& e) { e.widget->UserPressesKey(VK_RIGHT); }, ""},
        {"typing", false, 30, [](Editor& e) { e.widget->UserTypes("x"); }, "20-40"},
        {"backspace joining lines 2 and 3", false, 3, [](Editor& e) { e.widget->UserPressesKey(VK_BACK); }, "0-12"},
        {"new last line", false, 59, [](Editor& e) { e.widget->UserTypes("\r"); }, "50-60"},
        {"protected paste", true, 30, Paste5, "20-45"},
        {"plain paste", false, 30, Paste5, "25-45"},
        {"replace", true, 30, [](Editor& e) { e.edit.ReplaceSel("BEGIN\rBEGIN\rBEGIN\r", TRUE); }, "20-43"},
        // Line 30 is empty then, and the range ends where line 40 begins.
        {"protected delete", true, -1,
         [](Editor& e) {
             e.edit.SetSel(e.edit.LineIndex(30), e.edit.LineIndex(30) + 5);
             e.widget->UserPressesKey(VK_DELETE);
         },
         "20-39"},
        // A move colours where the text arrived and where it left: before or
        // behind the text, by the range of the cut, which neither the paste nor
        // the colouring's own format notices change.
        {"protected move forward", true, -1, [](Editor& e) { Drag(e, 5, 40); }, "0-15 29-50"},
        {"protected move backward", true, -1, [](Editor& e) { Drag(e, 45, 10); }, "0-21 36-56"},
        {"plain move", false, -1, [](Editor& e) { Drag(e, 5, 40); }, "29-50"},
        // A format change of protected text is a notice of another kind: all is coloured.
        {"after a change of another kind", false, 50,
         [](Editor& e) {
             e.Paint(RGB(1, 2, 3), true, 0, 5);
             e.Paint();
             EXPECT_EQ(e.edit.changeType, ChangeOther);
             e.widget->UserTypes("x");
         },
         "0-59"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Editor e;
        e.SetText(BeginLines(60).c_str());
        e.Paint(RGB(1, 2, 3), c.protect);
        if (c.caretLine >= 0) Put(e, c.caretLine);
        c.act(e);
        EXPECT_EQ(ReachedLines(e), c.reached);
        EXPECT_EQ(e.edit.changeType, ChangeNone);
    }
}

TEST(LiveEditing, TheEndOfTheRangeTakesTheLengthOfTheLastChangedLine) {
    Editor e;
    e.SetText("BEGIN END\rx\rx\rx\rx\rx\rx\rx\rx\rx\rx\rBEGIN END BEGIN");
    e.Paint();
    e.edit.SetSel(0, 0);
    e.widget->UserTypes(" ");
    // The range reaches into line 11 by the length of line 0, " BEGIN END".
    EXPECT_EQ(e.LineLetters(11), "kkkkk.xxxxxxxxx");
}

TEST(LiveEditing, InitializeTabsAndFocus) {
    Editor e;
    EXPECT_EQ(e.edit.GetEventMask(), 0x280001u);
    const PARAFORMAT& para = e.widget->GetParaFormat();
    EXPECT_EQ(para.cTabCount, 32);
    EXPECT_EQ(para.rgxTabs[0], 288);
    EXPECT_EQ(para.rgxTabs[31], 9216);

    // A tab goes into the text, without an undo step, and not into read-only text.
    EXPECT_EQ(e.edit.SendMessage(WM_GETDLGCODE), 0x87);
    e.widget->UserPressesKey(VK_TAB);
    e.widget->UserTypes("\tEND");
    EXPECT_EQ(e.Text(), "\t\tEND");
    EXPECT_EQ(e.Letters(), "..kkk");
    e.widget->UserUndoes();
    EXPECT_EQ(e.Text(), "\t\t");
    EXPECT_FALSE(e.edit.CanUndo());
    e.edit.SetReadOnly(TRUE);
    e.widget->UserPressesKey(VK_TAB);
    EXPECT_EQ(e.Text(), "\t\t");

    // Focus collapses the selection to its start.
    e.SetText("BEGIN END");
    e.edit.SetSel(2, 7);
    e.widget->UserFocuses();
    EXPECT_EQ(e.Sel(), std::make_pair(2L, 2L));
    EXPECT_TRUE(e.edit.HasFocus());
    EXPECT_TRUE(e.widget->HasFocus());
}

// Ctrl+8 jumps back to the open "(", Ctrl+9 forward to the closing ")",
// looking at most a thousand characters; a failed jump beeps.
TEST(LiveEditing, BracketJumps) {
    struct Case {
        std::string text;
        long start, end;
        UINT key;
        long jumpedTo;  // -1: the selection stays
    };
    const Case cases[] = {
        {"a(b(c)d", 7, 7, '8', 1},
        {"a(b(c)d", 1, 1, '8', -1},  // the search begins before the caret
        {"a(b(c)d", 0, 3, '8', -1},
        {"f(a(b)c)d", 1, 1, '9', 7},
        {"f(a(b)c)d", 3, 3, '9', 5},  // the character right behind the caret is skipped
        {"(" + std::string(999, 'x') + ")", 0, 0, '9', 1000},
        {"(" + std::string(1000, 'x') + ")", 0, 0, '9', -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text.substr(0, 12) + " from " + std::to_string(c.start));
        ScopedRecordingUi recording;
        Editor e;
        e.SetText(c.text.c_str());
        e.edit.SetSel(c.start, c.end);
        e.widget->UserPressesKey(c.key, true);
        const bool jumped = c.jumpedTo >= 0;
        EXPECT_EQ(e.Sel(), jumped ? std::make_pair(c.jumpedTo, c.jumpedTo) : std::make_pair(c.start, c.end));
        EXPECT_EQ(recording.ui.events.size(), jumped ? 0u : 1u);
        for (const UiEvent& event : recording.ui.events) EXPECT_EQ(event.kind, UiEvent::Beep);
        EXPECT_EQ(e.Text(), c.text);
    }

    // Without Ctrl the keys type their characters.
    Editor e;
    e.widget->UserPressesKey('8', false, true);  // "(" on a German keyboard
    e.widget->UserPressesKey('9');
    EXPECT_EQ(e.Text(), "(9");
}
