#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/test_support.h"

namespace {

// All symbols of a text up to the end.
std::vector<int> SymbolsOf(const std::string& source) {
    std::string text = source;
    CScanner scanner(text.data(), static_cast<int>(text.size()));
    std::vector<int> symbols;
    for (int guard = 0; guard < 10000; ++guard) {
        scanner.GetSym();
        if (scanner.sym == symEof) break;
        symbols.push_back(scanner.sym);
    }
    return symbols;
}

struct Scan {
    explicit Scan(const std::string& source) : text(source), scanner(text.data(), static_cast<int>(text.size())) {}
    std::string text;
    CScanner scanner;
};

}  // namespace

TEST(Scanner, KeywordsIgnoreCaseAndKeepTheScriptsSpelling) {
    Scan s("Begin BEGIN begin bEgIn beginner");
    for (const char* spelling : {"Begin", "BEGIN", "begin", "bEgIn"}) {
        s.scanner.GetSym();
        EXPECT_EQ(s.scanner.sym, symBegin);
        EXPECT_EQ(s.scanner.id, spelling);
    }
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.sym, symIdent);
    EXPECT_EQ(s.scanner.id, "beginner");

    EXPECT_EQ(SymbolsOf("import typedef extern exit elsif downto continue high"),
              (std::vector<int>{symImport, symTypedef, symExtern, symExit, symElsif, symDownto,
                                symContinue, symHigh}));
    EXPECT_EQ(s.scanner.keywordCount, 36);
}

TEST(Scanner, OperatorsAndTwoCharacterSymbols) {
    EXPECT_EQ(SymbolsOf("a#b"), (std::vector<int>{symIdent, symNotEqual, symIdent}));
    EXPECT_EQ(SymbolsOf("<>"), (std::vector<int>{symLess, symGreater}));
    EXPECT_EQ(SymbolsOf("<= >= := = < > :"),
              (std::vector<int>{symLessEqual, symGreaterEqual, symBecomes, symEqual, symLess,
                                symGreater, symColon}));
    EXPECT_EQ(SymbolsOf("*/+-,;.()[]"),
              (std::vector<int>{symTimes, symDivide, symPlus, symMinus, symComma, symSemicolon,
                                symPeriod, symLeftParen, symRightParen, symLeftBracket,
                                symRightBracket}));
    // Two slashes are two divisions, not a comment.
    EXPECT_EQ(SymbolsOf("// x"), (std::vector<int>{symDivide, symDivide, symIdent}));
    // A colon as the very last character must not read past the text.
    EXPECT_EQ(SymbolsOf("x :"), (std::vector<int>{symIdent, symColon}));
    EXPECT_EQ(SymbolsOf("<"), (std::vector<int>{symLess}));
}

TEST(Scanner, DroppedCharactersVanishWithoutMessage) {
    ScopedRecordingUi rec;
    EXPECT_EQ(SymbolsOf("a ! $ % & ' ? @ \\ ^ ` { | } ~ \xA7 \xE9 b"),
              (std::vector<int>{symIdent, symIdent}));
    // Many in a row are dropped by a loop, not by recursion.
    EXPECT_EQ(SymbolsOf(std::string(200000, '$') + "x"), (std::vector<int>{symIdent}));
    EXPECT_TRUE(rec.ui.events.empty());
}

TEST(Scanner, CommentsNestAndAnOpenOneIsReportedOnce) {
    ScopedRecordingUi rec;
    EXPECT_EQ(SymbolsOf("a (* x (* y *) z *) b"), (std::vector<int>{symIdent, symIdent}));
    EXPECT_EQ(SymbolsOf("(**) (***) (* ** *) 1"), (std::vector<int>{symNumber}));
    EXPECT_EQ(SymbolsOf("( x )"), (std::vector<int>{symLeftParen, symIdent, symRightParen}));
    EXPECT_TRUE(rec.ui.events.empty());

    Scan open("a (* (* (* inner *) still open");
    open.scanner.GetSym();
    open.scanner.GetSym();
    EXPECT_EQ(open.scanner.sym, symEof);
    ASSERT_EQ(rec.ui.Messages().size(), 1u);
    EXPECT_NE(rec.ui.Messages()[0].Find("Kommentar wurde nicht beendet"), -1);
    EXPECT_EQ(rec.ui.events[0].icon, CUserInterface::IconNone);
    EXPECT_EQ(open.scanner.errorFound, 1);
}

TEST(Scanner, DeeplyNestedCommentsDoNotExhaustTheStack) {
    ScopedRecordingUi rec;
    std::string deep;
    for (int i = 0; i < 100000; ++i) deep += "(*";
    for (int i = 0; i < 100000; ++i) deep += "*)";
    EXPECT_EQ(SymbolsOf(deep + " x"), (std::vector<int>{symIdent}));
    EXPECT_TRUE(rec.ui.events.empty());
}

TEST(Scanner, StringsTakeEscapedCharactersLiterally) {
    ScopedRecordingUi rec;
    Scan s(R"("Hallo Welt" "a\"b" "x\\y" "\n" "two
lines")");
    const char* expected[] = {"Hallo Welt", "a\"b", "x\\y", "n", "two\nlines"};
    for (const char* text : expected) {
        s.scanner.GetSym();
        ASSERT_EQ(s.scanner.sym, symNumber);
        ASSERT_EQ(s.scanner.value.type, symString);
        EXPECT_EQ(*s.scanner.value.GetStringPtr(), text);
    }
    EXPECT_TRUE(rec.ui.events.empty());
}

TEST(Scanner, UnterminatedStringKeepsWhatWasCollected) {
    ScopedRecordingUi rec;
    for (const char* source : {"\"abc", "\"abc\\"}) {
        rec.ui.events.clear();
        Scan s(source);
        s.scanner.GetSym();
        EXPECT_EQ(s.scanner.sym, symNumber);
        EXPECT_EQ(*s.scanner.value.GetStringPtr(), "abc") << source;
        ASSERT_EQ(rec.ui.Messages().size(), 1u);
        EXPECT_NE(rec.ui.Messages()[0].Find("Ende der Zeichenkette fehlt."), -1);
        s.scanner.GetSym();
        EXPECT_EQ(s.scanner.sym, symEof);
    }
}

TEST(Scanner, NumbersWithAndWithoutPoints) {
    ScopedRecordingUi rec;
    Scan s("42 1.5 2147483648 99999999999999999999999 007 1e5");
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.value.type, symInteger);
    EXPECT_EQ(s.scanner.value.intValue, 42);
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.value.type, symDouble);
    EXPECT_DOUBLE_EQ(s.scanner.value.doubleValue, 1.5);
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.value.intValue, 2147483647);
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.value.intValue, 2147483647);
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.value.intValue, 7);
    // No exponent: a number, then an identifier.
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.sym, symNumber);
    EXPECT_EQ(s.scanner.value.intValue, 1);
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.sym, symIdent);
    EXPECT_EQ(s.scanner.id, "e5");
    EXPECT_TRUE(rec.ui.events.empty());
    EXPECT_EQ(s.scanner.errorFound, 0);

    Scan twoPoints("1.2.3");
    twoPoints.scanner.GetSym();
    EXPECT_EQ(twoPoints.scanner.sym, symNumber);
    ASSERT_EQ(rec.ui.Messages().size(), 1u);
    EXPECT_NE(rec.ui.Messages()[0].Find("Fehler bei der Zahlenangabe."), -1);
    EXPECT_EQ(twoPoints.scanner.errorFound, 1);
}

TEST(Scanner, LinesAndPositionsCountAsCharactersAreRead) {
    Scan s("ab\ncd\r\n  x");
    s.scanner.GetCh();
    EXPECT_EQ(s.scanner.ch, 'a');
    EXPECT_EQ(s.scanner.line, 0);
    EXPECT_EQ(s.scanner.position, 1);
    s.scanner.GetCh();
    s.scanner.GetCh();
    EXPECT_EQ(s.scanner.ch, '\n');
    EXPECT_EQ(s.scanner.line, 1);
    EXPECT_EQ(s.scanner.position, 0);

    // The look-ahead stands one behind the symbol: after "cd" the '\r' is read.
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.id, "cd");
    EXPECT_EQ(s.scanner.ch, '\r');
    EXPECT_EQ(s.scanner.line, 1);
    EXPECT_EQ(s.scanner.position, 3);
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.id, "x");
    EXPECT_EQ(s.scanner.line, 2);
    EXPECT_EQ(s.scanner.position, 4);
    EXPECT_EQ(s.scanner.eof, 1);
    EXPECT_EQ(s.scanner.ch, 0);
    // The end can be asked for again and again.
    s.scanner.GetSym();
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.sym, symEof);
}

TEST(Scanner, MarkShowsLineAndPositionAndGoesOn) {
    ScopedRecordingUi rec;
    Scan s("a\n  1.2.3 b");
    s.scanner.GetSym();
    s.scanner.GetSym();
    ASSERT_EQ(rec.ui.Messages().size(), 1u);
    EXPECT_EQ(rec.ui.Messages()[0], "Scanner: Zeile: 1 Position: 8: Fehler bei der Zahlenangabe.\n");
    EXPECT_EQ(rec.ui.events[0].caption, "");
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.id, "b");
}

TEST(Scanner, WordsWithUmlautsAndUnderscores) {
    Scan s("_x \xE4pfel gr\xF6\xDF" "e \xDC" "ber9 3abc");
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.id, "_x");
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.id, "\xE4pfel");
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.id, "gr\xF6\xDF" "e");
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.sym, symIdent);
    EXPECT_EQ(s.scanner.id, "\xDC" "ber9");
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.sym, symNumber);
    EXPECT_EQ(s.scanner.value.intValue, 3);
    s.scanner.GetSym();
    EXPECT_EQ(s.scanner.id, "abc");
    EXPECT_FALSE(istIdentifierAnfang('\xE9'));
}

TEST(Scanner, ReadsOnlyTheGivenBytes) {
    // The copy ends at `length`: the rest of the caller's text is not part of it.
    std::string text = "abc def";
    CScanner scanner(text.data(), 3);
    scanner.GetSym();
    EXPECT_EQ(scanner.id, "abc");
    scanner.GetSym();
    EXPECT_EQ(scanner.sym, symEof);

    CScanner none(nullptr, 5);
    none.GetSym();
    EXPECT_EQ(none.sym, symEof);
    CScanner negative(text.data(), -1);
    negative.GetSym();
    EXPECT_EQ(negative.sym, symEof);

    // A host that enlarges `length` by hand still cannot make it read outside.
    CScanner widened(text.data(), 3);
    widened.length = 1000;
    widened.GetSym();
    widened.GetSym();
    EXPECT_EQ(widened.sym, symEof);
}

TEST(Scanner, InsertTextFollowsTheLookAhead) {
    Scan s("a b");
    s.scanner.GetSym();  // "a"; the look-ahead is the blank
    s.scanner.InsertText("x y ");
    EXPECT_EQ(s.scanner.length, 7);
    std::vector<CString> ids;
    for (s.scanner.GetSym(); s.scanner.sym != symEof; s.scanner.GetSym()) ids.push_back(s.scanner.id);
    EXPECT_EQ(ids, (std::vector<CString>{"x", "y", "b"}));

    // Inserted directly behind a look-ahead letter, the text joins the word.
    Scan join("ab");
    join.scanner.GetCh();
    join.scanner.InsertText("Z");
    join.scanner.GetSym();
    EXPECT_EQ(join.scanner.id, "aZb");

    // At the end of the text, the inserted text is read all the same.
    Scan atEnd("a");
    atEnd.scanner.GetSym();
    atEnd.scanner.InsertText(" c");
    atEnd.scanner.GetSym();
    EXPECT_EQ(atEnd.scanner.id, "c");
    // Lines of inserted text count as lines of the script.
    Scan lines("a\nb");
    lines.scanner.GetSym();
    lines.scanner.InsertText("\n\nq ");
    lines.scanner.GetSym();
    EXPECT_EQ(lines.scanner.id, "q");
    EXPECT_EQ(lines.scanner.line, 3);
}

TEST(Scanner, KeywordTableHoldsFortyRowsAtMost) {
    Scan s("");
    for (int i = 0; i < 10; ++i) s.scanner.EnterKW(symOr, "EXTRA");
    EXPECT_EQ(s.scanner.keywordCount, CScanner::keywordCapacity);
    EXPECT_EQ(s.scanner.keywords[0].name, "DO");
    EXPECT_EQ(s.scanner.keywords[35].name, "IMPORT");
    EXPECT_EQ(s.scanner.keywords[39].name, "EXTRA");
}
