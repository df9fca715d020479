// The dialogs on Qt: the error dialog from the resource "IDD_TEXTDIALOG",
// alone and on the compiler's error path; the number entry of resource 129;
// message boxes, file filters, file dialog and printing.
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QPlainTextEdit>

#include "gui_test_support.h"
#include "qelkern-qt/qtdialogs.h"

namespace {
const char markedText[] =
    "VAR x : INTEGER;\r\n"
    "BEGIN\r\n"
    "  x := y\r\n"
    "<!>!!!!!!!Unbekannter Bezeichner\r\n"
    "END.\r\n";

QPlainTextEdit* EditorOf(QWidget* window) {
    auto* dialog = qobject_cast<CQtResourceDialog*>(window);
    return dialog ? qobject_cast<QPlainTextEdit*>(dialog->Item(IDC_TEXTDIALOG_EDIT)) : nullptr;
}

QTextCharFormat FormatAt(const QPlainTextEdit* editor, int block, int column) {
    return PaintedFormat(editor, editor->document()->findBlockByNumber(block).position() + column);
}

bool IsErrorStyle(const QTextCharFormat& format) {
    return format.foreground().color() == QColor(255, 0, 0) && format.fontWeight() >= QFont::Bold;
}
}  // namespace

class DialogsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        UseBaseEnvironment();
        services = std::make_unique<CQtEditorServices>();
    }
    void cleanupTestCase() { services.reset(); }

    void errorDialogShowsTheMarkerLineAndPlacesTheCaret() {
        CQtTextDialog dialog("Fehler Parser");
        dialog.text = markedText;
        dialog.line = 2;
        dialog.column = 4;
        QVERIFY(dialog.CreateWindow());
        CQtResourceDialog* window = dialog.Window();
        QCOMPARE(window->windowTitle(), QStringLiteral("Fehler Parser"));
        QVERIFY(window->windowState() & Qt::WindowMaximized);

        QPlainTextEdit* editor = EditorOf(window);
        QVERIFY(editor);
        QVERIFY(editor->isReadOnly());
        const QTextCursor caret = editor->textCursor();
        QCOMPARE(caret.blockNumber(), 2);
        QCOMPARE(caret.positionInBlock(), 4);
        QVERIFY(!caret.hasSelection());

        const QTextBlock marker = editor->document()->findBlockByNumber(3);
        QVERIFY(marker.text().startsWith(u"<!>"));
        QVERIFY(IsErrorStyle(FormatAt(editor, 3, 0)));
        QVERIFY(IsErrorStyle(FormatAt(editor, 3, marker.length() - 2)));
        QVERIFY(!IsErrorStyle(FormatAt(editor, 2, 2)));
        QCOMPARE(FormatAt(editor, 0, 0).foreground().color(), QColor(0, 0, 255));  // VAR

        auto* ok = qobject_cast<QPushButton*>(window->Item(IDOK));
        QVERIFY(ok);
        QCOMPARE(ok->text(), QStringLiteral("OK"));
        QVERIFY(ok->isDefault());
    }

    void errorDialogKeepsEditorAndButtonRowWhenResized() {
        CQtTextDialog dialog("Fehler Parser");
        dialog.text = markedText;
        QVERIFY(dialog.CreateWindow());
        CQtResourceDialog* window = dialog.Window();
        window->setWindowState(Qt::WindowNoState);
        window->resize(600, 400);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        for (const QSize size : {QSize(600, 400), QSize(900, 700)}) {
            window->resize(size);
            QCoreApplication::processEvents();
            const QRect editor = EditorOf(window)->geometry();
            const QRect ok = window->Item(IDOK)->geometry();
            const int border = editor.left();
            QVERIFY(border > 0 && border < 20);
            QCOMPARE(editor.top(), border);
            QVERIFY(qAbs(window->width() - (editor.right() + 1) - border) <= 2);
            QVERIFY(qAbs(window->width() - (ok.right() + 1) - 2 * border) <= 3);  // row border too
            QVERIFY(qAbs(window->height() - (ok.bottom() + 1) - 2 * border) <= 3);
            QVERIFY(editor.bottom() < ok.top());
            QVERIFY(ok.width() < 150);
        }
    }

    void errorDialogClosesFromTheKeyboard() {
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
            ModalHandler handler([key](QWidget* window) {
                QPlainTextEdit* editor = EditorOf(window);
                QVERIFY(editor);
                QTest::keyClick(editor, Qt::Key_Down);  // the caret moves in read-only text
                QTest::keyClick(editor, key);
                if (window->isVisible()) qobject_cast<QDialog*>(window)->done(99);
            });
            CQtTextDialog dialog("Fehler Parser");
            dialog.text = markedText;
            QCOMPARE(dialog.DoModal(), key == Qt::Key_Return ? static_cast<int>(IDOK) : static_cast<int>(IDCANCEL));
            QCOMPARE(dialog.text, CString(markedText));
        }
    }

    void lineBeyondTheTextPutsTheCaretOnTheLastLine() {
        CQtTextDialog dialog("Fehler");
        dialog.text = "eins\r\nzwei\r\ndrei";
        dialog.line = 9;
        dialog.column = 3;
        QVERIFY(dialog.CreateWindow());
        const QTextCursor caret = EditorOf(dialog.Window())->textCursor();
        QCOMPARE(caret.blockNumber(), 2);
        QCOMPARE(caret.positionInBlock(), 0);
    }

    void compileErrorOpensTheDialogAtTheErrorLine() {
        int errorBlock = -1;
        int caretBlock = -1;
        bool markerBelow = false;
        bool errorLineVisible = false;
        QString title;
        QString boxText;
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        ModalHandler handler([&](QWidget* window) {
            if (auto* box = qobject_cast<QMessageBox*>(window)) {
                boxText = box->text();
                icon = box->icon();
                box->accept();
                return;
            }
            title = window->windowTitle();
            QPlainTextEdit* editor = EditorOf(window);
            QVERIFY(editor);
            for (QTextBlock block = editor->document()->begin(); block.isValid(); block = block.next())
                if (block.text() == u"  x := 1") errorBlock = block.blockNumber();
            const QTextBlock error = editor->document()->findBlockByNumber(errorBlock);
            markerBelow = error.next().text().startsWith(u"<!>");
            caretBlock = editor->textCursor().blockNumber();
            QTest::qWait(50);
            QTextCursor errorLine(error);
            errorLineVisible = editor->viewport()->rect().intersects(editor->cursorRect(errorLine));
            QTest::mouseClick(qobject_cast<CQtResourceDialog*>(window)->Item(IDOK), Qt::LeftButton);
        });
        char script[] = "BEGIN\n  x := 1\nEND.";
        const QString dir = ExamplesDirectory() + u'/';
        QCOMPARE(RunScript(dir.toLocal8Bit().constData(), script, static_cast<int>(sizeof script - 1), true, true), 0);
        QCOMPARE(handler.Handled(), 2);
        QCOMPARE(title, QStringLiteral("Fehler Parser"));
        QVERIFY(errorBlock > 20);  // behind the prelude's lines
        QVERIFY(markerBelow);
        QVERIFY(caretBlock == errorBlock || caretBlock == errorBlock + 1);
        QVERIFY(errorLineVisible);
        QCOMPARE(boxText, QStringLiteral("Fehler im Parser"));
        QCOMPARE(icon, QMessageBox::Critical);
    }

    void numberEntryIsMadeFromResource129() {
        CQtNumberEntryDialog dialog("Wert=", 0);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Zahleneingabe"));
        QCOMPARE(dialog.Prompt()->text(), QStringLiteral("Wert="));
        QCOMPARE(dialog.Field()->text(), QStringLiteral("0"));
        QCOMPARE(dialog.Button(IDOK)->text(), QStringLiteral("OK"));
        QVERIFY(dialog.Button(IDOK)->isDefault());
        QCOMPARE(dialog.Button(IDCANCEL)->text(), QStringLiteral("Abbrechen"));
        QVERIFY(dialog.Prompt()->geometry().bottom() < dialog.Field()->geometry().top());
        QVERIFY(dialog.Field()->geometry().right() < dialog.Button(IDOK)->geometry().left());
        QVERIFY(dialog.Button(IDOK)->geometry().bottom() < dialog.Button(IDCANCEL)->geometry().top());
        QVERIFY(dialog.width() > dialog.height());
    }

    void numberEntryRejectsWhatIsNoWholeNumber() {
        QStringList complaints;
        ModalHandler handler([&](QWidget* window) {
            if (auto* box = qobject_cast<QMessageBox*>(window)) {
                complaints << box->text();
                box->accept();
            }
        });
        CQtNumberEntryDialog dialog("Wie viele?", 5);
        dialog.show();
        QCOMPARE(dialog.Prompt()->text(), QStringLiteral("Wie viele?"));
        for (const QString& wrong : {QStringLiteral("3.5"), QStringLiteral("12x"), QString(),
                                     QStringLiteral("99999999999")}) {
            dialog.Field()->setText(wrong);
            QTest::mouseClick(dialog.Button(IDOK), Qt::LeftButton);
            QVERIFY(dialog.isVisible());
        }
        QCOMPARE(complaints.size(), 4);
        QCOMPARE(complaints.first(), CQtNumberEntryDialog::notWholeNumber);
        QCOMPARE(dialog.Value(), 5);
        dialog.Field()->setText(QStringLiteral(" -17 "));
        QTest::mouseClick(dialog.Button(IDOK), Qt::LeftButton);
        QCOMPARE(dialog.result(), static_cast<int>(QDialog::Accepted));
        QCOMPARE(dialog.Value(), -17);
    }

    void numberEntryOfTheMachineGoesThroughTheDialog() {
        QStringList answers = {QStringLiteral("12"), QStringLiteral("2.5"), QStringLiteral("2")};
        {
        ModalHandler handler([&](QWidget* window) {
            if (auto* box = qobject_cast<QMessageBox*>(window)) {
                box->accept();
            } else if (auto* entry = qobject_cast<CQtNumberEntryDialog*>(window)) {
                entry->Field()->setText(answers.takeFirst());
                QTest::keyClick(entry->Field(), Qt::Key_Return);
                if (entry->isVisible()) {  // rejected: the next answer
                    entry->Field()->setText(answers.takeFirst());
                    QTest::keyClick(entry->Field(), Qt::Key_Return);
                }
            }
        });
        CZahlenEingabe whole(1);
        QCOMPARE(whole.DoModal(), static_cast<int>(IDOK));
        QCOMPARE(whole.integerEntry, 12);
        CZahlenEingabe other(0);
        QCOMPARE(other.DoModal(), static_cast<int>(IDOK));
        QCOMPARE(other.doubleEntry, 2);
        QVERIFY(answers.isEmpty());
        }

        ModalHandler cancel([](QWidget* window) {
            if (auto* entry = qobject_cast<CQtNumberEntryDialog*>(window))
                QTest::mouseClick(entry->Button(IDCANCEL), Qt::LeftButton);
        });
        CZahlenEingabe cancelled(1);
        QCOMPARE(cancelled.DoModal(), static_cast<int>(IDCANCEL));
        QCOMPARE(cancelled.integerEntry, 0);
    }

    void messageBoxesHaveTheThreeIcons() {
        const auto plain = CreateMessageBox("Gr\xF6\xDF" "e: 3", "Meldung", CUserInterface::IconNone);
        QCOMPARE(plain->icon(), QMessageBox::NoIcon);
        QCOMPARE(plain->text(), QStringLiteral("Größe: 3"));
        QCOMPARE(plain->windowTitle(), QStringLiteral("Meldung"));
        QCOMPARE(CreateMessageBox("a", "b", CUserInterface::IconInformation)->icon(), QMessageBox::Information);
        QCOMPARE(CreateMessageBox("a", "b", CUserInterface::IconError)->icon(), QMessageBox::Critical);
        QCOMPARE(CreateMessageBox("<b>x</b>", "", CUserInterface::IconNone)->textFormat(), Qt::PlainText);
    }

    void fileDialogTakesTheFrameworksFilterAndGivesFileBytes() {
        QCOMPARE(QtNameFilters("Scripte (*.qel)|*.qel||"), QStringList{QStringLiteral("Scripte (*.qel)")});
        QCOMPARE(QtNameFilters("Texte|*.txt;*.log|Alle (*.*)|*.*||"),
                 (QStringList{QStringLiteral("Texte (*.txt *.log)"), QStringLiteral("Alle (*.*)")}));

        QTemporaryDir temporary;
        const QString folder = temporary.filePath(QStringLiteral("Übung"));
        QVERIFY(QDir().mkpath(folder));
        QStringList filters;
        QString suffix;
        bool saving = false;
        ModalHandler handler([&](QWidget* window) {
            auto* dialog = qobject_cast<QFileDialog*>(window);
            if (!dialog) return;
            filters = dialog->nameFilters();
            suffix = dialog->defaultSuffix();
            saving = dialog->acceptMode() == QFileDialog::AcceptSave;
            dialog->setDirectory(folder);
            // selectFile leaves a focused name field alone: type the name.
            if (auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit")))
                name->setText(QStringLiteral("neu"));
            static_cast<QDialog*>(dialog)->accept();
            if (dialog->isVisible()) dialog->reject();
        });
        CString path = "*.qel";
        QVERIFY(GetUserInterface().FileDialog(false, "*.qel", "Scripte (*.qel)|*.qel||",
                                              OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY, path));
        QCOMPARE(filters, QStringList{QStringLiteral("Scripte (*.qel)")});
        QCOMPARE(suffix, QStringLiteral("qel"));
        QVERIFY(saving);
        QCOMPARE(path.str(), (folder + QStringLiteral("/neu.qel")).toStdString());
    }

    void printingKeepsTheMarginsAndFillsPages() {
        QTemporaryDir temporary;
        const QString file = temporary.filePath(QStringLiteral("druck.pdf"));
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(file);
        CString text;
        for (int i = 1; i <= 200; ++i) text.AppendFormat("Zeile %d\tx := %d;\r\n", i, i * i);
        text += CString('A', 2000);  // one line longer than the page is wide
        QVERIFY(PrintPlainText(printer, "Test", text, 1000, 1000, 1000, 1000));
        const QMarginsF margins = printer.pageLayout().margins(QPageLayout::Point);
        QCOMPARE(margins, QMarginsF(50, 50, 50, 50));
        QFile pdf(file);
        QVERIFY(pdf.open(QIODevice::ReadOnly));
        const QString content = QString::fromLatin1(pdf.readAll());
        const qsizetype pages = content.count(QRegularExpression(QStringLiteral("/Type\\s*/Page[^s]")));
        QVERIFY2(pages >= 4 && pages <= 8, qPrintable(QString::number(pages)));

        ModalHandler cancel([](QWidget* window) {
            QVERIFY(qobject_cast<QPrintDialog*>(window));
            QCOMPARE(window->windowTitle(), QStringLiteral("Drucken"));
            qobject_cast<QDialog*>(window)->reject();
        });
        QVERIFY(!GetUserInterface().PrintText("Test", "x", 1000, 1000, 1000, 1000));
    }

private:
    std::unique_ptr<CQtEditorServices> services;
};

QTEST_MAIN(DialogsTest)
#include "qt_dialogs_test.moc"
