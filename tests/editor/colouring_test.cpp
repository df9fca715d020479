#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/editor/editor_fixture.h"

namespace {
void NoSetup(TestEdit&) {}
void OnlyWords(TestEdit& edit, const char* keywords) {
    edit.ClearKeywords();
    edit.ClearConstants();
    edit.AddKeywords(keywords);
}
}  // namespace

// Letters: see editor_fixture.h. `shown` is the text after the rewrite of
// case, null if it stays as set.
TEST(Colouring, TokensGetTheirLettersAndWordsTheirSpelling) {
    struct Case {
        const char* text;
        const char* letters;
        const char* shown;
        void (*setup)(TestEdit&);
    };
    const Case cases[] = {
        {"BEGIN x := Pi; \"Text\" 42 END", "kkkkk......cc..ssssss.nn.kkk", nullptr, NoSetup},
        // Plain text behind the last token keeps its format but for its first character.
        {"BEGIN foo bar", "kkkkk.???????", nullptr, NoSetup},
        // "1,a" is "1," and a word; the comma of "7, x" belongs to the number; ".5" is "." and "5".
        {"3,14 1,a a1 2.5e3 7, x .5", "nnnn.nn.....nnnnn.nn....n", nullptr, NoSetup},
        // Strings run across lines, an unclosed one to the end.
        {"\"a\rb\" END \"open\rBEGIN", "sssss.kkk.sssssssssss", nullptr, NoSetup},
        {"'it''s' \"x'\"", "sssssss.ssss", nullptr, [](TestEdit& e) { e.SetStringQuotes("'\""); }},
        // Bracket comments nest, an unclosed one runs to the end; nothing inside is rewritten.
        {"(* a (* b *) c *) END", "#################.kkk", nullptr, NoSetup},
        {"BEGIN (* a (* b *) END\rWHILE", "kkkkk.######################", nullptr, NoSetup},
        {"(* begin *) begin", "###########.kkkkk", "(* begin *) BEGIN", NoSetup},
        // An error line is red whatever it holds; a bracket comment takes the marker
        // first; the marker takes one more character, even the line end.
        {"x := 1\r<!>!!!Fehler: \"BEGIN 12\r(* <!>x *)\r<!>\rEND",
         ".....n.!!!!!!!!!!!!!!!!!!!!!!!.##########.!!!!!!!", nullptr, NoSetup},
        {"BEGIN // END 1\rEND / 2", "kkkkk.########.kkk...n", nullptr, [](TestEdit& e) { e.SetSLComment('/', '/'); }},
        // The comment word is rewritten to its spelling before it turns into a comment.
        {"PRINT 1\rrem PRINT 2\rPRINT ' x", "kkkkk.n.###########.kkkkk.###", "PRINT 1\rREM PRINT 2\rPRINT ' x",
         [](TestEdit& e) { OnlyWords(e, " REM  PRINT "); e.SetSLComment('\'', 0); e.SetSLComment("REM"); }},
        // A comment word that the line rule would not take stays a keyword (and the scan ends).
        {"1 X", "n.k", nullptr,
         [](TestEdit& e) { OnlyWords(e, " X "); e.SetSLComment('X', 'Y'); e.SetSLComment("X"); }},
        {"begin", "kkkkk", nullptr, [](TestEdit& e) { e.SetChangeCase(0); }},
        // With case counting only the exact match form counts, and nothing is
        // rewritten; words added before keep their upper case match form.
        {"begin Begin", "......kkkkk", nullptr,
         [](TestEdit& e) { OnlyWords(e, ""); e.SetCaseSensitive(1); e.AddKeywords(" Begin "); }},
        {"begin BEGIN", "......kkkkk", nullptr, [](TestEdit& e) { OnlyWords(e, " Begin "); e.SetCaseSensitive(1); }},
        // Whole words only, spelt as at their place in the list; umlauts belong
        // to words; cleared lists are gone ("end", "pi").
        {"begin gin end pi 1", "kkkkk............n", "BEGIN gin end pi 1",
         [](TestEdit& e) { OnlyWords(e, " Beginner  BEGIN "); }},
        {"pi GRÖßE end 1", "...ccccc.....n", "pi Größe end 1",
         [](TestEdit& e) { e.ClearKeywords(); e.ClearConstants(); e.AddConstants(" Größe "); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        Editor e;
        c.setup(e.edit);
        e.SetText(c.text);
        EXPECT_EQ(e.Letters(), c.letters);
        EXPECT_EQ(e.Text(), c.shown ? c.shown : c.text);
    }
}

TEST(Colouring, StylesHaveTheirColoursAndTheModulesHeight) {
    Editor e;
    e.SetText("BEGIN Pi\r<!>x");
    EXPECT_EQ(e.widget->CharFormatAt(0).crTextColor, 0xFF0000u);
    EXPECT_FALSE(e.widget->CharFormatAt(0).dwEffects & CFE_BOLD);
    EXPECT_EQ(e.widget->CharFormatAt(6).crTextColor, 0u);
    EXPECT_TRUE(e.widget->CharFormatAt(6).dwEffects & CFE_BOLD);
    EXPECT_EQ(e.widget->CharFormatAt(9).crTextColor, 0x0000FFu);
    EXPECT_TRUE(e.widget->CharFormatAt(9).dwEffects & CFE_BOLD);

    // A new style takes effect with the next colouring.
    e.edit.SetKeywordColor(RGB(10, 20, 30), 1);
    e.edit.FormatAll();
    EXPECT_EQ(e.widget->CharFormatAt(0).crTextColor, RGB(10, 20, 30));
    EXPECT_TRUE(e.widget->CharFormatAt(0).dwEffects & CFE_BOLD);

    EXPECT_EQ(e.widget->CharFormatAt(0).yHeight, 200);  // the face is checked by every letter
    const int saved = TWScriptEditHoehe;
    TWScriptEditHoehe = 240;
    e.edit.FormatAll();
    TWScriptEditHoehe = saved;
    EXPECT_EQ(e.widget->CharFormatAt(0).yHeight, 240);
}

TEST(Colouring, CaseIsRewrittenWithoutAnUndoStepOrAColouringOfItsOwn) {
    Editor e;
    e.widget->UserTypes("begin writeln ");
    EXPECT_EQ(e.Text(), "BEGIN WriteLn ");
    EXPECT_EQ(e.widget->UndoStepCount(), 1);  // the typing only
    e.widget->UserUndoes();
    EXPECT_EQ(e.Text(), "");
    EXPECT_FALSE(e.edit.CanUndo());

    e.edit.SetChangeCase(0);
    e.SetText("begin");
    e.edit.SetChangeCase(1);
    e.edit.changeType = ChangeReplace;
    e.edit.FormatAll();
    EXPECT_EQ(e.Text(), "BEGIN");
    EXPECT_EQ(e.edit.changeType, ChangeReplace);
}

TEST(Colouring, FormatsLeaveOtherEffectsTheSelectionAndEmptyRangesAlone) {
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

    e.Paint();
    e.edit.SetFormatRange(4, 4, 1, RGB(9, 9, 9));
    e.edit.FormatTextRange(3, 3);
    e.edit.FormatTextRange(4, 2);
    EXPECT_EQ(e.Letters(), "xxxxxxxxxxx");
    EXPECT_EQ(e.Sel(), std::make_pair(6L, 9L));

    // A range that starts inside a comment is lexed as code.
    e.SetText("(* BEGIN *) END");
    e.edit.FormatTextRange(3, 15);
    EXPECT_EQ(e.Letters(), "###kkkkk....kkk");
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
    EXPECT_EQ(SelOf(edit), std::make_pair(3L, 8L));
    EXPECT_FALSE(widget.IsUpdateLocked());
    EXPECT_FALSE(widget.IsSelectionHidden());
    EXPECT_EQ(edit.forcedChange, 0);
    edit.Detach();
}
