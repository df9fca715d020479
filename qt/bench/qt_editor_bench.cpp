// The colouring editor on the Qt widget, offscreen, as a user meets it:
// opening a 10,000-line script until its first screen is painted, one typed
// character with its colouring and repaint, and scrolling a page.
#include <benchmark/benchmark.h>

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <QPlainTextEdit>
#include <cstdio>
#include <string>

#include "edit_window.h"
#include "qelkern-qt/qtrichedit.h"
#include "qelkern-qt/qtuserinterface.h"
#include "qelkern/qelkern.h"
#include "bench/editor_script.h"

namespace {
using bench::EditorScript;
using bench::LanguageKeywords;

struct QtEditor {
    CTWScriptEdit edit;
    QPlainTextEdit* view = nullptr;

    QtEditor() {
        edit.Create();
        view = dynamic_cast<CQtRichEditWidget*>(edit.GetWidget())->GetTextEdit();
        edit.Initialize();
        edit.AddKeywords(LanguageKeywords());
        edit.AddConstants(" IntToStr  StrToInt  Sin  Cos  MessageBox ");
        edit.SetSLComment("(*", "*)");
        view->resize(900, 700);
        view->show();
        QApplication::processEvents();
    }
    void Paint() { view->viewport()->repaint(); }
    // Qt lays a long text out in steps while the event loop idles; a user
    // who types has it laid out already.
    void LayOutAll() {
        QTextDocument* document = view->document();
        document->documentLayout()->blockBoundingRect(document->lastBlock());
        QApplication::processEvents();
    }
    void Key(Qt::Key key, const QString& text) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
        QApplication::sendEvent(view, &press);
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
        QApplication::sendEvent(view, &release);
    }
};

void BM_QtOpenAndColour(benchmark::State& state) {
    const std::string script = EditorScript(static_cast<int>(state.range(0)));
    QtEditor editor;
    for (auto _ : state) {
        editor.edit.SetWindowText(script.c_str());  // colours the whole text
        editor.Paint();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));  // lines
}
BENCHMARK(BM_QtOpenAndColour)->Arg(2000)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

// The same, and the layout of the whole text that Qt otherwise finishes in
// the background.
void BM_QtOpenColourAndLayOutAll(benchmark::State& state) {
    const std::string script = EditorScript(static_cast<int>(state.range(0)));
    QtEditor editor;
    for (auto _ : state) {
        editor.edit.SetWindowText(script.c_str());
        editor.Paint();
        editor.LayOutAll();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));  // lines
}
BENCHMARK(BM_QtOpenColourAndLayOutAll)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

// One character typed in the middle of the script, coloured and painted; then
// taken back the same way. Each iteration is two keystrokes.
void BM_QtTypeOneCharacter(benchmark::State& state) {
    QtEditor editor;
    editor.edit.SetWindowText(EditorScript(static_cast<int>(state.range(0))).c_str());
    const long middle = editor.edit.LineIndex(static_cast<int>(state.range(0) / 2) + 5) + 10;
    editor.LayOutAll();
    editor.edit.SetSel(middle, middle);
    editor.view->ensureCursorVisible();
    editor.Paint();
    for (auto _ : state) {
        editor.Key(Qt::Key_X, QStringLiteral("x"));
        editor.Paint();
        editor.Key(Qt::Key_Backspace, QString());
        editor.Paint();
    }
    state.SetItemsProcessed(state.iterations() * 2);  // keystrokes
}
BENCHMARK(BM_QtTypeOneCharacter)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

// One page down and its repaint, through the whole script and back to the top.
void BM_QtScrollOnePage(benchmark::State& state) {
    QtEditor editor;
    editor.edit.SetWindowText(EditorScript(static_cast<int>(state.range(0))).c_str());
    editor.LayOutAll();
    QScrollBar* bar = editor.view->verticalScrollBar();
    for (auto _ : state) {
        const int next = bar->value() + bar->pageStep();
        bar->setValue(next > bar->maximum() ? 0 : next);
        editor.Paint();
    }
    state.SetItemsProcessed(state.iterations());  // pages
}
BENCHMARK(BM_QtScrollOnePage)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();
// The same keystrokes in qel-edit's window: with the gutter, the check of
// the text against the saved one and the window's own repaint.
void BM_QelEditTypeOneCharacter(benchmark::State& state) {
    CQelEditWindow window;
    window.resize(900, 700);
    window.show();
    window.Editor().SetWindowText(EditorScript(static_cast<int>(state.range(0))).c_str());
    QPlainTextEdit* view = window.Widget()->GetTextEdit();
    QApplication::processEvents();
    const long middle = window.Editor().LineIndex(static_cast<int>(state.range(0) / 2) + 5) + 10;
    window.Editor().SetSel(middle, middle);
    const auto key = [&](Qt::Key code, const QString& text) {
        QKeyEvent press(QEvent::KeyPress, code, Qt::NoModifier, text);
        QApplication::sendEvent(view, &press);
        QKeyEvent release(QEvent::KeyRelease, code, Qt::NoModifier, text);
        QApplication::sendEvent(view, &release);
        QApplication::processEvents();
        window.repaint();
    };
    for (auto _ : state) {
        key(Qt::Key_X, QStringLiteral("x"));
        key(Qt::Key_Backspace, QString());
    }
    state.SetItemsProcessed(state.iterations() * 2);  // keystrokes
}
BENCHMARK(BM_QelEditTypeOneCharacter)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();
}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    CQtEditorServices services;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
