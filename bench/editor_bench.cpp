// The colouring editor on the in-memory widget: colouring a whole script of
// 10,000 lines, and the colouring that follows one typed character in it.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "qelkern/qelkern.h"

namespace {
const char* const scriptLines[] = {
    "PROCEDURE Schritt%d(VAR wert : INTEGER; faktor : DOUBLE);",
    "VAR i : INTEGER; text : STRING;",
    "BEGIN",
    "  (* Zähler und Text (* verschachtelt *) *)",
    "  FOR i := 1 TO 10 DO",
    "    wert := wert + i * 3,14 - 2.5e3;",
    "    text := \"Zeile \" + IntToStr(i);",
    "    IF wert > 100 THEN BREAK ELSIF wert < 0 THEN wert := 0 END",
    "  END;",
    "END;",
};

std::string Script(int lines) {
    std::string text;
    char line[128];
    for (int i = 0; i < lines; ++i) {
        std::snprintf(line, sizeof line, scriptLines[i % 10], i);
        text += line;
        text += '\r';
    }
    return text;
}

// The language's keywords, as InitTWScriptEdit gives them to an editor.
CString LanguageKeywords() {
    std::string dot = ".";
    CScanner table(dot.data(), 1);
    CString words;
    for (int i = 0; i < table.keywordCount; ++i) words += " " + table.keywords[i].name + " ";
    return words;
}

struct BenchEditor {
    CTWScriptEdit edit;
    CMemoryRichEdit* widget = nullptr;

    explicit BenchEditor(int lines) {
        edit.Create();
        widget = dynamic_cast<CMemoryRichEdit*>(edit.GetWidget());
        edit.Initialize();
        edit.SetStringQuotes("\"");
        edit.AddKeywords(LanguageKeywords());
        edit.AddConstants(" IntToStr  StrToInt  Sin  Cos  MessageBox ");
        edit.SetSLComment("(*", "*)");
        edit.SetWindowText(Script(lines).c_str());
    }
};

void BM_EditorFormatAll(benchmark::State& state) {
    BenchEditor editor(static_cast<int>(state.range(0)));
    for (auto _ : state) editor.edit.FormatAll();
    state.SetItemsProcessed(state.iterations() * state.range(0));  // lines
}
BENCHMARK(BM_EditorFormatAll)->Arg(10000)->Unit(benchmark::kMillisecond);

// One character typed in the middle of the script and taken back again: each
// is one change with its colouring of 21 lines.
void BM_EditorTypeOneCharacter(benchmark::State& state) {
    BenchEditor editor(static_cast<int>(state.range(0)));
    const long middle = editor.edit.LineIndex(static_cast<int>(state.range(0) / 2) + 5) + 10;
    editor.edit.SetSel(middle, middle);
    for (auto _ : state) {
        editor.widget->UserTypes("x");
        editor.widget->UserPressesKey(VK_BACK);
    }
    state.SetItemsProcessed(state.iterations() * 2);  // characters
}
BENCHMARK(BM_EditorTypeOneCharacter)->Arg(10000)->Unit(benchmark::kMicrosecond);
}  // namespace
