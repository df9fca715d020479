// qel-edit's debugger driven through the real window: breakpoints in the
// gutter, each step command by its key, what the panes show at each pause,
// and stopping a paused run.
#include <QAction>
#include <QDir>
#include <QMessageBox>
#include <QPushButton>
#include <QPlainTextEdit>
#include <QStandardPaths>
#include <QTest>
#include <QTextBlock>
#include <QTreeWidget>
#include <functional>

#include "debug_panes.h"
#include "edit_window.h"
#include "gui_test_support.h"
#include "qel_environment.h"
#include "qelkern-qt/qtrichedit.h"

namespace {
// A recursive function with a nested procedure that changes a main-block
// variable through a VAR parameter.
const char recursion[] =
    "VAR r : INTEGER; t : STRING;\r"          // 1
    "FUNCTION fak(n : INTEGER) : INTEGER;\r"  // 2
    "  PROCEDURE merke(VAR x : STRING);\r"    // 3
    "  BEGIN\r"                               // 4
    "    x := x + \"*\"\r"                    // 5
    "  END;\r"                                // 6
    "BEGIN\r"                                 // 7
    "  merke(t);\r"                           // 8
    "  IF n <= 1 THEN fak := 1\r"             // 9
    "  ELSE fak := n * fak(n - 1) END\r"      // 10
    "END;\r"                                  // 11
    "BEGIN\r"                                 // 12
    "  r := fak(3);\r"                        // 13
    "  t := t + \"!\"\r"                      // 14
    "END.";                                   // 15

QString ItemText(const QTreeWidgetItem* item) {
    QString text = item->text(0) + u'=' + item->text(2);
    if (item->childCount() == 0) return text;
    QStringList elements;
    for (int i = 0; i < item->childCount(); ++i) elements << item->child(i)->text(2);
    return item->text(0) + u'[' + elements.join(u',') + u']';
}

// "5 merke@5 fak@8 main@13 | VAR x="*"": the current line, the call stack
// and the variables pane, as a person sees them at a pause.
QString PauseText(CQelEditWindow& window) {
    QString text;
    for (int line = 1; line <= window.Editor().GetLineCount(); ++line)
        if (window.Widget()->HasLineMark(line - 1, LineMarkCurrent)) text += QString::number(line);
    const QTreeWidget* stack = window.DebugPanes().Stack();
    for (int i = 0; i < stack->topLevelItemCount(); ++i)
        text += u' ' + stack->topLevelItem(i)->text(0) + u'@' + stack->topLevelItem(i)->text(1);
    const QTreeWidget* variables = window.DebugPanes().Variables();
    text += QStringLiteral(" |");
    for (int i = 0; i < variables->topLevelItemCount(); ++i) text += u' ' + ItemText(variables->topLevelItem(i));
    return text;
}

// At each pause: notes what it shows, then does the next step (a key, or
// any other action); once the steps run out the run continues.
class PauseDriver {
public:
    using Step = std::function<void()>;
    PauseDriver(CQelEditWindow& shown, std::vector<Step> given) : window(shown), steps(std::move(given)) {
        QObject::connect(&timer, &QTimer::timeout, &timer, [this] { Poll(); });
        timer.start(5);
    }
    QStringList stops;

private:
    void Poll() {
        if (!window.IsPaused() || busy) return;
        busy = true;
        stops << PauseText(window);
        // A script's message box may just have closed: shortcuts reach only
        // the active window.
        if (!window.isActiveWindow()) {
            window.activateWindow();
            QTest::qWaitForWindowActive(&window);
        }
        if (next < steps.size())
            steps[next++]();
        else
            window.Resume(DebugCommand::Continue);
        busy = false;
    }
    CQelEditWindow& window;
    std::vector<Step> steps;
    size_t next = 0;
    bool busy = false;
    QTimer timer;
};
}  // namespace

class QelEditDebugTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        QStandardPaths::setTestModeEnabled(true);
        services = std::make_unique<CQtEditorServices>();
        pBasisPredefinedUmgebung = &environment;
    }
    void cleanupTestCase() {
        pBasisPredefinedUmgebung = nullptr;
        services.reset();
    }

    // A breakpoint on a line without a statement moves to the next one; each
    // step key then stops where it should, with each activation's values.
    void stepsThroughRecursionAndANestedProcedure() {
        CQelEditWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        window.Editor().SetWindowText(recursion);
        QPlainTextEdit* view = window.Widget()->GetTextEdit();
        view->setFocus();
        window.GoToLine(4);
        QTest::keyClick(view, Qt::Key_F9);
        QCOMPARE(window.BreakpointLines(), std::vector<int>{4});

        const auto key = [view](Qt::Key pressed, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
            return [=] { QTest::keyClick(view, pressed, modifiers); };
        };
        int frameCaretLine = 0;
        QString outerFrame;
        bool compileRefused = false;
        PauseDriver driver(window, {
            [&] {
                compileRefused = window.CompileText() == 0 && window.IsPaused();
                QTest::keyClick(view, Qt::Key_F10);
            },
            key(Qt::Key_F10), key(Qt::Key_F11), key(Qt::Key_F11), key(Qt::Key_F11, Qt::ShiftModifier),
            [&] {
                QTreeWidget* stack = const_cast<QTreeWidget*>(window.DebugPanes().Stack());
                stack->setCurrentItem(stack->topLevelItem(1));
                long start = 0, end = 0;
                window.Editor().GetSel(start, end);
                frameCaretLine = static_cast<int>(window.Editor().LineFromChar(start)) + 1;
                outerFrame = PauseText(window);
                QTest::keyClick(view, Qt::Key_F5);
            },
            key(Qt::Key_F5),
        });
        QTest::keyClick(view, Qt::Key_F5);  // with a breakpoint: a debug run
        QCOMPARE(driver.stops, (QStringList{
                                   "5 merke@5 fak@8 main@13 | VAR x=\"\"",
                                   "9 fak@9 main@13 | n=3 fak=0",
                                   "10 fak@10 main@13 | n=3 fak=0",
                                   "8 fak@8 fak@10 main@13 | n=2 fak=0",
                                   "5 merke@5 fak@8 fak@10 main@13 | VAR x=\"*\"",
                                   "9 fak@9 fak@10 main@13 | n=2 fak=0",
                                   "5 merke@5 fak@8 fak@10 fak@10 main@13 | VAR x=\"**\"",
                               }));
        QCOMPARE(window.BreakpointLines(), std::vector<int>{5});
        QVERIFY(compileRefused);
        QCOMPARE(frameCaretLine, 10);
        QVERIFY2(outerFrame.endsWith(u"| n=3 fak=0"), qPrintable(outerFrame));
        QCOMPARE(window.LastRunText(), QStringLiteral("Debuggen: Ergebnis 1, Erfolgscode 0"));
        QVERIFY(!window.Widget()->HasLineMark(4, LineMarkCurrent));
        QVERIFY(!window.DebugPanes().Variables()->isVisible());
    }

    // A click into the gutter sets a breakpoint and clears it; the script's
    // message box comes up during a step; without breakpoints a debug run
    // stops at the first statement; Esc ends a paused run; closing the window
    // while paused asks, stops the run and closes.
    void dialogsAndClosingWhilePaused() {
        CQelEditWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QVERIFY(window.OpenFile(ExamplesDirectory() + QStringLiteral("/hello.qel")));
        QPlainTextEdit* view = window.Widget()->GetTextEdit();
        QWidget* gutter = window.Widget()->LineNumberGutter();
        const QRect line8 = view->cursorRect(QTextCursor(view->document()->findBlockByNumber(7)));
        const QPoint inView = view->viewport()->mapTo(&window, line8.center());
        const QPoint onLine8(gutter->width() / 2, gutter->mapFrom(&window, inView).y());
        const auto clickLine8 = [&] { QTest::mouseClick(gutter, Qt::LeftButton, {}, onLine8); };
        clickLine8();
        QCOMPARE(window.BreakpointLines(), std::vector<int>{8});

        QStringList captions;
        ModalHandler answers([&](QWidget* modal) {
            auto* box = qobject_cast<QMessageBox*>(modal);
            captions << box->windowTitle();
            if (box->text().contains(u"läuft"))
                box->button(QMessageBox::Yes)->click();
            else
                box->accept();
        });
        {
            PauseDriver driver(window, {[&] { QTest::keyClick(view, Qt::Key_F10); }});
            QCOMPARE(window.DebugText(), 1);
            QCOMPARE(driver.stops.size(), 1);
            QVERIFY(driver.stops[0].startsWith(u"8 main@8 | summe=55 i=11"));
        }
        QCOMPARE(captions, QStringList{QStringLiteral("Hallo, Welt")});
        clickLine8();
        QVERIFY(window.BreakpointLines().empty());
        {
            PauseDriver driver(window, {[&] { QTest::keyClick(view, Qt::Key_Escape); }});
            QCOMPARE(window.DebugText(), 0);
            QCOMPARE(driver.stops.size(), 1);
            QVERIFY(driver.stops[0].startsWith(u"4 main@4 | summe=0 i=0"));
            QCOMPARE(window.LastRunText(), QStringLiteral("Debuggen: abgebrochen"));
        }

        PauseDriver driver(window, {[&] { window.close(); }});
        QCOMPARE(window.DebugText(), 0);
        QTRY_VERIFY(!window.isVisible());
        QCOMPARE(captions, (QStringList{QStringLiteral("Hallo, Welt"), QStringLiteral("qel-edit")}));
        QCOMPARE(window.LastRunText(), QStringLiteral("Debuggen: abgebrochen"));
    }

private:
    std::unique_ptr<CQtEditorServices> services;
    CQelUmgebung environment;
};

QTEST_MAIN(QelEditDebugTest)
#include "qt_qel_edit_debug_test.moc"
