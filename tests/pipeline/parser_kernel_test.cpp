#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "support/test_support.h"

namespace {

// The four objects of a run, made as the runner makes them.
struct Kernel {
    explicit Kernel(const std::string& source, bool showErrors = true)
        : text(source),
          scanner(text.data(), static_cast<int>(text.size())),
          generator(&interpreter),
          parser(&scanner, &generator, showErrors) {}

    // Scans up to and including the word `word`, so that it is the scanner's id.
    void ReadUpTo(const char* word) {
        do scanner.GetSym();
        while (scanner.sym != symEof && scanner.id != word);
    }

    std::string text;
    CScanner scanner;
    CInterpreter interpreter;
    CGenerator generator;
    CParser parser;
};

// Runs `action`, which must end in a compile error, and gives the exception text.
template <class Action>
CString ThrownText(Action action) {
    try {
        action();
    } catch (CQELException* e) {
        CString text = e->GetText();
        e->Delete();
        return text;
    }
    ADD_FAILURE() << "no exception";
    return CString();
}

}  // namespace

TEST(ErrorDisplay, MarkerLineStandsUnderTheLineOfTheError) {
    ScopedRecordingUi rec;
    Kernel k("line zero\nline one bad\nline two\n");
    k.scanner.line = 1;
    k.scanner.position = 9;
    CString thrown = ThrownText([&] { ZeigeFehlerText("Titel", "Meldung", &k.scanner, true); });
    EXPECT_EQ(thrown, "Titel : Meldung");

    ASSERT_EQ(rec.ui.events.size(), 1u);
    const UiEvent& dialog = rec.ui.events[0];
    EXPECT_EQ(dialog.kind, UiEvent::TextDialog);
    EXPECT_EQ(dialog.caption, "Titel");
    EXPECT_EQ(dialog.text, "line zero\nline one bad\n<!>!!!!!!Meldung\r\nline two\n");
    EXPECT_EQ(dialog.line, 1);
    EXPECT_EQ(dialog.column, 9 + 3 + 7);
}

TEST(ErrorDisplay, ShortPositionsAndMissingLineFeeds) {
    ScopedRecordingUi rec;
    Kernel k("only one line");
    k.scanner.line = 0;
    k.scanner.position = 2;  // shorter than the marker: no padding
    ThrownText([&] { ZeigeFehlerText("T", "m", &k.scanner, true); });
    ASSERT_EQ(rec.ui.events.size(), 1u);
    // No line feed ends line 0: the marker goes to the end, on a line of its own.
    EXPECT_EQ(rec.ui.events[0].text, "only one line\n<!>m\r\n");
    EXPECT_EQ(rec.ui.events[0].column, 2 + 3 + 1);

    rec.ui.events.clear();
    Kernel beyond("a\nb\n");
    beyond.scanner.line = 7;
    beyond.scanner.position = 4;
    ThrownText([&] { ZeigeFehlerText("T", "m", &beyond.scanner, true); });
    EXPECT_EQ(rec.ui.events[0].text, "a\nb\n<!>!m\r\n");
}

TEST(ParserKernel, ErrorsByNumberAndByText) {
    ScopedRecordingUi rec;
    Kernel k("x");
    EXPECT_EQ(k.parser.errorTexts.GetSize(), 24);
    EXPECT_EQ(ThrownText([&] { k.parser.err(99); }), "Fehler Parser : <unbekannter Fehler>");
    EXPECT_EQ(k.parser.ok, 0);
    EXPECT_EQ(ThrownText([&] { k.parser.err(9); }), "Fehler Parser : Hier wird ein Punkt erwartet.");
    EXPECT_EQ(ThrownText([&] { k.parser.err(7); }), "Fehler Parser : Schliessende Klammer fehlt.");
    EXPECT_EQ(ThrownText([&] { k.parser.err(CString("eigener Text")); }), "Fehler Parser : eigener Text");
    ASSERT_EQ(rec.ui.events.size(), 4u);
    EXPECT_EQ(rec.ui.events[0].caption, "Fehler Parser");

    Kernel quiet("x", false);
    quiet.parser.err(99);
    quiet.parser.err(CString("still quiet"));
    EXPECT_EQ(quiet.parser.ok, 0);
    EXPECT_EQ(rec.ui.events.size(), 4u);
}

TEST(ParserKernel, WarningsOnlyWhenShown) {
    ScopedRecordingUi rec;
    Kernel k("ab\n  cd");
    k.ReadUpTo("cd");
    k.parser.warning("Vorsicht.");
    ASSERT_EQ(rec.ui.events.size(), 1u);
    EXPECT_EQ(rec.ui.events[0].text, "Warnung Parser: Zeile: 1 Position: 5: Vorsicht.\n");
    EXPECT_EQ(rec.ui.events[0].icon, CUserInterface::IconInformation);
    EXPECT_EQ(k.parser.ok, 1);

    Kernel quiet("x", false);
    quiet.parser.warning("Vorsicht.");
    EXPECT_EQ(rec.ui.events.size(), 1u);
    EXPECT_EQ(quiet.parser.ok, 1);
}

TEST(ParserKernel, ScopesDeclareFindAndShadow) {
    ScopedRecordingUi rec;
    Kernel k("Alpha ALPHA beta alpha", false);
    k.parser.NewBlock();
    EXPECT_EQ(k.parser.level, 1);
    Object* outerHead = k.parser.topScope;
    EXPECT_EQ(k.parser.firstObject, outerHead);
    EXPECT_EQ(outerHead->objectClass, Head);

    k.scanner.GetSym();
    Object* alpha = k.parser.NewObj(Var);
    EXPECT_EQ(alpha->name, "Alpha");
    EXPECT_EQ(k.parser.ok, 1);

    // Same name in another spelling, same scope: error 22, but the entry is made.
    k.scanner.GetSym();
    Object* again = k.parser.NewObj(Const);
    EXPECT_EQ(k.parser.ok, 0);
    EXPECT_EQ(alpha->next, again);
    EXPECT_EQ(outerHead->lastInScope, again);

    k.scanner.GetSym();
    Object* beta = k.parser.NewObj(Var);

    // An inner scope may declare an outer name again and shadows it.
    Kernel inner("alpha alpha");
    inner.parser.NewBlock();
    inner.scanner.GetSym();
    Object* outerAlpha = inner.parser.NewObj(Var);
    inner.parser.NewBlock();
    EXPECT_EQ(inner.parser.level, 2);
    Object* innerAlpha = inner.parser.NewObj(Const);  // id is still "alpha"
    EXPECT_EQ(inner.parser.ok, 1);
    EXPECT_EQ(inner.parser.find("ALPHA"), innerAlpha);
    inner.parser.DoneBlock();
    EXPECT_EQ(inner.parser.level, 1);
    EXPECT_EQ(inner.parser.find("Alpha"), outerAlpha);
    EXPECT_TRUE(rec.ui.events.empty());

    // Within one scope the first declaration wins; the outer scope is searched too.
    k.parser.NewBlock();
    EXPECT_EQ(k.parser.find("alpha"), alpha);
    EXPECT_EQ(k.parser.find("BETA"), beta);
}

TEST(ParserKernel, FindOfAnUnknownNameGivesTheUndefinedEntry) {
    ScopedRecordingUi rec;
    Kernel quiet("x", false);
    quiet.parser.NewBlock();
    Object* unknown = quiet.parser.find("nirgends");
    ASSERT_NE(unknown, nullptr);
    EXPECT_EQ(unknown, quiet.parser.undefinedObject);
    EXPECT_EQ(unknown->objectClass, Var);
    EXPECT_EQ(unknown->Type(), symInteger);
    EXPECT_EQ(quiet.parser.ok, 0);
    // A scope head is never found, not even by its empty name.
    EXPECT_EQ(quiet.parser.find(""), quiet.parser.undefinedObject);

    Kernel shown("x");
    shown.parser.NewBlock();
    EXPECT_EQ(ThrownText([&] { shown.parser.find("nirgends"); }),
              "Fehler Parser : Dieser Bezeichner ist nicht vereinbart.");
}

namespace {

// A TYPEDEF row as the language adds it: `name` derived from `base`.
CPredefinedTyp* AddTypeRow(int symbol, const char* name, CPredefinedTyp* base) {
    CPredefinedTyp* row = new CPredefinedTyp(symbol);
    row->name = name;
    row->base = base;
    PredefinedTypen.Add(row);
    return row;
}

}  // namespace

TEST(TypeRules, GleicherTypWalksFromTheSourceToTheRoot) {
    Kernel k("Handle");
    // Each scanner empties the table, each parser puts the root row.
    ASSERT_EQ(PredefinedTypen.GetSize(), 1);
    CPredefinedTyp* root = PredefinedTypen[0];
    EXPECT_EQ(root->name, "integer");
    CPredefinedTyp* handle = AddTypeRow(60, "Handle", root);
    AddTypeRow(61, "Fenster", handle);
    CParser& p = k.parser;

    EXPECT_TRUE(p.GleicherTyp(symInteger, symInteger));
    EXPECT_TRUE(p.GleicherTyp(symInteger, static_cast<Symbol>(60)));
    EXPECT_TRUE(p.GleicherTyp(symInteger, static_cast<Symbol>(61)));
    EXPECT_TRUE(p.GleicherTyp(static_cast<Symbol>(60), static_cast<Symbol>(61)));
    EXPECT_FALSE(p.GleicherTyp(static_cast<Symbol>(61), static_cast<Symbol>(60)));
    EXPECT_FALSE(p.GleicherTyp(static_cast<Symbol>(60), symInteger));
    EXPECT_FALSE(p.GleicherTyp(symInteger, symDouble));
    EXPECT_FALSE(p.GleicherTyp(symDouble, symInteger));
    EXPECT_FALSE(p.GleicherTyp(symString, static_cast<Symbol>(60)));

    // A cyclic chain cannot be built by the language, but must not hang.
    CPredefinedTyp* a = AddTypeRow(70, "a", nullptr);
    CPredefinedTyp* b = AddTypeRow(71, "b", a);
    a->base = b;
    EXPECT_FALSE(p.GleicherTyp(symInteger, static_cast<Symbol>(70)));

    // GetTyp: keywords of types, names of rows, and nothing else.
    Symbol t = symNull;
    k.scanner.GetSym();
    EXPECT_EQ(p.GetTyp(t), 1);
    EXPECT_EQ(t, 60);
    EXPECT_EQ(p.GetPredefinedTyp("FENSTER")->symbol, 61);
    EXPECT_EQ(p.GetPredefinedTyp("unbekannt"), nullptr);

    Kernel words("STRING double Array other ;");
    for (int expected : {symString, symDouble, symArray}) {
        words.scanner.GetSym();
        EXPECT_EQ(words.parser.GetTyp(t), 1);
        EXPECT_EQ(t, expected);
    }
    words.scanner.GetSym();
    EXPECT_EQ(words.parser.GetTyp(t), 0);
    words.scanner.GetSym();
    EXPECT_EQ(words.parser.GetTyp(t), 0);
    EXPECT_EQ(t, symSemicolon);
}

TEST(TypeRules, GenTypeCastConvertsNumbersAndRejectsMismatches) {
    ScopedRecordingUi rec;
    Kernel k("x");
    CParser& p = k.parser;
    AddTypeRow(60, "Handle", PredefinedTypen[0]);

    p.GenTypeCast(symInteger, symDouble);
    ASSERT_EQ(rec.ui.events.size(), 1u);
    EXPECT_NE(rec.ui.events[0].text.Find("Zuweisung von DOUBLE an INTEGER, Wertverlust möglich."), -1);
    EXPECT_EQ(k.generator.cx, 1);
    EXPECT_EQ(k.interpreter.code[0].f, OPR);
    EXPECT_EQ(k.interpreter.code[0].a, oprIntCast);

    p.GenTypeCast(symDouble, symInteger);
    EXPECT_EQ(k.generator.cx, 2);
    EXPECT_EQ(k.interpreter.code[1].a, oprDoubleCast);
    EXPECT_EQ(rec.ui.events.size(), 1u);

    // Equal types, strings on either side, a derived value to its base: no code.
    p.GenTypeCast(symInteger, symInteger);
    p.GenTypeCast(symString, symInteger);
    p.GenTypeCast(symDouble, symString);
    p.GenTypeCast(symInteger, static_cast<Symbol>(60));
    EXPECT_EQ(k.generator.cx, 2);
    EXPECT_EQ(p.ok, 1);

    EXPECT_EQ(ThrownText([&] { p.GenTypeCast(static_cast<Symbol>(60), symInteger); }),
              "Fehler Parser : Typen sind nicht kompatibel.");
    EXPECT_EQ(p.ok, 0);
}
