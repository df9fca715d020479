#include "edit_window.h"

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLocale>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>
#include <QPlainTextEdit>
#include <QTimer>
#include <utility>

#include "qelkern-qt/qtappearance.h"
#include "qelkern-qt/qtrichedit.h"
#include "qelkern-qt/qtuserinterface.h"
#include "debug_panes.h"
#include "find_dialog.h"
#include "script_files.h"

namespace {
constexpr int editorId = 1000;
const char scriptFilter[] = "Scripte (*.qel)|*.qel||";

QString PathOf(const CString& fileName) { return QFile::decodeName(fileName.str().c_str()); }

CString FileName(const QString& path) { return CString(QFile::encodeName(path).toStdString()); }
QString DirectoryOf(const QString& path) { return QFileInfo(path).absolutePath(); }
}  // namespace

CQelEditWindow::CQelEditWindow(QWidget* parent) : QMainWindow(parent) {
    editor.Create(WS_CHILD | WS_VISIBLE | WS_VSCROLL | ES_MULTILINE | ES_AUTOVSCROLL, CRect(), nullptr, editorId);
    widget = dynamic_cast<CQtRichEditWidget*>(editor.GetWidget());
    if (!widget) {
        widget = new CQtRichEditWidget();
        editor.Attach(widget, true);
    }
    setCentralWidget(widget->GetTextEdit());
    widget->ShowLineNumbers(true);
    widget->SetAutoIndent(true);
    widget->SetRejectedCharacterHandler([this](QChar character) { CharacterRejected(character); });
    findDialog = new CFindDialog(this);
    findDialog->onFindNext = [this] { FindNextMatch(); };
    findDialog->onReplace = [this] { ReplaceOne(); };
    findDialog->onReplaceAll = [this] { ReplaceEvery(); };

    runStatus = new QLabel(QStringLiteral("Noch kein Lauf"), this);
    preludeStatus = new QLabel(this);
    statusBar()->addWidget(runStatus, 1);
    statusBar()->addPermanentWidget(preludeStatus);

    // Colouring changes the document too; whether the text differs from the
    // saved one is asked once the event loop is free again.
    modifiedCheck = new QTimer(this);
    modifiedCheck->setSingleShot(true);
    modifiedCheck->setInterval(0);
    connect(modifiedCheck, &QTimer::timeout, this, [this] { TextChanged(); });
    connect(widget->GetTextEdit()->document(), &QTextDocument::contentsChanged, modifiedCheck,
            qOverload<>(&QTimer::start));

    BuildMenus();
    UseColoursOfPalette();
    SetPreludeDirectory(QDir::currentPath(), false);
    resize(960, 720);
    UpdateTitle();
}

CQelEditWindow::~CQelEditWindow() = default;

// --- files ---------------------------------------------------------------------

// The status bar belongs to the file shown: a new one starts without a run.
void CQelEditWindow::LoadText(const CString& latin1, const QString& path) {
    editor.SetWindowText(latin1);
    savedText = ScriptTextOf(editor);
    filePath = path;
    ResetRunStatus();
    if (!preludeChosen && !path.isEmpty()) SetPreludeDirectory(DirectoryOf(path), false);
    UpdateTitle();
}

bool CQelEditWindow::OpenFile(const QString& path) {
    CString text;
    if (!ReadScriptFile(path, text)) return false;
    LoadText(text, QFileInfo(path).absoluteFilePath());
    RememberFile(filePath);
    return true;
}

void CQelEditWindow::StartNewFile(const QString& path) {
    LoadText(CString(), path.isEmpty() ? QString() : QFileInfo(path).absoluteFilePath());
}

// The file ends with a line feed, as text files on this system do.
bool CQelEditWindow::SaveTo(const QString& path) {
    const CString text = ScriptTextOf(editor);
    CString fileText = text;
    if (!fileText.IsEmpty() && fileText[fileText.GetLength() - 1] != '\n') fileText += "\n";
    if (!WriteScriptFile(path, fileText)) {
        GetUserInterface().ShowMessage(FromQString(QStringLiteral("Die Datei %1 kann nicht geschrieben werden.").arg(path)),
                                       "qel-edit", CUserInterface::IconError);
        return false;
    }
    savedText = text;
    filePath = QFileInfo(path).absoluteFilePath();
    RememberFile(filePath);
    if (!preludeChosen) SetPreludeDirectory(DirectoryOf(filePath), false);
    UpdateTitle();
    return true;
}

void CQelEditWindow::NewFile() {
    if (ConfirmDiscard()) StartNewFile(QString());
}

void CQelEditWindow::OpenByDialog() {
    if (!ConfirmDiscard()) return;
    CString chosen = "*.qel";
    if (!GetUserInterface().FileDialog(true, "*.qel", scriptFilter, OFN_FILEMUSTEXIST | OFN_HIDEREADONLY, chosen))
        return;
    const QString path = PathOf(chosen);
    if (!OpenFile(path))
        GetUserInterface().ShowMessage(FromQString(QStringLiteral("Die Datei %1 kann nicht gelesen werden.").arg(path)),
                                       "qel-edit", CUserInterface::IconError);
}

bool CQelEditWindow::Save() { return filePath.isEmpty() ? SaveAs() : SaveTo(filePath); }

bool CQelEditWindow::SaveAs() {
    CString chosen = filePath.isEmpty() ? CString("*.qel") : FileName(filePath);
    if (!GetUserInterface().FileDialog(false, "*.qel", scriptFilter, OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY, chosen))
        return false;
    return SaveTo(PathOf(chosen));
}

// Most edits change the length, which is known without reading the text.
bool CQelEditWindow::IsModified() const {
    return editor.GetTextLength() != savedText.GetLength() || ScriptTextOf(editor) != savedText;
}

bool CQelEditWindow::ConfirmDiscard() {
    if (!IsModified()) return true;
    const QString name = filePath.isEmpty() ? QStringLiteral("Unbenannt") : QFileInfo(filePath).fileName();
    const auto answer = QMessageBox::question(
        this, QStringLiteral("qel-edit"), QStringLiteral("Änderungen an %1 speichern?").arg(name),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Save) return Save();
    return answer == QMessageBox::Discard;
}

void CQelEditWindow::closeEvent(QCloseEvent* event) {
    if (session.IsRunning()) {
        AskToStopForClosing();
        event->ignore();
        return;
    }
    if (ConfirmDiscard())
        event->accept();
    else
        event->ignore();
}

void CQelEditWindow::UpdateTitle() {
    const QString name = filePath.isEmpty() ? QStringLiteral("Unbenannt") : QFileInfo(filePath).fileName();
    setWindowTitle(name + QStringLiteral("[*] – qel-edit"));
    setWindowModified(IsModified());
}

// --- prelude, compile and run ------------------------------------------------------

void CQelEditWindow::SetPreludeDirectory(const QString& directory, bool chosen) {
    preludeDirectory = QFileInfo(directory).absoluteFilePath();
    preludeChosen = preludeChosen || chosen;
    preludeStatus->setText(QStringLiteral("Vorspann: %1").arg(PreludePath(preludeDirectory)));
    LearnWords();
}

void CQelEditWindow::ChoosePreludeDirectory() {
    const QString directory = QFileDialog::getExistingDirectory(this, QStringLiteral("Vorspann-Ordner"),
                                                                preludeDirectory);
    if (!directory.isEmpty()) SetPreludeDirectory(directory, true);
}

// The word lists of the editors are the process's; they are learnt anew when
// the prelude changes, so the names of the prelude in force are coloured.
// The engine compiles one thing at a time: during a run they wait for it.
void CQelEditWindow::LearnWords() {
    if (session.IsRunning()) {
        learnAfterRun = true;
        return;
    }
    const QString prelude = PreludePath(preludeDirectory);
    if (prelude == learntPrelude) return;
    szKeywords.Empty();
    szConstants.Empty();
    Keywords.RemoveAll();
    GlobaleSymbole.RemoveAll();
    InitTWScriptEdit(&editor, nullptr, editorId, FileName(prelude));
    learntPrelude = prelude;
}

// Colouring changes formats only: the widget's revision tells a change of
// the text, so the whole text is not read for every repaint of colours.
void CQelEditWindow::TextChanged() {
    const unsigned revision = widget->TextRevision();
    if (revision == checkedRevision) return;
    checkedRevision = revision;
    if (errorMarked && revision != revisionAtError) ClearErrorMark();
    setWindowModified(IsModified());
}

QString CQelEditWindow::LastRunText() const { return runStatus->text(); }

void CQelEditWindow::ResetRunStatus() {
    runStatus->setText(QStringLiteral("Noch kein Lauf"));
    runStatus->setStyleSheet(QString());
}

void CQelEditWindow::RememberFile(const QString& path) {
    recentFiles.Add(path);
    FillRecentFilesMenu();
}

QString CQelEditWindow::StatusMessage() const { return statusBar()->currentMessage(); }

void CQelEditWindow::CharacterRejected(QChar character) {
    GetUserInterface().Beep();
    statusBar()->showMessage(
        QStringLiteral("Das Zeichen „%1“ kann nicht eingegeben werden: Scripte kennen nur die Zeichen von Latin-1.")
            .arg(character),
        8000);
}

// --- look ------------------------------------------------------------------------

void CQelEditWindow::UseColoursOfPalette() {
    widget->SetDisplayColours(IsDarkPalette(palette()) ? DarkDisplayColours(editor, palette()) : QHash<QRgb, QColor>());
}

void CQelEditWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) UseColoursOfPalette();
}
