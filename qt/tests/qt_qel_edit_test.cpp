// qel-edit's window: a script opens coloured with the names of its prelude,
// runs and compiles with message boxes, the error dialog and the number
// entry, shows the status of the last run, and saves UTF-8.
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QPlainTextEdit>

#include <QDialogButtonBox>
#include <QDir>
#include <QElapsedTimer>
#include <QStandardPaths>
#include <QFileInfo>
#include <QInputDialog>
#include <QMenu>
#include <QSet>
#include <QSettings>

#include "edit_window.h"
#include "find_dialog.h"
#include "gui_test_support.h"
#include "qel_environment.h"
#include "qelkern-qt/qtdialogs.h"
#include "qelkern-qt/qtappearance.h"
#include "qelkern-qt/qtrichedit.h"

namespace {
QPlainTextEdit* ViewOf(CQelEditWindow& window) {
    return dynamic_cast<CQtRichEditWidget*>(window.Editor().GetWidget())->GetTextEdit();
}

CString TextOf(CQelEditWindow& window) {
    return window.Editor().GetTextRange(0, static_cast<int>(window.Editor().GetTextLength()));
}

// Counts the paint events of a widget.
class PaintCounter : public QObject {
public:
    PaintCounter(QWidget* widget, int& count) : paints(count) { widget->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++paints;
        return false;
    }

private:
    int& paints;
};

// Message boxes: caption and text of each, answered with OK.
struct Boxes {
    QStringList captions;
    QStringList texts;
    std::vector<QMessageBox::Icon> icons;

    void Take(QWidget* window) {
        auto* box = qobject_cast<QMessageBox*>(window);
        if (!box) return;
        captions << box->windowTitle();
        texts << box->text();
        icons.push_back(box->icon());
        box->accept();
    }
};
}  // namespace

class QelEditTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        QStandardPaths::setTestModeEnabled(true);
        QDir(CRecovery::DefaultDirectory()).removeRecursively();
        // Recent files go to a settings file of this test alone.
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settingsDirectory.path());
        services = std::make_unique<CQtEditorServices>();
        pBasisPredefinedUmgebung = &environment;
    }
    void cleanupTestCase() {
        pBasisPredefinedUmgebung = nullptr;
        services.reset();
    }

    void opensAScriptColouredWithTheNamesOfItsPrelude() {
        CQelEditWindow window;
        QVERIFY(window.OpenFile(ExamplesDirectory() + QStringLiteral("/hello.qel")));
        QCOMPARE(window.PreludeDirectory(), ExamplesDirectory());
        QVERIFY(window.windowTitle().startsWith(u"hello.qel"));
        QVERIFY(!window.IsModified());

        QFile file(ExamplesDirectory() + QStringLiteral("/hello.qel"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        // The line feed that ends the file shows no empty line.
        QCOMPARE(ViewOf(window)->toPlainText() + u'\n', QString::fromUtf8(file.readAll()));

        // MeldungInt is declared by the prelude of the examples only.
        QVERIFY(szConstants.Find(" MeldungInt ") >= 0);
        const CString text = TextOf(window);
        QCOMPARE(StyleAt(window.Editor(), text.Find("VAR")).colour, static_cast<COLORREF>(0xFF0000));
        const CharStyle routine = StyleAt(window.Editor(), text.Find("MeldungInt") + 2);
        QCOMPARE(routine.colour, static_cast<COLORREF>(0));
        QVERIFY(routine.bold);
        QCOMPARE(StyleAt(window.Editor(), 3).colour, static_cast<COLORREF>(0x008000));  // the comment

        QVERIFY(!window.OpenFile(ExamplesDirectory() + QStringLiteral("/gibt-es-nicht.qel")));
        QVERIFY(window.FilePath().endsWith(u"hello.qel"));
    }

    void runShowsMessagesAndTheStatusOfTheRun() {
        CQelEditWindow window;
        QVERIFY(window.OpenFile(ExamplesDirectory() + QStringLiteral("/hello.qel")));
        Boxes boxes;
        ModalHandler handler([&](QWidget* modal) { boxes.Take(modal); });
        QCOMPARE(window.RunText(), 1);
        QCOMPARE(boxes.captions, QStringList{QStringLiteral("Hallo, Welt")});
        QVERIFY(boxes.texts.first().contains(u"55"));
        QCOMPARE(window.LastRunText(), QStringLiteral("Ausführen: Ergebnis 1, Erfolgscode 0"));

        window.Editor().SetWindowText("BEGIN SetSuccess(7) END.");
        QCOMPARE(window.RunText(), 1);
        QCOMPARE(window.LastRunText(), QStringLiteral("Ausführen: Ergebnis 1, Erfolgscode 7"));

        // A run-time error is a message box; the run fails and the code is reset.
        window.Editor().SetWindowText("VAR a : ARRAY [2] OF INTEGER; i : INTEGER;\r"
                                      "BEGIN i := 5; a[i] := 1 END.");
        QCOMPARE(window.RunText(), 0);
        QCOMPARE(boxes.texts.size(), 2);
        QCOMPARE(window.LastRunText(), QStringLiteral("Ausführen: Ergebnis 0, Erfolgscode 0"));

        // The status bar belongs to the file shown.
        QVERIFY(window.OpenFile(ExamplesDirectory() + QStringLiteral("/loops.qel")));
        QCOMPARE(window.LastRunText(), QStringLiteral("Noch kein Lauf"));
    }

    void compileErrorOpensTheErrorDialogAtItsLine() {
        CQelEditWindow window;
        QVERIFY(window.OpenFile(ExamplesDirectory() + QStringLiteral("/hello.qel")));
        window.Editor().SetWindowText("BEGIN\r  MeldungInt(\"a\", \"b\", x)\rEND.");
        Boxes boxes;
        QString errorLine;
        QString markerLine;
        int caretBlock = -1;
        int errorBlock = -1;
        ModalHandler handler([&](QWidget* modal) {
            auto* dialog = qobject_cast<CQtResourceDialog*>(modal);
            if (!dialog || qobject_cast<CQtNumberEntryDialog*>(modal)) {
                boxes.Take(modal);
                return;
            }
            auto* editor = qobject_cast<QPlainTextEdit*>(dialog->Item(IDC_TEXTDIALOG_EDIT));
            QTextBlock marker = editor->document()->begin();
            while (marker.isValid() && !marker.text().startsWith(u"<!>")) marker = marker.next();
            markerLine = marker.text();
            errorLine = marker.previous().text();
            errorBlock = marker.previous().blockNumber();
            caretBlock = editor->textCursor().blockNumber();
            dialog->accept();
        });
        QCOMPARE(window.CompileText(), 0);
        QCOMPARE(errorLine, QStringLiteral("  MeldungInt(\"a\", \"b\", x)"));
        QVERIFY(markerLine.startsWith(u"<!>"));
        QVERIFY(markerLine.size() > 3);
        QVERIFY(caretBlock == errorBlock || caretBlock == errorBlock + 1);
        QCOMPARE(boxes.texts, QStringList{QStringLiteral("Fehler im Parser")});
        QVERIFY2(window.LastRunText().startsWith(u"Übersetzen: Fehler in Zeile 2: "), qPrintable(window.LastRunText()));
        // The editor's own text is untouched by the error display.
        QCOMPARE(TextOf(window), CString("BEGIN\r  MeldungInt(\"a\", \"b\", x)\rEND."));
    }

    void inputScriptAsksThroughTheNumberEntry() {
        CQelEditWindow window;
        QVERIFY(window.OpenFile(ExamplesDirectory() + QStringLiteral("/input.qel")));
        QStringList answers = {QStringLiteral("3"), QStringLiteral("250")};
        QStringList prompts;
        Boxes boxes;
        ModalHandler handler([&](QWidget* modal) {
            if (auto* entry = qobject_cast<CQtNumberEntryDialog*>(modal)) {
                prompts << entry->Prompt()->text();
                entry->Field()->setText(answers.takeFirst());
                QTest::mouseClick(entry->Button(IDOK), Qt::LeftButton);
                return;
            }
            boxes.Take(modal);
        });
        QCOMPARE(window.RunText(), 1);
        QCOMPARE(prompts, (QStringList{QStringLiteral("Wie viele Stück?"),
                                       QStringLiteral("Preis pro Stück in Cent?")}));
        QCOMPARE(boxes.captions, QStringList{QStringLiteral("Rechnung")});
        QVERIFY2(boxes.texts.first().contains(u"7.5") || boxes.texts.first().contains(u"7,5"),
                 qPrintable(boxes.texts.first()));
    }

    void savesUtf8AndTracksChanges() {
        QTemporaryDir temporary;
        const QString path = temporary.filePath(QStringLiteral("neu.qel"));
        CQelEditWindow window;
        window.StartNewFile(path);
        QVERIFY(!window.IsModified());
        window.show();
        QPlainTextEdit* view = ViewOf(window);
        TypeText(view, QStringLiteral("(* Größe *)\nbegin\nend."));
        QVERIFY(window.IsModified());
        QTRY_VERIFY(window.isWindowModified());

        QVERIFY(window.SaveTo(path));
        QVERIFY(!window.IsModified());
        QTRY_VERIFY(!window.isWindowModified());
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("(* Gr\xC3\xB6\xC3\x9F" "e *)\nBEGIN\nEND.\n"));

        CQelEditWindow again;
        QVERIFY(again.OpenFile(path));
        QCOMPARE(TextOf(again), CString("(* Gr\xF6\xDF" "e *)\rBEGIN\rEND."));

        // A file that cannot be written is reported, and the old one stays the window's.
        Boxes boxes;
        ModalHandler handler([&](QWidget* modal) { boxes.Take(modal); });
        QVERIFY(!window.SaveTo(temporary.filePath(QStringLiteral("fehlt/neu.qel"))));
        QCOMPARE(boxes.icons, std::vector<QMessageBox::Icon>{QMessageBox::Critical});
        QCOMPARE(window.FilePath(), path);
    }

    void preludeFollowsTheScriptUntilOneIsChosen() {
        QTemporaryDir temporary;
        QFile prelude(temporary.filePath(QStringLiteral("extern.qel")));
        QVERIFY(prelude.open(QIODevice::WriteOnly));
        prelude.write("CONST Eigenes = 1;\n");
        prelude.close();
        QFile script(temporary.filePath(QStringLiteral("s.qel")));
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("BEGIN END.\n");
        script.close();

        CQelEditWindow window;
        QVERIFY(window.OpenFile(script.fileName()));
        QCOMPARE(window.PreludeDirectory(), temporary.path());
        QVERIFY(szConstants.Find(" Eigenes ") >= 0);
        QVERIFY(szConstants.Find(" MeldungInt ") < 0);

        window.SetPreludeDirectory(ExamplesDirectory(), true);
        QVERIFY(szConstants.Find(" MeldungInt ") >= 0);
        QVERIFY(window.OpenFile(script.fileName()));
        QCOMPARE(window.PreludeDirectory(), ExamplesDirectory());
    }

    void findReplaceGoToLineRedoAndRecentFiles() {
        QTemporaryDir temporary;
        const QString path = temporary.filePath(QStringLiteral("suche.qel"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("VAR summe : INTEGER;\nBEGIN\n  summe := 1;\n  Summe := summe + 2\nEND.\n");
        file.close();
        CQelEditWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QVERIFY(window.OpenFile(path));
        QCOMPARE(CRecentFiles().Paths().value(0), QFileInfo(path).absoluteFilePath());
        QCOMPARE(window.RecentFilesMenu()->actions().value(0)->toolTip(), QFileInfo(path).absoluteFilePath());

        QTest::keyClick(&window, Qt::Key_H, Qt::ControlModifier);
        QVERIFY(window.FindDialog()->isVisible());
        window.FindDialog()->PatternField()->setText(QStringLiteral("summe"));
        window.FindDialog()->ReplacementField()->setText(QStringLiteral("total"));
        // F3 finds the next match and wraps to the top; case does not count.
        const struct { int line; } expected[] = {{0}, {2}, {3}, {3}, {0}};
        for (const auto& step : expected) {
            QTest::keyClick(&window, Qt::Key_F3);
            long start = 0, end = 0;
            window.Editor().GetSel(start, end);
            QCOMPARE(end - start, 5L);
            QCOMPARE(static_cast<int>(window.Editor().LineFromChar(start)), step.line);
        }
        window.FindDialog()->onReplaceAll();
        // The keyword list rewrites nothing here: "total" is no word of the language.
        QCOMPARE(TextOf(window), CString("VAR total : INTEGER;\rBEGIN\r  total := 1;\r  total := total + 2\rEND."));

        ViewOf(window)->setFocus();
        QTest::keyClick(ViewOf(window), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(TextOf(window), CString("VAR total : INTEGER;\rBEGIN\r  total := 1;\r  total := summe + 2\rEND."));
        QTest::keyClick(ViewOf(window), Qt::Key_Y, Qt::ControlModifier);
        QCOMPARE(TextOf(window), CString("VAR total : INTEGER;\rBEGIN\r  total := 1;\r  total := total + 2\rEND."));
        QTest::keyClick(ViewOf(window), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);  // nothing left to redo
        QTest::keyClick(ViewOf(window), Qt::Key_Z, Qt::ControlModifier);
        QTest::keyClick(ViewOf(window), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(TextOf(window), CString("VAR total : INTEGER;\rBEGIN\r  total := 1;\r  total := total + 2\rEND."));

        // Go to line, through the dialog of Ctrl+G.
        ModalHandler answer([](QWidget* modal) {
            auto* dialog = qobject_cast<QInputDialog*>(modal);
            QVERIFY(dialog);
            dialog->setIntValue(4);
            dialog->accept();
        });
        QTest::keyClick(&window, Qt::Key_G, Qt::ControlModifier);
        QTRY_COMPARE(answer.Handled(), 1);
        long start = 0, end = 0;
        window.Editor().GetSel(start, end);
        QCOMPARE(start, static_cast<long>(window.Editor().LineIndex(3)));
        QCOMPARE(end, start);
    }

    void typingKeepsTheIndentAndRefusesWhatLatin1Lacks() {
        CountingUserInterface counting;
        CUserInterface* before = pUserInterface;
        pUserInterface = &counting;
        CQelEditWindow window;
        window.show();
        TypeText(ViewOf(window), QStringLiteral("BEGIN\n\t  x := 1;\nEND."));
        QCOMPARE(TextOf(window), CString("BEGIN\r\t  x := 1;\r\t  END."));
        const QString euro(QChar(0x20AC));
        QTest::sendKeyEvent(QTest::Click, ViewOf(window), Qt::Key_unknown, euro, Qt::NoModifier);
        QCOMPARE(TextOf(window), CString("BEGIN\r\t  x := 1;\r\t  END."));
        QCOMPARE(counting.beeps, 1);
        QVERIFY(window.StatusMessage().contains(euro));
        QVERIFY(window.StatusMessage().contains(u"Latin-1"));
        pUserInterface = before;

        // The gutter follows the zoom.
        QWidget* gutter = window.Widget()->LineNumberGutter();
        QVERIFY(gutter && gutter->isVisible());
        const int width = gutter->width();
        const qreal size = ViewOf(window)->font().pointSizeF();
        window.Zoom(5);
        QVERIFY(ViewOf(window)->font().pointSizeF() > size * 1.4);
        QVERIFY(gutter->width() > width);
        QVERIFY(PaintedFormat(ViewOf(window), 1).fontPointSize() > 14.0);  // BEGIN, 10 points unzoomed
        CHARFORMAT cf;
        window.Editor().SetSel(0, 1);
        window.Editor().GetSelectionCharFormat(cf);
        QCOMPARE(cf.yHeight, 200L);  // what the control reports stays
    }

    void marksMoveWithTheirLine() {
        CQelEditWindow window;
        window.show();
        window.Editor().SetWindowText("BEGIN\r  x := 1\rEND.");
        window.Widget()->SetLineMark(1, LineMarkError, true);
        window.Editor().SetSel(0, 0);
        window.Editor().ReplaceSel("(* neu *)\r", TRUE);
        QVERIFY(!window.Widget()->HasLineMark(1, LineMarkError));
        QVERIFY(window.Widget()->HasLineMark(2, LineMarkError));
        window.Widget()->ClearLineMarks(LineMarkError);
        QVERIFY(!window.Widget()->HasLineMark(2, LineMarkError));
    }

    void darkPaletteColoursDifferAndAreReadable() {
        QPalette dark;
        dark.setColor(QPalette::Base, QColor(0x1E, 0x1E, 0x1E));
        dark.setColor(QPalette::Text, QColor(0xD4, 0xD4, 0xD4));
        CQelEditWindow window;
        window.setPalette(dark);
        CTWScriptEdit& edit = window.Editor();
        const COLORREF roles[] = {edit.keywordStyle.colour, edit.commentStyle.colour, edit.stringStyle.colour,
                                  edit.numberStyle.colour,  edit.errorStyle.colour,   edit.constantStyle.colour};
        QSet<QRgb> shown;
        for (const COLORREF stored : roles) {
            const QColor colour = window.Widget()->DisplayColour(stored);
            QVERIFY2(ContrastRatio(colour, dark.color(QPalette::Base)) >= 4.5, qPrintable(colour.name()));
            QVERIFY(colour != QColor(GetRValue(stored), GetGValue(stored), GetBValue(stored)));
            shown.insert(colour.rgb());
        }
        QCOMPARE(shown.size(), 6);
        // What the control reports is what the colouring rules give.
        edit.SetWindowText("BEGIN END.");
        QCOMPARE(StyleAt(edit, 0).colour, static_cast<COLORREF>(0xFF0000));
        QCOMPARE(PaintedFormat(ViewOf(window), 0).foreground().color(), window.Widget()->DisplayColour(0xFF0000));
        window.setPalette(QPalette(QColor(0xEE, 0xEE, 0xEE)));
        QCOMPARE(window.Widget()->DisplayColour(0xFF0000), QColor(0, 0, 255));
    }

    void qtsOwnDialogsSpeakGerman() {
        QVERIFY(LoadQtTranslations(*QCoreApplication::instance()));
        QDialogButtonBox buttons(QDialogButtonBox::Cancel | QDialogButtonBox::Yes);
        QCOMPARE(buttons.button(QDialogButtonBox::Cancel)->text().remove(u'&'), QStringLiteral("Abbrechen"));
        QCOMPARE(buttons.button(QDialogButtonBox::Yes)->text().remove(u'&'), QStringLiteral("Ja"));
    }

    // The caret goes to the error's line in the user's file, which stays
    // marked until the text changes; an error of the prelude names it.
    void compileErrorPutsTheCaretOnItsLine() {
        QTemporaryDir temporary;
        QFile prelude(temporary.filePath(QStringLiteral("extern.qel")));
        QVERIFY(prelude.open(QIODevice::WriteOnly));
        prelude.write("CONST Eins = 1;\nCONST Zwei = 2;\n");
        prelude.close();
        CQelEditWindow window;
        window.show();
        window.SetPreludeDirectory(temporary.path(), true);
        window.Editor().SetWindowText("VAR a : INTEGER;\rBEGIN\r  a := Eins;\r  a := Zwei;\r  a := Drei;\rEND.");
        ModalHandler boxes([](QWidget* modal) { qobject_cast<QDialog*>(modal)->accept(); });
        QCOMPARE(window.CompileText(), 0);
        QTRY_COMPARE(boxes.Handled(), 2);  // the error dialog and "Fehler im Parser"
        long start = 0, end = 0;
        window.Editor().GetSel(start, end);
        QCOMPARE(window.Editor().LineFromChar(start), 4L);
        QVERIFY(window.Widget()->HasLineMark(4, LineMarkError));
        QVERIFY2(window.LastRunText().startsWith(u"Übersetzen: Fehler in Zeile 5: "), qPrintable(window.LastRunText()));
        QVERIFY(window.LastRunText().size() > QStringLiteral("Übersetzen: Fehler in Zeile 5: ").size());

        TypeText(ViewOf(window), QStringLiteral("x"));
        QTRY_VERIFY(!window.Widget()->HasLineMark(4, LineMarkError));

        QVERIFY(prelude.open(QIODevice::WriteOnly));
        prelude.write("CONST Eins = 1;\nCONST Zwei = x;\n");
        prelude.close();
        QCOMPARE(window.CompileText(), 0);
        QVERIFY2(window.LastRunText().contains(QStringLiteral("Vorspann %1, Zeile 2").arg(prelude.fileName())),
                 qPrintable(window.LastRunText()));
        QVERIFY(!window.Widget()->HasLineMark(1, LineMarkError));
    }

    // Esc ends an endless loop at once; meanwhile the window paints and its
    // commands answer, and the unsaved text waits in the recovery file.
    void escapeStopsAnEndlessLoop() {
        CQelEditWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        const CString script("VAR i : INTEGER;\rBEGIN\r  LOOP i := i + 1 END\rEND.");
        window.Editor().SetWindowText(script);
        QVERIFY(window.IsModified());
        QPlainTextEdit* view = ViewOf(window);
        view->setFocus();

        QElapsedTimer sinceEscape;
        bool stopEnabled = false;
        bool recoveryWritten = false;
        int paints = 0;
        PaintCounter counter(view->viewport(), paints);
        QTimer::singleShot(300, &window, [&] {
            stopEnabled = window.StopAction()->isEnabled();
            recoveryWritten = !QDir(CRecovery::DefaultDirectory()).entryList({QStringLiteral("*.qel")}).isEmpty();
            view->viewport()->update();
            QTimer::singleShot(100, &window, [&] {
                sinceEscape.start();
                QTest::keyClick(view, Qt::Key_Escape);
            });
        });
        QCOMPARE(window.RunText(), 0);
        const qint64 stopMilliseconds = sinceEscape.elapsed();
        QVERIFY2(stopMilliseconds < 200, qPrintable(QString::number(stopMilliseconds)));
        QVERIFY(stopEnabled);
        QVERIFY(paints > 0);
        QVERIFY(recoveryWritten);
        QVERIFY(QDir(CRecovery::DefaultDirectory()).entryList({QStringLiteral("*.qel")}).isEmpty());
        QCOMPARE(window.LastRunText(), QStringLiteral("Ausführen: abgebrochen"));
        QCOMPARE(TextOf(window), script);
        QVERIFY(!window.StopAction()->isEnabled());
    }

    void closingDuringARunStopsItFirst() {
        CQelEditWindow window;
        window.show();
        window.Editor().SetWindowText("BEGIN LOOP END END.");
        QStringList questions;
        ModalHandler answers([&](QWidget* modal) {
            auto* box = qobject_cast<QMessageBox*>(modal);
            questions << box->text();
            box->button(questions.size() == 1 ? QMessageBox::Yes : QMessageBox::Discard)->click();
        });
        QTimer::singleShot(200, &window, [&] { window.close(); });
        QCOMPARE(window.RunText(), 0);
        QTRY_VERIFY(!window.isVisible());
        QCOMPARE(questions.size(), 2);
        QVERIFY(questions[0].contains(u"läuft"));
        QVERIFY(questions[1].contains(u"speichern"));
    }

    // Saving into another directory during a run changes the prelude; its
    // words are learnt once the run is over, never inside it.
    void savingDuringARunLearnsThePreludeAfterwards() {
        QTemporaryDir temporary;
        QFile prelude(temporary.filePath(QStringLiteral("extern.qel")));
        QVERIFY(prelude.open(QIODevice::WriteOnly));
        prelude.write("CONST Waehrend = 1;\n");
        prelude.close();
        CQelEditWindow window;
        window.show();
        window.Editor().SetWindowText("BEGIN LOOP END END.");
        bool learntDuringRun = true;
        QTimer::singleShot(200, &window, [&] {
            QVERIFY(window.SaveTo(temporary.filePath(QStringLiteral("s.qel"))));
            learntDuringRun = szConstants.Find(" Waehrend ") >= 0;
            window.StopRun();
        });
        QCOMPARE(window.RunText(), 0);
        QVERIFY(!learntDuringRun);
        QVERIFY(szConstants.Find(" Waehrend ") >= 0);
    }

    void workLeftByADeadEditorIsOfferedBack() {
        QTemporaryDir temporary;
        const QString path = temporary.filePath(QStringLiteral("verloren.qel"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("BEGIN END.\n");
        file.close();
        constexpr qint64 goneProcess = 2147483646;
        QVERIFY(CRecovery(CRecovery::DefaultDirectory(), goneProcess).Save(path, "BEGIN\n  MeldungInt(1)\nEND."));
        QCOMPARE(CRecovery(CRecovery::DefaultDirectory()).Left().size(), size_t{1});

        CQelEditWindow window;
        ModalHandler yes([](QWidget* modal) { qobject_cast<QMessageBox*>(modal)->button(QMessageBox::Yes)->click(); });
        QVERIFY(window.OfferRecovery());
        QCOMPARE(window.FilePath(), path);
        QCOMPARE(TextOf(window), CString("BEGIN\r  MeldungInt(1)\rEND."));
        QVERIFY(window.IsModified());
        QVERIFY(CRecovery(CRecovery::DefaultDirectory()).Left().empty());
        QVERIFY(!window.OfferRecovery());
    }

private:
    std::unique_ptr<CQtEditorServices> services;
    CQelUmgebung environment;
    QTemporaryDir settingsDirectory;
};

QTEST_MAIN(QelEditTest)
#include "qt_qel_edit_test.moc"
