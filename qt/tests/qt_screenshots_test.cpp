// Screenshots for a person to look at, written to the build directory:
// qel-edit with a coloured script, and the error dialog of a compile error.
// Each is checked for the colours that the editor promises.
#include <QDialog>
#include <QDir>
#include <QImage>
#include <QTest>
#include <QPlainTextEdit>
#include <QTreeWidget>

#include "debug_panes.h"
#include "edit_window.h"
#include "gui_test_support.h"
#include "qel_environment.h"
#include "qelkern-qt/qtdialogs.h"
#include "qelkern-qt/qtrichedit.h"

namespace {
// Pixels close to a colour; glyph edges are blended, stems are not.
int PixelsNear(const QImage& image, const QColor& colour) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (qAbs(pixel.red() - colour.red()) < 40 && qAbs(pixel.green() - colour.green()) < 40 &&
                qAbs(pixel.blue() - colour.blue()) < 40)
                ++count;
        }
    return count;
}

QString SaveShot(const QImage& image, const QString& name) {
    QDir().mkpath(QStringLiteral(QEL_SCREENSHOT_DIR));
    const QString path = QStringLiteral(QEL_SCREENSHOT_DIR "/") + name;
    return image.save(path) ? path : QString();
}
}  // namespace

class ScreenshotsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        services = std::make_unique<CQtEditorServices>();
        pBasisPredefinedUmgebung = &environment;
    }
    void cleanupTestCase() {
        pBasisPredefinedUmgebung = nullptr;
        services.reset();
    }

    void editorWithAColouredScript() {
        CQelEditWindow window;
        QVERIFY(window.OpenFile(ExamplesDirectory() + QStringLiteral("/loops.qel")));
        window.resize(900, 640);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        {
            ModalHandler boxes([](QWidget* modal) { qobject_cast<QDialog*>(modal)->accept(); });
            QCOMPARE(window.RunText(), 1);  // the status bar shows the run
        }
        window.Editor().SetSel(0, 0);
        QCoreApplication::processEvents();
        const QImage shot = window.grab().toImage();
        QVERIFY(!SaveShot(shot, QStringLiteral("editor.png")).isEmpty());
        QVERIFY(PixelsNear(shot, QColor(0, 0, 255)) > 100);   // keywords
        QVERIFY(PixelsNear(shot, QColor(0, 128, 0)) > 100);   // comments
        QVERIFY(PixelsNear(shot, QColor(0, 0, 128)) > 50);    // strings
        QVERIFY(PixelsNear(shot, QColor(255, 0, 255)) > 20);  // numbers
    }

    void errorDialogOfACompileError() {
        CQelEditWindow window;
        QVERIFY(window.OpenFile(ExamplesDirectory() + QStringLiteral("/hello.qel")));
        CString text = window.Editor().GetTextRange(0, static_cast<int>(window.Editor().GetTextLength()));
        text.Replace("summe := summe + i", "summe := summe + j");
        window.Editor().SetWindowText(text);
        QImage shot;
        ModalHandler handler([&](QWidget* modal) {
            auto* dialog = qobject_cast<CQtResourceDialog*>(modal);
            if (!dialog) {
                qobject_cast<QDialog*>(modal)->accept();
                return;
            }
            dialog->setWindowState(Qt::WindowNoState);
            dialog->resize(860, 520);
            QTest::qWait(50);
            qobject_cast<QPlainTextEdit*>(dialog->Item(IDC_TEXTDIALOG_EDIT))->ensureCursorVisible();
            shot = dialog->grab().toImage();
            dialog->accept();
        });
        QCOMPARE(window.CompileText(), 0);
        QVERIFY(!shot.isNull());
        QVERIFY(!SaveShot(shot, QStringLiteral("error-dialog.png")).isEmpty());
        QVERIFY(PixelsNear(shot, QColor(255, 0, 0)) > 50);  // the marker line
        QVERIFY(PixelsNear(shot, QColor(0, 0, 255)) > 50);
    }

    // The second colour set on a dark palette.
    void editorOnADarkPalette() {
        QPalette dark(QColor(0x35, 0x35, 0x35));
        dark.setColor(QPalette::Base, QColor(0x1E, 0x1E, 0x1E));
        dark.setColor(QPalette::Text, QColor(0xD4, 0xD4, 0xD4));
        dark.setColor(QPalette::AlternateBase, QColor(0x2A, 0x2A, 0x2A));
        CQelEditWindow window;
        window.setPalette(dark);
        QVERIFY(window.OpenFile(ExamplesDirectory() + QStringLiteral("/loops.qel")));
        window.resize(900, 420);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const QImage shot = window.grab().toImage();
        QVERIFY(!SaveShot(shot, QStringLiteral("editor-dark.png")).isEmpty());
        QVERIFY(PixelsNear(shot, QColor(0x6C, 0xB4, 0xFF)) > 50);  // keywords
        QVERIFY(PixelsNear(shot, QColor(0, 0, 255)) < 5);          // not the light set's blue
    }

    // Line numbers and the marked line of a compile error.
    void editorWithAMarkedErrorLine() {
        CQelEditWindow window;
        QVERIFY(window.OpenFile(ExamplesDirectory() + QStringLiteral("/hello.qel")));
        CString text = window.Editor().GetTextRange(0, static_cast<int>(window.Editor().GetTextLength()));
        text.Replace("summe := summe + i", "summe := summe + j");
        window.Editor().SetWindowText(text);
        window.resize(900, 420);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        {
            ModalHandler boxes([](QWidget* modal) { qobject_cast<QDialog*>(modal)->accept(); });
            QCOMPARE(window.CompileText(), 0);
        }
        QCoreApplication::processEvents();
        const QImage shot = window.grab().toImage();
        QVERIFY(!SaveShot(shot, QStringLiteral("editor-error.png")).isEmpty());
        const QImage gutter = window.Widget()->LineNumberGutter()->grab().toImage();
        QVERIFY(PixelsNear(gutter, QColor(200, 0, 0)) > 10);  // the cross of the error mark
    }

    // A script that runs on: the window still paints, Stoppen is there.
    void editorDuringARun() {
        CQelEditWindow window;
        QVERIFY(window.OpenFile(ExamplesDirectory() + QStringLiteral("/loops.qel")));
        window.Editor().SetWindowText("VAR i : INTEGER;\r(* Läuft, bis jemand Stoppen drückt. *)\rBEGIN\r"
                                      "  LOOP\r    i := i + 1\r  END\rEND.");
        window.resize(900, 360);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QImage shot;
        QTimer::singleShot(300, &window, [&] {
            shot = window.grab().toImage();
            window.StopRun();
        });
        QCOMPARE(window.RunText(), 0);
        QVERIFY(!shot.isNull());
        QVERIFY(!SaveShot(shot, QStringLiteral("editor-running.png")).isEmpty());
        QVERIFY(PixelsNear(shot, QColor(0, 0, 255)) > 20);  // painted while running
    }

    // A paused debug run: the breakpoint's dot, the current line, the call
    // stack, and the main block's variables with an array opened.
    void editorPausedInADebugRun() {
        CQelEditWindow window;
        window.Editor().SetWindowText("(* Fakultät, rekursiv *)\rVAR r : INTEGER; spur : ARRAY [4] OF INTEGER;\r"
                                      "FUNCTION fak(n : INTEGER) : INTEGER;\r  PROCEDURE merke(k : INTEGER);\r"
                                      "  BEGIN\r    spur[k] := k\r  END;\rBEGIN\r  merke(n);\r"
                                      "  IF n <= 1 THEN fak := 1\r  ELSE fak := n * fak(n - 1) END\rEND;\r"
                                      "BEGIN\r  r := fak(3)\rEND.");
        window.ToggleBreakpoint(10);
        window.resize(900, 620);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QImage shot;
        QStringList spur;  // the array's type and its elements in the pane
        int pauses = 0;
        QTimer poll;
        connect(&poll, &QTimer::timeout, &window, [&] {
            if (!window.IsPaused() || ++pauses < 2) {
                if (window.IsPaused()) window.Resume(DebugCommand::Continue);
                return;
            }
            auto* stack = const_cast<QTreeWidget*>(window.DebugPanes().Stack());
            stack->setCurrentItem(stack->topLevelItem(stack->topLevelItemCount() - 1));
            QTreeWidget* variables = window.DebugPanes().Variables();
            variables->expandAll();
            const QTreeWidgetItem* array = variables->topLevelItem(1);
            spur << array->text(1);
            for (int i = 0; i < array->childCount(); ++i) spur << array->child(i)->text(2);
            QTest::qWait(50);
            shot = window.grab().toImage();
            poll.stop();
            window.StopRun();
        });
        poll.start(10);
        QCOMPARE(window.DebugText(), 0);
        QVERIFY(!shot.isNull());
        QVERIFY(!SaveShot(shot, QStringLiteral("editor-debug.png")).isEmpty());
        QVERIFY(PixelsNear(shot, QColor(200, 30, 30)) > 10);   // the breakpoint's dot
        QVERIFY(PixelsNear(shot, QColor(230, 180, 0)) > 10);   // the current line's arrow
        QCOMPARE(spur, QStringList({"array [4] of integer", "0", "0", "2", "3"}));
    }

private:
    std::unique_ptr<CQtEditorServices> services;
    CQelUmgebung environment;
};

QTEST_MAIN(ScreenshotsTest)
#include "qt_screenshots_test.moc"
