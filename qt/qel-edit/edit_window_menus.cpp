// qel-edit's menus and the commands that only find, move and show.
#include <QAction>
#include <QFileInfo>
#include <QInputDialog>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>

#include "edit_window.h"
#include "find_dialog.h"
#include "qelkern-qt/qtrichedit.h"
#include "qelkern-qt/qtuserinterface.h"

namespace {
constexpr double zoomStep = 0.1;
constexpr int smallestZoom = -5;
constexpr int largestZoom = 20;
}  // namespace

void CQelEditWindow::BuildMenus() {
    BuildFileMenu();
    BuildEditMenu();
    BuildViewMenu();
    BuildScriptMenu();
}

void CQelEditWindow::BuildFileMenu() {
    QMenu* file = menuBar()->addMenu(QStringLiteral("&Datei"));
    idleOnly << file->addAction(QStringLiteral("&Neu"), QKeySequence::New, this, [this] { NewFile(); });
    idleOnly << file->addAction(QStringLiteral("Ö&ffnen …"), QKeySequence::Open, this, [this] { OpenByDialog(); });
    recentMenu = file->addMenu(QStringLiteral("&Zuletzt geöffnet"));
    idleOnly << recentMenu->menuAction();
    connect(recentMenu, &QMenu::aboutToShow, this, [this] { FillRecentFilesMenu(); });
    FillRecentFilesMenu();
    file->addAction(QStringLiteral("&Speichern"), QKeySequence::Save, this, [this] { Save(); });
    file->addAction(QStringLiteral("Speichern &unter …"), QKeySequence::SaveAs, this, [this] { SaveAs(); });
    file->addSeparator();
    file->addAction(QStringLiteral("&Drucken …"), QKeySequence::Print, this, [this] { editor.Drucken(); });
    file->addSeparator();
    file->addAction(QStringLiteral("&Beenden"), QKeySequence::Quit, this, [this] { close(); });
}

void CQelEditWindow::BuildEditMenu() {
    QMenu* edit = menuBar()->addMenu(QStringLiteral("&Bearbeiten"));
    edit->addAction(QStringLiteral("&Rückgängig"), this, [this] { editor.Undo(); });
    QAction* redo = edit->addAction(QStringLiteral("&Wiederherstellen"), this, [this] { widget->Redo(); });
    redo->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
    connect(edit, &QMenu::aboutToShow, redo, [this, redo] { redo->setEnabled(widget->CanRedo()); });
    edit->addSeparator();
    edit->addAction(QStringLiteral("&Ausschneiden"), this, [this] { editor.Cut(); });
    edit->addAction(QStringLiteral("&Kopieren"), this, [this] { editor.Copy(); });
    edit->addAction(QStringLiteral("&Einfügen"), this, [this] { editor.Paste(); });
    edit->addSeparator();
    edit->addAction(QStringLiteral("Alles &markieren"), this, [this] { editor.SetSel(0, -1); });
    edit->addSeparator();
    edit->addAction(QStringLiteral("&Suchen …"), QKeySequence(Qt::CTRL | Qt::Key_F), this, [this] { ShowFind(false); });
    edit->addAction(QStringLiteral("&Weitersuchen"), QKeySequence(Qt::Key_F3), this, [this] { FindNextMatch(); });
    edit->addAction(QStringLiteral("&Ersetzen …"), QKeySequence(Qt::CTRL | Qt::Key_H), this, [this] { ShowFind(true); });
    edit->addAction(QStringLiteral("&Gehe zu Zeile …"), QKeySequence(Qt::CTRL | Qt::Key_G), this, [this] { AskForLine(); });
}

void CQelEditWindow::BuildViewMenu() {
    QMenu* view = menuBar()->addMenu(QStringLiteral("&Ansicht"));
    QAction* larger = view->addAction(QStringLiteral("&Vergrößern"), this, [this] { Zoom(zoomSteps + 1); });
    larger->setShortcuts({QKeySequence::ZoomIn, QKeySequence(Qt::CTRL | Qt::Key_Equal)});
    view->addAction(QStringLiteral("Ver&kleinern"), QKeySequence::ZoomOut, this, [this] { Zoom(zoomSteps - 1); });
    view->addAction(QStringLiteral("&Originalgröße"), QKeySequence(Qt::CTRL | Qt::Key_0), this, [this] { Zoom(0); });
    view->addSeparator();
    QAction* numbers = view->addAction(QStringLiteral("&Zeilennummern"));
    numbers->setCheckable(true);
    numbers->setChecked(true);
    connect(numbers, &QAction::toggled, this, [this](bool on) { widget->ShowLineNumbers(on); });
}

void CQelEditWindow::BuildScriptMenu() {
    QMenu* script = menuBar()->addMenu(QStringLiteral("&Script"));
    QAction* compile = script->addAction(style()->standardIcon(QStyle::SP_DialogApplyButton), QStringLiteral("Ü&bersetzen"),
                                         QKeySequence(Qt::Key_F7), this, [this] { CompileText(); });
    QAction* run = script->addAction(style()->standardIcon(QStyle::SP_MediaPlay), QStringLiteral("&Ausführen"),
                                     QKeySequence(Qt::Key_F5), this, [this] {
                                         if (BreakpointLines().empty())
                                             RunText();
                                         else
                                             DebugText();
                                     });
    stopAction = script->addAction(style()->standardIcon(QStyle::SP_MediaStop), QStringLiteral("&Stoppen"),
                                   QKeySequence(Qt::Key_Escape), this, [this] { StopRun(); });
    stopAction->setShortcuts({QKeySequence(Qt::Key_Escape), QKeySequence(Qt::SHIFT | Qt::Key_F5)});
    stopAction->setEnabled(false);
    script->addSeparator();
    idleOnly << compile << run
             << script->addAction(QStringLiteral("&Vorspann-Ordner …"), this, [this] { ChoosePreludeDirectory(); });

    QToolBar* tools = addToolBar(QStringLiteral("Script"));
    tools->setObjectName(QStringLiteral("scriptToolBar"));
    tools->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    tools->addAction(compile);
    tools->addAction(run);
    tools->addAction(stopAction);
    BuildDebugMenu(tools);
}

// --- recent files --------------------------------------------------------------------

void CQelEditWindow::FillRecentFilesMenu() {
    recentMenu->clear();
    const QStringList paths = recentFiles.Paths();
    for (int i = 0; i < paths.size(); ++i) {
        const QString& path = paths[i];
        const QString label = QStringLiteral("&%1 %2").arg(i + 1).arg(QFileInfo(path).fileName());
        QAction* action = recentMenu->addAction(label, this, [this, path] { OpenRecent(path); });
        action->setToolTip(path);
    }
    recentMenu->setEnabled(!paths.isEmpty());
}

void CQelEditWindow::OpenRecent(const QString& path) {
    if (!ConfirmDiscard()) return;
    if (OpenFile(path)) return;
    recentFiles.Remove(path);
    GetUserInterface().ShowMessage(FromQString(QStringLiteral("Die Datei %1 kann nicht gelesen werden.").arg(path)),
                                   "qel-edit", CUserInterface::IconError);
}

// --- finding and moving ---------------------------------------------------------------

void CQelEditWindow::GoToLine(int line) {
    const int index = editor.LineIndex(std::clamp(line, 1, editor.GetLineCount()) - 1);
    editor.SetSel(index, index);
    editor.SetFocus();
}

void CQelEditWindow::AskForLine() {
    long start = 0, end = 0;
    editor.GetSel(start, end);
    bool ok = false;
    const int lines = editor.GetLineCount();
    const int line = QInputDialog::getInt(this, QStringLiteral("Gehe zu Zeile"),
                                          QStringLiteral("Zeile (1 bis %1):").arg(lines),
                                          static_cast<int>(editor.LineFromChar(start)) + 1, 1, lines, 1, &ok);
    if (ok) GoToLine(line);
}

void CQelEditWindow::ShowFind(bool replace) {
    long start = 0, end = 0;
    editor.GetSel(start, end);
    findDialog->Open(replace, Latin1Text(editor.GetTextRange(static_cast<int>(start), static_cast<int>(end))));
}

void CQelEditWindow::FindNextMatch() {
    const SearchRequest request = findDialog->Request();
    if (request.pattern.isEmpty()) {
        ShowFind(false);
        return;
    }
    if (FindNext(editor, request)) {
        findDialog->ShowOutcome(QString());
        return;
    }
    const QString text = QStringLiteral("„%1“ kommt im Script nicht vor.").arg(request.pattern);
    findDialog->ShowOutcome(text);
    statusBar()->showMessage(text, 5000);
    GetUserInterface().Beep();
}

void CQelEditWindow::ReplaceOne() {
    if (!ReplaceCurrent(editor, findDialog->Request(), findDialog->Replacement())) FindNextMatch();
}

void CQelEditWindow::ReplaceEvery() {
    const int count = ReplaceAll(editor, findDialog->Request(), findDialog->Replacement());
    const QString text = count == 1 ? QStringLiteral("1 Stelle ersetzt.") : QStringLiteral("%1 Stellen ersetzt.").arg(count);
    findDialog->ShowOutcome(text);
    statusBar()->showMessage(text, 5000);
}

void CQelEditWindow::Zoom(int steps) {
    zoomSteps = std::clamp(steps, smallestZoom, largestZoom);
    widget->SetZoom(1.0 + zoomStep * zoomSteps);
}
