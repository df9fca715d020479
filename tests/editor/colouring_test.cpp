#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/editor/editor_fixture.h"

TEST(Colouring, TokensGetTheirStyles) {
    Editor e;
    e.SetText("BEGIN x := Pi; \"Text\" 42 END");
    // The blank after a token is formatted when the next token closes the run.
    EXPECT_EQ(e.Letters(), "kkkkk......cc..ssssss.nn.kkk");

    const CHARFORMAT keyword = e.widget->CharFormatAt(0);
    EXPECT_EQ(keyword.crTextColor, 0xFF0000u);
    EXPECT_FALSE(keyword.dwEffects & CFE_BOLD);
    EXPECT_STREQ(keyword.szFaceName, "Courier New");
    EXPECT_EQ(keyword.yHeight, 200);
    const CHARFORMAT constant = e.widget->CharFormatAt(11);
    EXPECT_EQ(constant.crTextColor, 0u);
    EXPECT_TRUE(constant.dwEffects & CFE_BOLD);
}

TEST(Colouring, PlainTextBehindTheLastTokenKeepsItsFormatButForItsFirstCharacter) {
    Editor e;
    e.SetText("BEGIN foo bar");
    EXPECT_EQ(e.Letters(), "kkkkk.???????");
    e.SetText("foo");
    EXPECT_EQ(e.Letters(), ".??");
}

TEST(Colouring, NumbersAreReadWithTheirCommaAndExponent) {
    Editor e;
    e.SetText("3,14 1,a a1 2.5e3 7, x .5");
    // "1,a" is the number "1," and a word; the comma of "7, x" belongs to the
    // number; the point of ".5" is no part of it.
    EXPECT_EQ(e.Letters(), "nnnn.nn.....nnnnn.nn....n");
    EXPECT_EQ(e.Text(), "3,14 1,a a1 2.5e3 7, x .5");
}

TEST(Colouring, StringsRunAcrossLinesAndAnUnclosedOneToTheEnd) {
    Editor e;
    e.SetText("\"a\rb\" END \"open\rBEGIN");
    EXPECT_EQ(e.Letters(), "sssss.kkk.sssssssssss");
    e.edit.SetStringQuotes("'\"");
    e.SetText("'it''s' \"x'\"");
    EXPECT_EQ(e.Letters(), "sssssss.ssss");
    EXPECT_EQ(e.edit.IsStringQuote('\''), 1);
    EXPECT_EQ(e.edit.IsStringQuote('a'), 0);
}

TEST(Colouring, BracketCommentsNestAndAnUnclosedOneRunsToTheEnd) {
    Editor e;
    e.SetText("(* a (* b *) c *) END");
    EXPECT_EQ(e.Letters(), "#################.kkk");
    e.SetText("BEGIN (* a (* b *) END\rWHILE");
    EXPECT_EQ(e.Letters(), "kkkkk." + std::string(22, '#'));
    // Inside a comment nothing is rewritten.
    e.SetText("(* begin *) begin");
    EXPECT_EQ(e.Text(), "(* begin *) BEGIN");
}

TEST(Colouring, ErrorLinesAreRedAndBoldWhateverTheyHold) {
    Editor e;
    e.SetText("x := 1\r<!>!!!Fehler: \"BEGIN 12\r(* <!>x *)\r<!>\rEND");
    const std::string letters = e.Letters();
    EXPECT_EQ(e.LineLetters(1), std::string(23, '!'));
    // A bracket comment takes the marker first.
    EXPECT_EQ(e.LineLetters(2), "##########");
    // The marker takes one more character, even the line end.
    EXPECT_EQ(letters.substr(static_cast<size_t>(e.edit.LineIndex(3))), "!!!!!!!");
    const CHARFORMAT error = e.widget->CharFormatAt(e.edit.LineIndex(1));
    EXPECT_EQ(error.crTextColor, 0x0000FFu);
    EXPECT_TRUE(error.dwEffects & CFE_BOLD);
}

TEST(Colouring, LineCommentsByMarkerAndByWord) {
    Editor e;
    e.edit.SetSLComment('/', '/');
    e.SetText("BEGIN // END 1\rEND / 2");
    EXPECT_EQ(e.Letters(), "kkkkk.########.kkk...n");

    Editor basic;
    basic.edit.ClearKeywords();
    basic.edit.AddKeywords(" REM  PRINT ");
    basic.edit.SetSLComment('\'', 0);
    basic.edit.SetSLComment("REM");
    basic.SetText("PRINT 1\rrem PRINT 2\rPRINT ' x");
    EXPECT_EQ(basic.LineLetters(0), "kkkkk.n");
    EXPECT_EQ(basic.LineLetters(1), "###########");
    EXPECT_EQ(basic.LineLetters(2), "kkkkk.###");
    // The comment word is rewritten to its spelling before it turns into a comment.
    EXPECT_EQ(basic.Text(), "PRINT 1\rREM PRINT 2\rPRINT ' x");
}

TEST(Colouring, ACommentWordThatTheLineRuleWouldNotTakeStaysAKeyword) {
    Editor e;
    e.edit.ClearKeywords();
    e.edit.AddKeywords(" X ");
    e.edit.SetSLComment('X', 'Y');
    e.edit.SetSLComment("X");
    e.SetText("1 X");  // must end, not spin
    EXPECT_EQ(e.Letters(), "n.k");
}

TEST(Colouring, CaseIsRewrittenWithoutAnUndoStep) {
    Editor e;
    e.widget->UserTypes("begin writeln ");
    EXPECT_EQ(e.Text(), "BEGIN WriteLn ");
    EXPECT_EQ(e.Letters().substr(0, 13), "kkkkk.ccccccc");
    EXPECT_EQ(e.widget->UndoStepCount(), 1);  // the typing only
    e.widget->UserUndoes();
    EXPECT_EQ(e.Text(), "");
    EXPECT_FALSE(e.edit.CanUndo());

    e.edit.SetChangeCase(0);
    e.SetText("begin");
    EXPECT_EQ(e.Text(), "begin");
    EXPECT_EQ(e.Letters(), "kkkkk");
}

TEST(Colouring, CaseSensitiveListsMatchTheExactSpellingOnly) {
    Editor e(false);
    e.edit.SetCaseSensitive(1);
    e.edit.AddKeywords(" Begin ");
    e.SetText("begin Begin");
    EXPECT_EQ(e.edit.IsKeyword("begin"), -1);
    EXPECT_EQ(e.edit.IsKeyword("Begin"), 0);
    EXPECT_EQ(e.Letters(), "......kkkkk");
    EXPECT_EQ(e.Text(), "begin Begin");
    e.edit.ChangeCase(0, 5, "BEGIN");
    EXPECT_EQ(e.Text(), "begin Begin");

    // Words added while case did not count stay in upper case for the match.
    Editor late(false);
    late.edit.AddKeywords(" Begin ");
    late.edit.SetCaseSensitive(1);
    EXPECT_EQ(late.edit.keywordsMatch, " BEGIN ");
    EXPECT_EQ(late.edit.IsKeyword("BEGIN"), 0);
}

TEST(Colouring, WordListsFindWholeWordsAndTheirPosition) {
    Editor e(false);
    e.edit.AddKeywords(" BEGINNER  BEGIN ");
    EXPECT_EQ(e.edit.IsKeyword("begin"), 10);
    EXPECT_EQ(e.edit.IsKeyword("GIN"), -1);
    e.edit.AddConstants(" Wert ");
    e.edit.ClearKeywords();
    EXPECT_EQ(e.edit.keywords, "");
    EXPECT_EQ(e.edit.keywordsMatch, "");
    EXPECT_EQ(e.edit.IsConstant("WERT"), 0);
    e.edit.ClearConstants();
    EXPECT_EQ(e.edit.IsConstant("Wert"), -1);
}

TEST(Colouring, UmlautsBelongToWords) {
    Editor e(false);
    e.edit.AddConstants(" Größe ");
    e.SetText("GRÖßE 1");
    EXPECT_EQ(e.Text(), "Größe 1");
    EXPECT_EQ(e.Letters(), "ccccc.n");
}

TEST(Colouring, SettersChangeTheStyleOfTheNextColouring) {
    Editor e;
    e.SetText("BEGIN");
    e.edit.SetKeywordColor(RGB(10, 20, 30), 1);
    EXPECT_EQ(e.widget->CharFormatAt(0).crTextColor, 0xFF0000u);
    e.edit.FormatAll();
    EXPECT_EQ(e.widget->CharFormatAt(0).crTextColor, RGB(10, 20, 30));
    EXPECT_TRUE(e.widget->CharFormatAt(0).dwEffects & CFE_BOLD);
}

TEST(Colouring, FormatsLeaveOtherEffectsAndTheSelectionAlone) {
    Editor e;
    e.SetText("BEGIN x END");
    e.edit.SetSel(2, 7);
    CHARFORMAT italic;
    italic.dwMask = CFM_ITALIC;
    italic.dwEffects = CFE_ITALIC;
    e.edit.SetSelectionCharFormat(italic);
    e.edit.SetSel(6, 9);
    e.edit.FormatAll();
    EXPECT_EQ(e.Sel(), std::make_pair(6L, 9L));
    EXPECT_FALSE(e.widget->IsSelectionHidden());
    EXPECT_FALSE(e.widget->IsUpdateLocked());
    EXPECT_EQ(e.edit.forcedChange, 0);
    EXPECT_TRUE(e.widget->CharFormatAt(3).dwEffects & CFE_ITALIC);
    EXPECT_EQ(e.LetterAt(3), 'k');

    e.edit.SetFormatRange(4, 4, 1, RGB(9, 9, 9));
    EXPECT_EQ(e.Sel(), std::make_pair(6L, 9L));
    EXPECT_EQ(e.LetterAt(4), 'k');
}

TEST(Colouring, EmptyRangesAndEmptyTextChangeNothing) {
    Editor e;
    e.edit.FormatAll();
    EXPECT_EQ(e.Text(), "");
    e.SetText("BEGIN");
    e.Paint();
    e.edit.SetSel(1, 3);
    e.edit.FormatTextRange(3, 3);
    e.edit.FormatTextRange(4, 2);
    EXPECT_FALSE(e.Reached(0));
    EXPECT_EQ(e.Sel(), std::make_pair(1L, 3L));
}

TEST(Colouring, ARangeThatStartsInsideACommentIsLexedAsCode) {
    Editor e;
    e.SetText("(* BEGIN *) END");
    e.edit.FormatTextRange(3, 15);
    EXPECT_EQ(e.Letters(), "###kkkkk....kkk");
    e.edit.FormatAll();
    EXPECT_EQ(e.Letters(), "###########.kkk");
}

namespace {
// A widget whose formatting fails after a number of calls.
class FailingWidget : public CMemoryRichEdit {
public:
    int callsLeft = 1000;
    bool SetSelectionCharFormat(const CHARFORMAT& cf) override {
        if (--callsLeft < 0) throw std::runtime_error("widget gone");
        return CMemoryRichEdit::SetSelectionCharFormat(cf);
    }
};
}  // namespace

TEST(Colouring, AFailureInTheScanEndsItQuietlyAndRestoresTheControl) {
    FailingWidget widget;
    TestEdit edit;
    edit.Attach(&widget, false);
    edit.Initialize();
    edit.AddKeywords(" BEGIN  END ");
    edit.SetWindowText("BEGIN x END BEGIN");
    edit.SetSel(3, 8);
    widget.callsLeft = 2;
    edit.FormatAll();
    long s = 0, e = 0;
    edit.GetSel(s, e);
    EXPECT_EQ(s, 3);
    EXPECT_EQ(e, 8);
    EXPECT_FALSE(widget.IsUpdateLocked());
    EXPECT_FALSE(widget.IsSelectionHidden());
    EXPECT_EQ(edit.forcedChange, 0);
    edit.Detach();
}

TEST(Colouring, TheHeightFollowsTheModuleSetting) {
    const int saved = TWScriptEditHoehe;
    TWScriptEditHoehe = 240;
    Editor e;
    e.SetText("END");
    TWScriptEditHoehe = saved;
    EXPECT_EQ(e.widget->CharFormatAt(0).yHeight, 240);
}
