#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "pipeline/keywords.h"
#include "support/test_support.h"

namespace {

using Symbols = std::vector<int>;
using Words = std::vector<CString>;

// The rest of a text up to its end: symbols, and words (names as spelt,
// numbers by their value, strings in single quotes).
Words Rest(CScanner& scanner, Symbols* symbols = nullptr) {
    Words words;
    for (int guard = 0; guard < 10000; ++guard) {
        scanner.GetSym();
        if (scanner.sym == symEof) break;
        if (symbols) symbols->push_back(scanner.sym);
        const VALUE& v = scanner.value;
        if (scanner.sym != symNumber) words.push_back(scanner.id);
        else if (v.type == symString) words.push_back("'" + *v.GetStringPtr() + "'");
        else words.push_back(static_cast<CString>(v));
    }
    return words;
}

// A scanner of its own copy of `source`.
struct Scan : CScanner {
    explicit Scan(std::string source) : CScanner(source.data(), static_cast<int>(source.size())) {}
};

Symbols SymbolsOf(const std::string& source) {
    Symbols symbols;
    Scan scan(source);
    Rest(scan, &symbols);
    return symbols;
}

}  // namespace

TEST(Scanner, WordsAndMessages) {
    std::string deep;
    for (int i = 0; i < 100000; ++i) deep += "(*";
    for (int i = 0; i < 100000; ++i) deep += "*)";
    const std::string numberMark = "Scanner: Zeile: 1 Position: 8: Fehler bei der Zahlenangabe.\n";
    const std::string stringMark = "Ende der Zeichenkette fehlt.\n";
    const struct {
        std::string source;
        Words words;
        Words messages;
    } cases[] = {
        // Keywords keep the script's spelling.
        {"Begin BEGIN begin bEgIn beginner", {"Begin", "BEGIN", "begin", "bEgIn", "beginner"}, {}},
        {"_x \xE4pfel gr\xF6\xDF" "e \xDC" "ber9 3abc",
         {"_x", "\xE4pfel", "gr\xF6\xDF" "e", "\xDC" "ber9", "3", "abc"}, {}},
        {"42 1.5 2147483648 99999999999999999999999 007 1e5",
         {"42", "1.500000", "2147483647", "2147483647", "7", "1", "e5"}, {}},
        {"a\n  1.2.3 b", {"a", "1.200000", "b"}, {numberMark}},
        // Characters of no symbol and comments vanish; many in a row go by loops.
        {"a ! $ % & ' ? @ \\ ^ ` { | } ~ \xA7 \xE9 b", {"a", "b"}, {}},
        {std::string(200000, '$') + "x", {"x"}, {}},
        {"a (* x (* y *) z *) b", {"a", "b"}, {}},
        {"(**) (***) (* ** *) 1", {"1"}, {}},
        {deep + " x", {"x"}, {}},
        {"a (* (* (* inner *) still open", {"a"},
         {"Scanner: Zeile: 0 Position: 31: Kommentar wurde nicht beendet\n"}},
        // A backslash takes the next character literally; an open string keeps what it has.
        {R"("Hallo Welt" "a\"b" "x\\y" "\n" "two
lines")", {"'Hallo Welt'", "'a\"b'", "'x\\y'", "'n'", "'two\nlines'"}, {}},
        {"\"abc", {"'abc'"}, {"Scanner: Zeile: 0 Position: 5: " + stringMark}},
        {"\"abc\\", {"'abc'"}, {"Scanner: Zeile: 0 Position: 6: " + stringMark}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.source.substr(0, 40));
        ScopedRecordingUi rec;
        Scan s(c.source);
        EXPECT_EQ(Rest(s), c.words);
        EXPECT_EQ(rec.ui.Messages(), c.messages);
        EXPECT_EQ(s.errorFound, c.messages.empty() ? 0 : 1);
        for (const UiEvent& e : rec.ui.events) EXPECT_TRUE(e.icon == CUserInterface::IconNone && e.caption == "");
    }
}

TEST(Scanner, Symbols) {
    EXPECT_EQ(SymbolsOf("Begin bEgIn beginner 1e5"),
              (Symbols{symBegin, symBegin, symIdent, symNumber, symIdent}));
    EXPECT_EQ(SymbolsOf("a#b"), (Symbols{symIdent, symNotEqual, symIdent}));
    EXPECT_EQ(SymbolsOf("<>"), (Symbols{symLess, symGreater}));
    EXPECT_EQ(SymbolsOf("<= >= := = < > :"),
              (Symbols{symLessEqual, symGreaterEqual, symBecomes, symEqual, symLess, symGreater, symColon}));
    EXPECT_EQ(SymbolsOf("*/+-,;.()[]"),
              (Symbols{symTimes, symDivide, symPlus, symMinus, symComma, symSemicolon, symPeriod,
                       symLeftParen, symRightParen, symLeftBracket, symRightBracket}));
    EXPECT_EQ(SymbolsOf("// x"), (Symbols{symDivide, symDivide, symIdent})) << "no comment";
    // A colon or '<' as the very last character must not read past the text.
    EXPECT_EQ(SymbolsOf("x :"), (Symbols{symIdent, symColon}));
    EXPECT_EQ(SymbolsOf("<"), (Symbols{symLess}));

    // Every keyword in any case; words one letter off or longer are names.
    for (int row = 0; row < keywordRowCount; ++row) {
        std::string word = keywordRows[row].text;
        std::string mixed = word;
        for (size_t i = 0; i < mixed.size(); i += 2) mixed[i] = static_cast<char>(mixed[i] + 32);
        std::string offByOne = word;
        offByOne.back() = offByOne.back() == 'Z' ? 'Y' : static_cast<char>(offByOne.back() + 1);
        EXPECT_EQ(SymbolsOf(mixed + " " + word + "S " + offByOne + " " + word + "\xE4"),
                  (Symbols{keywordRows[row].sym, symIdent, symIdent, symIdent}))
            << word;
    }

    Scan s("");  // the keyword table holds 40 rows at most
    EXPECT_EQ(s.keywordCount, 36);
    for (int i = 0; i < 10; ++i) s.EnterKW(symOr, "EXTRA");
    EXPECT_EQ(s.keywordCount, CScanner::keywordCapacity);
    EXPECT_EQ(s.keywords[39].name, "EXTRA");
}

TEST(Scanner, LinesAndPositionsCountAsCharactersAreRead) {
    Scan s("ab\ncd\r\n  x");
    auto at = [&] { return std::to_string(s.line) + ":" + std::to_string(s.position); };
    s.GetSym();
    s.GetSym();
    // The look-ahead stands one behind the symbol: after "cd" the '\r' is read.
    EXPECT_EQ(s.id, "cd");
    EXPECT_EQ(s.ch, '\r');
    EXPECT_EQ(at(), "1:3");
    EXPECT_EQ(Rest(s), Words{"x"});
    EXPECT_EQ(at(), "2:4");
    EXPECT_EQ(s.eof, 1);
    EXPECT_EQ(s.ch, 0);
    s.GetSym();  // the end can be asked for again and again
    EXPECT_EQ(s.sym, symEof);
}

TEST(Scanner, ReadsOnlyTheGivenBytes) {
    std::string text = "abc def";
    CScanner part(text.data(), 3), widened(text.data(), 3), none(nullptr, 5), negative(text.data(), -1);
    widened.length = 1000;  // a host that enlarges `length` by hand still cannot make it read outside
    EXPECT_EQ(Rest(part), Words{"abc"});
    EXPECT_EQ(Rest(widened), Words{"abc"});
    EXPECT_EQ(Rest(none), Words{});
    EXPECT_EQ(Rest(negative), Words{});
}

TEST(Scanner, InsertTextFollowsTheLookAhead) {
    const struct {
        const char* source;
        bool wholeSymbol;  // else one character is read before the insertion
        const char* inserted;
        Words rest;
        int line;  // at the end
    } cases[] = {
        {"a b", true, "x y ", {"x", "y", "b"}, 0},
        {"ab", false, "Z", {"aZb"}, 0},  // behind a look-ahead letter: joins the word
        {"a", true, " c", {"c"}, 0},     // at the end of the text
        {"a\nb", true, "\n\nq ", {"q", "b"}, 3},  // inserted lines count
    };
    for (const auto& c : cases) {
        Scan s(c.source);
        if (c.wholeSymbol) s.GetSym();
        else s.GetCh();
        s.InsertText(c.inserted);
        EXPECT_EQ(s.length, static_cast<int>(strlen(c.source) + strlen(c.inserted)));
        EXPECT_EQ(Rest(s), c.rest) << c.source;
        EXPECT_EQ(s.line, c.line) << c.source;
    }
}

// Many insertions in a row, each read to its end before the next, and a
// long script behind them: all come out as from one spliced text.
TEST(Scanner, ManyInsertionsReadAsIfSplicedInPlace) {
    const std::string longWord(10000, 'w');
    std::string source = "a";
    Words original;
    for (int i = 0; i < 3000; ++i) {
        source += " n" + std::to_string(i) + (i % 7 == 0 ? "\n" : "");
        original.push_back(("n" + std::to_string(i)).c_str());
    }
    source += " " + longWord + "\nz";
    original.push_back(longWord.c_str());
    original.push_back("z");
    Scan s(source);
    s.GetSym();
    Words spliced, expected;
    for (int i = 0; i < 500; ++i) {
        // Each text is read up to its end, so the next comes behind it.
        s.InsertText(i % 2 ? " p q\n" : " r ");
        for (const char* word : {"p", "q"}) {
            if (i % 2 == 0 && word[0] == 'q') break;
            s.GetSym();
            spliced.push_back(s.id);
            expected.push_back(i % 2 ? word : "r");
        }
    }
    EXPECT_EQ(spliced, expected);
    EXPECT_EQ(s.line, 250);
    EXPECT_EQ(s.length, static_cast<int>(source.size()) + 250 * 5 + 250 * 3);
    EXPECT_EQ(Rest(s), original);
    EXPECT_EQ(s.line, 250 + 429 + 1);
    EXPECT_EQ(s.position, 2);
    EXPECT_EQ(static_cast<int>(s.buffer.size()), s.length);
}
