// The colouring editor on the in-memory widget: colouring a whole script of
// 10,000 lines, and the colouring that follows one typed character in it.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "qelkern/qelkern.h"
#include "bench/editor_script.h"

namespace {
using bench::EditorScript;
using bench::LanguageKeywords;

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
        edit.SetWindowText(EditorScript(lines).c_str());
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
