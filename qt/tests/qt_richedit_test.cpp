// The script editor on the real Qt widget: what typing does to colours, case
// and undo; the tab key and the bracket jumps; text, lines, selection and
// formats across the boundary; protected text; the clipboard; the update lock.
#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include "gui_test_support.h"
#include "qelkern-qt/qtrichedit.h"

namespace {
constexpr COLORREF keywordBlue = 0xFF0000;
constexpr COLORREF commentGreen = 0x008000;
constexpr COLORREF numberMagenta = 0xFF00FF;
constexpr COLORREF stringBlue = 0x800000;
constexpr COLORREF black = 0x000000;

// A script editor in a window with one more focusable widget.
struct ScriptEditor {
    QWidget window;
    QLineEdit other;
    CTWScriptEdit edit;
    CQtRichEditWidget* widget = nullptr;
    QPlainTextEdit* view = nullptr;

    ScriptEditor() {
        edit.Create();
        widget = dynamic_cast<CQtRichEditWidget*>(edit.GetWidget());
        view = widget->GetTextEdit();
        InitTWScriptEdit(&edit, nullptr, 0, ExamplesPrelude());
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(view);
        layout->addWidget(&other);
        window.resize(640, 480);
        window.show();
        view->setFocus();
    }
    CString Text() const { return edit.GetTextRange(0, static_cast<int>(edit.GetTextLength())); }
    int Find(const char* word) const { return Text().Find(word); }
};

// Refuses every change of protected text, and remembers the notices.
class GuardedEdit : public CRichEditCtrl {
public:
    std::vector<ENPROTECTED> notices;
    QStringList log;  // the change and selection notices, in order

protected:
    void OnProtected(NMHDR* header, LRESULT* result) override {
        notices.push_back(*reinterpret_cast<ENPROTECTED*>(header));
        *result = 1;
    }
    void OnChange() override { log << QStringLiteral("change"); }
    void OnSelChange(NMHDR* header, LRESULT* result) override {
        const auto* info = reinterpret_cast<SELCHANGE*>(header);
        log << QStringLiteral("sel %1-%2").arg(info->chrg.cpMin).arg(info->chrg.cpMax);
        *result = 0;
    }
};

// The text that the editor hands to the printer, and the margins.
class PrintRecorder : public CQtUserInterface {
public:
    bool PrintText(const CString& title, const CString& text, int left, int top, int right,
                   int bottom) override {
        printed = text;
        margins = {left, top, right, bottom};
        return true;
    }
    CString printed;
    std::vector<int> margins;
};

// Answers the file dialogs with one path.
class FileChooser : public CQtUserInterface {
public:
    explicit FileChooser(const QString& file) : path(file.toLocal8Bit().toStdString()) {}
    bool FileDialog(bool, const CString&, const CString&, unsigned, CString& chosen) override {
        chosen = path;
        return true;
    }
    CString path;
};
}  // namespace

class RichEditTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        UseBaseEnvironment();
        services = std::make_unique<CQtEditorServices>();
        pUserInterface = &ui;
    }
    void cleanupTestCase() { services.reset(); }

    void typingColoursAndRewritesTheWords() {
        ScriptEditor e;
        TypeText(e.view, QStringLiteral("(* Zähler *)\nvar n : integer;\nbegin\n"
                                        "  n := 42; meldungint(\"Titel\", \"Text\", n)\nend."));
        QCOMPARE(e.Text(), CString("(* Z\xE4hler *)\rVAR n : INTEGER;\rBEGIN\r"
                                   "  n := 42; MeldungInt(\"Titel\", \"Text\", n)\rEND."));
        QCOMPARE(e.view->toPlainText().left(12), QStringLiteral("(* Zähler *)"));
        // The caret is where the typing ended, whatever the colouring did.
        long start = 0, end = 0;
        e.edit.GetSel(start, end);
        QCOMPARE(start, e.edit.GetTextLength());
        QCOMPARE(e.view->textCursor().position(), static_cast<int>(start));

        const CharStyle comment = StyleAt(e.edit, 5);
        QCOMPARE(comment.colour, commentGreen);
        QVERIFY(!comment.bold);
        QCOMPARE(StyleAt(e.edit, e.Find("VAR")).colour, keywordBlue);
        QCOMPARE(StyleAt(e.edit, e.Find("INTEGER") + 6).colour, keywordBlue);
        QCOMPARE(StyleAt(e.edit, e.Find("42") + 1).colour, numberMagenta);
        QCOMPARE(StyleAt(e.edit, e.Find("\"Text\"") + 5).colour, stringBlue);
        const CharStyle constant = StyleAt(e.edit, e.Find("MeldungInt") + 3);
        QCOMPARE(constant.colour, black);
        QVERIFY(constant.bold);
        const CharStyle plain = StyleAt(e.edit, e.Find(" n :") + 1);
        QCOMPARE(plain.colour, black);
        QVERIFY(!plain.bold);

        // Qt paints the formats that the control reports.
        const QTextCharFormat painted = PaintedFormat(e.view, e.Find("VAR") + 1);
        QCOMPARE(painted.foreground().color(), QColor(0, 0, 255));
        QCOMPARE(painted.property(QTextFormat::FontFamilies).toStringList(), QStringList{QStringLiteral("Courier New")});
        QCOMPARE(painted.fontPointSize(), 10.0);
        QCOMPARE(PaintedFormat(e.view, e.Find("MeldungInt") + 2).fontWeight(), static_cast<int>(QFont::Bold));
    }

    void caseRewriteAndTabLeaveNoUndoStep() {
        ScriptEditor e;
        TypeText(e.view, QStringLiteral("begin"));
        QCOMPARE(e.Text(), CString("BEGIN"));
        QCOMPARE(e.widget->UndoStepCount(), 1);
        QTest::keyClick(e.view, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(e.Text(), CString(""));
        QVERIFY(!e.edit.CanUndo());

        // A new line ends a typing step: undo goes line by line.
        TypeText(e.view, QStringLiteral("x := 1\ny := 2"));
        QCOMPARE(e.widget->UndoStepCount(), 2);
        QTest::keyClick(e.view, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(e.Text(), CString("x := 1\r"));
        QTest::keyClick(e.view, Qt::Key_Backspace);
        QCOMPARE(e.Text(), CString("x := 1"));
        QTest::keyClick(e.view, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(e.Text(), CString("x := 1\r"));
        long start = 0, end = 0;
        e.edit.GetSel(start, end);
        QCOMPARE(start, 6L);  // the restored text is selected
        QCOMPARE(end, 7L);

        // The tab goes in without undo, and the older steps no longer fit.
        QTest::keyClick(e.view, Qt::Key_End);
        QTest::keyClick(e.view, Qt::Key_Tab);
        QCOMPARE(e.Text(), CString("x := 1\r\t"));
        QVERIFY(!e.edit.CanUndo());
        QCOMPARE(e.window.focusWidget(), e.view);
    }

    void readOnlyTakesNoTypingAndPassesTheTab() {
        ScriptEditor e;
        e.edit.SetWindowText("BEGIN END.");
        e.edit.SetReadOnly(TRUE);
        e.edit.SetSel(5, 5);
        TypeText(e.view, QStringLiteral("x"));
        QTest::keyClick(e.view, Qt::Key_Delete);
        QTest::keyClick(e.view, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(e.Text(), CString("BEGIN END."));
        QTest::keyClick(e.view, Qt::Key_Right);
        long start = 0, end = 0;
        e.edit.GetSel(start, end);
        QCOMPARE(start, 6L);
        QTest::keyClick(e.view, Qt::Key_Tab);
        QCOMPARE(e.Text(), CString("BEGIN END."));
        QCOMPARE(e.window.focusWidget(), &e.other);
    }

    void controlEightAndNineJumpBetweenBrackets() {
        ScriptEditor e;
        e.edit.SetWindowText("a(b(c)d");
        e.edit.SetSel(7, 7);
        QTest::keyClick(e.view, Qt::Key_8, Qt::ControlModifier);
        long start = 0, end = 0;
        e.edit.GetSel(start, end);
        QCOMPARE(start, 1L);
        QCOMPARE(end, 1L);
        QCOMPARE(e.Text(), CString("a(b(c)d"));  // no character typed

        const int beeps = ui.beeps;
        QTest::keyClick(e.view, Qt::Key_9, Qt::ControlModifier);
        e.edit.GetSel(start, end);
        QCOMPARE(start, 1L);
        QCOMPARE(ui.beeps, beeps + 1);

        e.edit.SetSel(3, 3);
        QTest::keyClick(e.view, Qt::Key_9, Qt::ControlModifier);
        e.edit.GetSel(start, end);
        QCOMPARE(start, 5L);
        // Without Control the keys type digits.
        QTest::keyClick(e.view, Qt::Key_8);
        QCOMPARE(e.Text(), CString("a(b(c8)d"));
    }

    void textLinesAndSelectionCrossTheBoundary() {
        CRichEditCtrl control;
        QVERIFY(control.Create());
        control.SetWindowText("eins\r\nzwei\nd\xE4rei");
        QCOMPARE(control.GetTextLength(), 15L);
        QCOMPARE(control.GetLineCount(), 3);
        QCOMPARE(control.LineIndex(2), 10);
        QCOMPARE(control.LineIndex(3), -1);
        QCOMPARE(control.LineFromChar(99), 2L);
        QCOMPARE(control.LineLength(11), 5);
        QCOMPARE(control.GetTextRange(3, 6), CString("s\rz"));
        QCOMPARE(control.GetWindowText(), CString("eins\r\nzwei\r\nd\xE4rei"));

        control.SetSel(6, 2);
        long start = 0, end = 0;
        control.GetSel(start, end);
        QCOMPARE(start, 2L);
        QCOMPARE(end, 6L);
        QCOMPARE(control.GetSelText(), CString("ns\rz"));
        control.ReplaceSel("X\r\nY", TRUE);
        QCOMPARE(control.GetTextRange(0, 9), CString("eiX\rYwei\r"));
        QCOMPARE(control.GetLineCount(), 3);
        QVERIFY(control.Undo());
        QCOMPARE(control.GetTextRange(0, 10), CString("eins\rzwei\r"));

        // Characters that Latin-1 lacks are not typed.
        auto* widget = dynamic_cast<CQtRichEditWidget*>(control.GetWidget());
        control.SetSel(0, 0);
        QKeyEvent euro(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QStringLiteral("\u20AC"));
        QApplication::sendEvent(widget->GetTextEdit(), &euro);
        QCOMPARE(control.GetTextLength(), 15L);
    }

    void formatsKeepTheirItemsAndTellWhatDiffers() {
        CRichEditCtrl control;
        QVERIFY(control.Create());
        control.SetWindowText("abcdef");
        CHARFORMAT standard;
        control.GetDefaultCharFormat(standard);
        QCOMPARE(CString(standard.szFaceName), CString("Courier New"));
        QCOMPARE(standard.yHeight, 200);

        CHARFORMAT redBold;
        redBold.dwMask = CFM_BOLD | CFM_COLOR | CFM_SIZE;
        redBold.dwEffects = CFE_BOLD;
        redBold.crTextColor = RGB(255, 0, 0);
        redBold.yHeight = 240;
        control.SetSel(0, 3);
        QVERIFY(control.SetSelectionCharFormat(redBold));

        CHARFORMAT cf;
        control.SetSel(1, 2);
        QCOMPARE(control.GetSelectionCharFormat(cf), static_cast<DWORD>(CFM_ALL));
        QVERIFY(cf.dwEffects & CFE_BOLD);
        QCOMPARE(cf.crTextColor, RGB(255, 0, 0));
        QCOMPARE(cf.yHeight, 240);
        QCOMPARE(CString(cf.szFaceName), CString("Courier New"));

        control.SetSel(0, 6);
        const DWORD same = control.GetSelectionCharFormat(cf);
        QVERIFY(!(same & CFM_BOLD));
        QVERIFY(!(same & CFM_COLOR));
        QVERIFY(!(same & CFM_SIZE));
        QVERIFY(same & CFM_FACE);
        QVERIFY(same & CFM_ITALIC);

        // Back to the colour of the system, the other items unchanged.
        CHARFORMAT automatic;
        automatic.dwMask = CFM_COLOR;
        automatic.dwEffects = CFE_AUTOCOLOR;
        control.SetSel(0, 3);
        control.SetSelectionCharFormat(automatic);
        control.GetSelectionCharFormat(cf);
        QVERIFY(cf.dwEffects & CFE_AUTOCOLOR);
        QVERIFY(cf.dwEffects & CFE_BOLD);

        // A format set at the caret is the one of the next typed character.
        auto* widget = dynamic_cast<CQtRichEditWidget*>(control.GetWidget());
        CHARFORMAT italic;
        italic.dwMask = CFM_ITALIC;
        italic.dwEffects = CFE_ITALIC;
        control.SetSel(6, 6);
        control.SetSelectionCharFormat(italic);
        QTest::keyClicks(widget->GetTextEdit(), QStringLiteral("g"));
        control.SetSel(6, 7);
        control.GetSelectionCharFormat(cf);
        QVERIFY(cf.dwEffects & CFE_ITALIC);
        control.SetSel(5, 6);
        control.GetSelectionCharFormat(cf);
        QVERIFY(!(cf.dwEffects & CFE_ITALIC));
    }

    void protectedTextAsksBeforeEachChange() {
        GuardedEdit control;
        QVERIFY(control.Create());
        control.SetEventMask(ENM_PROTECTED | ENM_CHANGE);
        control.SetWindowText("abcdef");
        CHARFORMAT guard;
        guard.dwMask = CFM_PROTECTED;
        guard.dwEffects = CFE_PROTECTED;
        control.SetSel(0, 3);
        control.SetSelectionCharFormat(guard);
        QVERIFY(control.notices.empty());

        QPlainTextEdit* view = dynamic_cast<CQtRichEditWidget*>(control.GetWidget())->GetTextEdit();
        control.SetSel(2, 2);
        QTest::keyClicks(view, QStringLiteral("x"));
        QTest::keyClick(view, Qt::Key_Backspace);
        control.SetSel(5, 5);
        QTest::keyClicks(view, QStringLiteral("y"));
        QCOMPARE(control.GetWindowText(), CString("abcdeyf"));
        QCOMPARE(control.notices.size(), size_t(2));
        QCOMPARE(control.notices[0].msg, static_cast<UINT>(WM_CHAR));
        QCOMPARE(control.notices[0].wParam, static_cast<WPARAM>('x'));
        QCOMPARE(control.notices[1].msg, static_cast<UINT>(WM_KEYDOWN));
        QCOMPARE(control.notices[1].wParam, static_cast<WPARAM>(VK_BACK));
        QCOMPARE(control.notices[1].chrg.cpMin, 1);
        QCOMPARE(control.notices[1].chrg.cpMax, 2);

        control.SetSel(1, 4);
        QVERIFY(!control.SetSelectionCharFormat(guard));
        QCOMPARE(control.notices.back().msg, static_cast<UINT>(EM_SETCHARFORMAT));
    }

    void changeAndSelectionNoticesComeInOrder() {
        GuardedEdit control;
        QVERIFY(control.Create());
        control.SetEventMask(ENM_CHANGE | ENM_SELCHANGE);
        control.SetWindowText("abc");
        QCOMPARE(control.log, (QStringList{QStringLiteral("change"), QStringLiteral("sel 0-0")}));
        QPlainTextEdit* view = dynamic_cast<CQtRichEditWidget*>(control.GetWidget())->GetTextEdit();
        control.log.clear();
        QTest::keyClicks(view, QStringLiteral("x"));
        QTest::keyClick(view, Qt::Key_Right, Qt::ShiftModifier);
        control.SetSel(1, 2);  // the same selection: no notice
        control.SetSel(3, 3);
        QCOMPARE(control.log, (QStringList{QStringLiteral("change"), QStringLiteral("sel 1-1"),
                                           QStringLiteral("sel 1-2"), QStringLiteral("sel 3-3")}));
        // Formats change no text.
        control.log.clear();
        CHARFORMAT bold;
        bold.dwMask = CFM_BOLD;
        bold.dwEffects = CFE_BOLD;
        control.SetSel(0, 4);
        control.SetSelectionCharFormat(bold);
        QCOMPARE(control.log, QStringList{QStringLiteral("sel 0-4")});
    }

    void printingGoesThroughTheHiddenView() {
        PrintRecorder printer;
        pUserInterface = &printer;
        ScriptEditor e;
        e.edit.SetWindowText("BEGIN\r  x := 1\rEND.");
        e.edit.SetSel(2, 3);
        e.edit.Drucken();
        pUserInterface = &ui;
        QCOMPARE(printer.printed, CString("BEGIN\r\n  x := 1\r\nEND."));
        QCOMPARE(printer.margins, (std::vector<int>{1000, 1000, 1000, 1000}));
        long start = 0, end = 0;
        e.edit.GetSel(start, end);
        QCOMPARE(start, 2L);
        QCOMPARE(end, 3L);
        // The hidden view never shows a window of its own.
        for (QWidget* window : QApplication::topLevelWidgets())
            QVERIFY(!window->isVisible() || window == &e.window);
    }

    void editCommandsUseTheSystemClipboard() {
        CQtClipboard clipboard;
        SetClipboard(&clipboard);
        ScriptEditor e;
        e.edit.SetWindowText("a\rb");
        e.edit.SetSel(0, -1);
        QTest::keyClick(e.view, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("a\nb"));

        QGuiApplication::clipboard()->setText(QStringLiteral("x\ny \u20AC"));
        QCOMPARE(GetClipboard().GetText(), CString("x\r\ny ?"));
        e.edit.SetSel(3, 3);
        QTest::keyClick(e.view, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(e.Text(), CString("a\rbx\ry ?"));
        QTest::keyClick(e.view, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(e.Text(), CString("a\rb"));
        e.edit.SetSel(0, 2);
        QTest::keyClick(e.view, Qt::Key_X, Qt::ControlModifier);
        QCOMPARE(e.Text(), CString("b"));
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("a\n"));
        SetClipboard(nullptr);
    }

    void colouringNeitherMovesTheSelectionNorScrolls() {
        ScriptEditor e;
        e.window.resize(400, 200);
        const CString line = "VAR x : INTEGER; (* Zeile *) x := 42;\r";
        const int length = line.GetLength();
        CString script;
        for (int i = 0; i < 200; ++i) script += line;
        e.edit.SetWindowText(script);
        e.edit.SetSel(150 * length + 4, 150 * length + 7);
        QCoreApplication::processEvents();
        const int scrolled = e.view->verticalScrollBar()->value();
        QVERIFY(scrolled > 0);
        e.edit.FormatAll();
        QCOMPARE(e.view->verticalScrollBar()->value(), scrolled);
        long start = 0, end = 0;
        e.edit.GetSel(start, end);
        QCOMPARE(start, 150L * length + 4);
        QCOMPARE(end, 150L * length + 7);
        QCOMPARE(e.view->textCursor().selectionStart(), 150 * length + 4);
        QVERIFY(!e.widget->IsUpdateLocked());
        QVERIFY(!e.widget->IsSelectionHidden());
        QVERIFY(e.view->updatesEnabled());
        QCOMPARE(StyleAt(e.edit, 199 * length + line.Find("42") + 1).colour, numberMagenta);
    }

    // Laid out once per colouring, not once per token: a thousand lines take
    // well under a second, where a layout per token took half a minute.
    void colouringALongScriptLaysItOutOnce() {
        ScriptEditor e;
        CString script;
        for (int i = 0; i < 1000; ++i) script += "  IF (i BITAND 1) = 0 THEN MeldungInt(\"a\", \"b\", i) END; (* x *)\r";
        QElapsedTimer timer;
        timer.start();
        e.edit.SetWindowText(script);
        QVERIFY2(timer.elapsed() < 8000, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(StyleAt(e.edit, script.GetLength() - 5).colour, commentGreen);
    }

    void saveAndLoadGoThroughTheHiddenView() {
        QTemporaryDir temporary;
        FileChooser chooser(temporary.filePath(QStringLiteral("datei.qel")));
        pUserInterface = &chooser;
        CQtClipboard clipboard;
        SetClipboard(&clipboard);
        ScriptEditor e;
        e.edit.SetWindowText("(* Gr\xFC\xDF" "e *)\rbegin\rEND.");
        e.edit.Speichern();
        QFile file(temporary.filePath(QStringLiteral("datei.qel")));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("(* Gr\xC3\xBC\xC3\x9F" "e *)\nBEGIN\nEND."));

        e.edit.SetWindowText("x := ");
        e.edit.SetSel(5, 5);
        e.edit.Laden();
        pUserInterface = &ui;
        SetClipboard(nullptr);
        QCOMPARE(e.Text(), CString("x := (* Gr\xFC\xDF" "e *)\rBEGIN\rEND."));
        QCOMPARE(StyleAt(e.edit, e.Find("BEGIN")).colour, keywordBlue);
    }

    void aQtWidgetDeletedByItsWindowLeavesTheControlHarmless() {
        CTWScriptEdit edit;
        QVERIFY(edit.Create());
        InitTWScriptEdit(&edit, nullptr, 0, ExamplesPrelude());
        edit.SetWindowText("BEGIN END.");
        delete dynamic_cast<CQtRichEditWidget*>(edit.GetWidget())->GetTextEdit();
        edit.SetWindowText("x");
        edit.SetSel(0, -1);
        edit.ReplaceSel("y");
        edit.FormatAll();
        QCOMPARE(edit.GetTextLength(), 0L);
        QVERIFY(!edit.Undo());
    }

private:
    std::unique_ptr<CQtEditorServices> services;
    CountingUserInterface ui;
};

QTEST_MAIN(RichEditTest)
#include "qt_richedit_test.moc"
