#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>
#include <utility>

#include "support/test_support.h"

namespace {

// The four objects of a run, made as the runner makes them.
struct Kernel {
    explicit Kernel(const std::string& source, bool showErrors = true)
        : text(source),
          scanner(text.data(), static_cast<int>(text.size())),
          generator(&interpreter),
          parser(&scanner, &generator, showErrors) {}

    std::string text;
    CScanner scanner;
    CInterpreter interpreter;
    CGenerator generator;
    CParser parser;
};

// The text of the compile error that `action` ends in.
CString ThrownText(const std::function<void()>& action) {
    try {
        action();
    } catch (CQELException* e) {
        CString text = e->GetText();
        e->Delete();
        return text;
    }
    return "<nothing thrown>";
}

// A TYPEDEF row as the language adds it: `name` derived from `base`.
CPredefinedTyp* AddTypeRow(int symbol, const char* name, CPredefinedTyp* base) {
    CPredefinedTyp* row = new CPredefinedTyp(symbol);
    row->name = name;
    row->base = base;
    PredefinedTypen.Add(row);
    return row;
}

}  // namespace

TEST(ErrorDisplay, MarkerLineStandsUnderTheLineOfTheError) {
    const struct {
        const char* source;
        int line, position;
        const char* shown;
    } cases[] = {
        {"line zero\nline one bad\nline two\n", 1, 9,
         "line zero\nline one bad\n<!>!!!!!!Meldung\r\nline two\n"},
        // Shorter than the marker: no padding. No line feed ends the line: the
        // marker goes to the end, on a line of its own.
        {"only one line", 0, 2, "only one line\n<!>Meldung\r\n"},
        {"a\nb\n", 7, 4, "a\nb\n<!>!Meldung\r\n"},  // beyond the last line
    };
    for (const auto& c : cases) {
        ScopedRecordingUi rec;
        Kernel k(c.source);
        k.scanner.line = c.line;
        k.scanner.position = c.position;
        EXPECT_EQ(ThrownText([&] { ZeigeFehlerText("Titel", "Meldung", &k.scanner, true); }),
                  "Titel : Meldung");
        ASSERT_EQ(rec.ui.events.size(), 1u);
        const UiEvent& dialog = rec.ui.events[0];
        EXPECT_EQ(dialog.text, c.shown);
        // The caret goes behind the marker and the message.
        EXPECT_EQ(std::make_tuple(dialog.kind, dialog.caption.str(), dialog.line, dialog.column),
                  std::make_tuple(UiEvent::TextDialog, std::string("Titel"), c.line, c.position + 3 + 7));
    }
}

TEST(ParserKernel, ErrorsAndWarnings) {
    ScopedRecordingUi rec;
    Kernel k("ab\n  cd");
    k.scanner.GetSym();
    k.scanner.GetSym();  // "cd"
    k.parser.warning("Vorsicht.");
    EXPECT_EQ(k.parser.ok, 1) << "a warning is no error";
    EXPECT_EQ(ThrownText([&] { k.parser.err(24); }), "Fehler Parser : <unbekannter Fehler>");
    EXPECT_EQ(k.parser.ok, 0);
    EXPECT_EQ(ThrownText([&] { k.parser.err(23); }), "Fehler Parser : Zahl ist zu gross.");
    EXPECT_EQ(ThrownText([&] { k.parser.err(9); }), "Fehler Parser : Hier wird ein Punkt erwartet.");
    EXPECT_EQ(ThrownText([&] { k.parser.err(CString("eigener Text")); }), "Fehler Parser : eigener Text");
    ASSERT_EQ(rec.ui.events.size(), 5u);
    EXPECT_EQ(rec.ui.events[0].text, "Warnung Parser: Zeile: 1 Position: 5: Vorsicht.\n");
    EXPECT_EQ(rec.ui.events[0].icon, CUserInterface::IconInformation);
    EXPECT_EQ(rec.ui.events[1].caption, "Fehler Parser");

    Kernel quiet("x", false);  // nothing shown, nothing thrown
    quiet.parser.warning("Vorsicht.");
    EXPECT_EQ(quiet.parser.ok, 1);
    quiet.parser.err(99);
    quiet.parser.err(CString("still quiet"));
    EXPECT_EQ(quiet.parser.ok, 0);
    EXPECT_EQ(rec.ui.events.size(), 5u);
}

TEST(ParserKernel, ScopesDeclareFindAndShadow) {
    ScopedRecordingUi rec;
    Kernel k("Alpha beta alpha ALPHA", false);
    auto declare = [&](ObjectClass c) { k.scanner.GetSym(); return k.parser.NewObj(c); };
    k.parser.NewBlock();
    Object* alpha = declare(Var);
    Object* beta = declare(Var);
    k.parser.NewBlock();
    Object* inner = declare(Const);  // an inner scope may declare an outer name again
    EXPECT_EQ(k.parser.ok, 1);
    EXPECT_EQ(k.parser.find("ALPHA"), inner) << "and shadows it";
    EXPECT_EQ(k.parser.find("BETA"), beta) << "outer scopes are searched too";
    k.parser.DoneBlock();
    Object* again = declare(Const);  // another spelling, same scope: error 22, but the entry is made
    EXPECT_EQ(k.parser.ok, 0);
    EXPECT_EQ(again->name, "ALPHA");
    EXPECT_EQ(beta->next, again);
    EXPECT_EQ(k.parser.find("alpha"), alpha) << "the first declaration wins";
    // An unknown name, even the empty name of a scope head, gives the undefined entry.
    Object* unknown = k.parser.find("nirgends");
    EXPECT_EQ(unknown, k.parser.undefinedObject);
    EXPECT_EQ(unknown->objectClass, Var);
    EXPECT_EQ(unknown->Type(), symInteger);
    EXPECT_EQ(k.parser.find(""), k.parser.undefinedObject);
    EXPECT_TRUE(rec.ui.events.empty());

    Kernel shown("x");
    shown.parser.NewBlock();
    EXPECT_EQ(ThrownText([&] { shown.parser.find("nirgends"); }),
              "Fehler Parser : Dieser Bezeichner ist nicht vereinbart.");
}

TEST(TypeRules, CompatibilityWalksFromTheSourceToTheRoot) {
    ScopedRecordingUi rec;
    Kernel k("Handle");
    CParser& p = k.parser;
    // Each scanner empties the table, each parser puts the root row.
    ASSERT_EQ(PredefinedTypen.GetSize(), 1);
    AddTypeRow(61, "Fenster", AddTypeRow(60, "Handle", PredefinedTypen[0]));
    const Symbol handle = static_cast<Symbol>(60), window = static_cast<Symbol>(61);
    const struct {
        Symbol target, source;
        int same;
    } cases[] = {
        {symInteger, symInteger, 1}, {symInteger, handle, 1},    {symInteger, window, 1},
        {handle, window, 1},         {window, handle, 0},        {handle, symInteger, 0},
        {symInteger, symDouble, 0},  {symDouble, symInteger, 0}, {symString, handle, 0},
    };
    for (const auto& c : cases) EXPECT_EQ(p.GleicherTyp(c.target, c.source), c.same) << c.target << c.source;

    // GetTyp: the names of rows, without regard to case.
    EXPECT_EQ(p.GetPredefinedTyp("FENSTER")->symbol, 61);
    EXPECT_EQ(p.GetPredefinedTyp("unbekannt"), nullptr);
    Symbol t = symNull;
    k.scanner.GetSym();
    EXPECT_EQ(p.GetTyp(t), 1);
    EXPECT_EQ(t, 60);

    // GenTypeCast: numbers convert; equal types, strings on either side and a
    // derived value to its base need no code; the rest is an error.
    const std::pair<Symbol, Symbol> casts[] = {{symInteger, symDouble}, {symDouble, symInteger},
                                               {symInteger, symInteger}, {symString, symInteger},
                                               {symDouble, symString},   {symInteger, handle}};
    for (const auto& [target, source] : casts) p.GenTypeCast(target, source);
    ASSERT_EQ(k.generator.cx, 2);
    EXPECT_EQ(k.interpreter.code[0].GetText(0) + k.interpreter.code[1].GetText(1),
              "0:\tOPR intCast\n1:\tOPR doubleCast\n");
    EXPECT_EQ(p.ok, 1);
    ASSERT_EQ(rec.ui.Messages().size(), 1u);
    EXPECT_NE(rec.ui.Messages()[0].Find("Zuweisung von DOUBLE an INTEGER, Wertverlust möglich."), -1);
    EXPECT_EQ(ThrownText([&] { p.GenTypeCast(handle, symInteger); }),
              "Fehler Parser : Typen sind nicht kompatibel.");
    EXPECT_EQ(p.ok, 0);

    // A cyclic chain cannot be built by the language, but must not hang.
    CPredefinedTyp* a = AddTypeRow(70, "a", nullptr);
    a->base = AddTypeRow(71, "b", a);
    EXPECT_FALSE(p.GleicherTyp(symInteger, static_cast<Symbol>(70)));
}
