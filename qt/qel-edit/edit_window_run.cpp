// qel-edit: compiling and running the script, stopping it, the recovery
// file around a run, and the place of a compile error.
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QTimer>
#include <utility>

#include "edit_window.h"
#include "qelkern-qt/qtrichedit.h"
#include "script_files.h"

int CQelEditWindow::CompileText() { return RunSession(QStringLiteral("Übersetzen"), false); }

int CQelEditWindow::RunText() {
    _VarSuccess = 0;
    return RunSession(QStringLiteral("Ausführen"), true);
}

// Unsaved work goes to the recovery file first: a script may take the
// process down. The file goes once the run is over.
int CQelEditWindow::RunSession(const QString& command, bool run, CDebugger* debugging) {
    if (session.IsRunning()) return 0;
    const CString text = ScriptTextOf(editor);
    const bool keepsRecovery = run && IsModified() && recovery.Save(filePath, text);
    ClearErrorMark();
    SetRunning(true);
    runStatus->setText(command + QStringLiteral(" …"));
    runStatus->setStyleSheet(QString());
    const int result = session.Run(preludeDirectory, text, run, debugging);
    SetRunning(false);
    if (keepsRecovery) recovery.Discard();
    if (std::exchange(learnAfterRun, false)) LearnWords();
    if (session.WasStopped() || (debugging && debugger.WasStopped())) {
        runStatus->setText(command + QStringLiteral(": abgebrochen"));
        runStatus->setStyleSheet(QStringLiteral("color: #c00000;"));
    } else {
        ShowLastRun(command, result, run);
        const ErrorSite site = LocateError(GetLastScriptError(), session.LastShownError(), PreludePath(preludeDirectory));
        if (result == 0 && site.known) ShowErrorSite(command, site);
    }
    if (closeAfterRun) {
        closeAfterRun = false;
        QTimer::singleShot(0, this, [this] { close(); });
    }
    return result;
}

// A paused run cannot look at a cancel: it is told to stop.
void CQelEditWindow::StopRun() {
    if (debugger.IsPaused())
        debugger.Resume(DebugCommand::Stop);
    else
        session.Stop();
}

// An error in the script puts the caret on its line and marks it until the
// text changes or the next run; one in the prelude is only named.
void CQelEditWindow::ShowErrorSite(const QString& command, const ErrorSite& site) {
    if (site.inPrelude) {
        runStatus->setText(QStringLiteral("%1: Fehler im Vorspann %2, Zeile %3: %4")
                               .arg(command, site.file.isEmpty() ? PreludePath(preludeDirectory) : site.file)
                               .arg(site.line)
                               .arg(site.message));
        return;
    }
    runStatus->setText(QStringLiteral("%1: Fehler in Zeile %2: %3").arg(command).arg(site.line).arg(site.message));
    GoToLine(site.line);
    widget->SetLineMark(site.line - 1, LineMarkError, true);
    revisionAtError = widget->TextRevision();
    errorMarked = true;
}

void CQelEditWindow::ClearErrorMark() {
    if (!errorMarked) return;
    widget->ClearLineMarks(LineMarkError);
    errorMarked = false;
}

void CQelEditWindow::SetRunning(bool running) {
    stopAction->setEnabled(running);
    for (QAction* action : std::as_const(idleOnly)) action->setEnabled(!running);
}

bool CQelEditWindow::OfferRecovery() {
    const std::vector<RecoveredWork> left = recovery.Left();
    if (left.empty()) return false;
    const RecoveredWork& work = left.front();
    const QString name = work.path.isEmpty() ? QStringLiteral("Unbenannt") : work.path;
    const auto answer = QMessageBox::question(
        this, QStringLiteral("qel-edit"),
        QStringLiteral("qel-edit wurde während eines Laufs beendet. Die ungesicherten Änderungen an %1 vom %2 "
                       "wiederherstellen?")
            .arg(name, QLocale(QLocale::German).toString(work.written, QLocale::ShortFormat)),
        QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes);
    CRecovery::Remove(work);
    if (answer != QMessageBox::Yes) return false;
    if (work.path.isEmpty() || !OpenFile(work.path)) StartNewFile(work.path);
    CString text = work.text;
    text.Replace("\n", "\r");
    editor.SetWindowText(text);
    UpdateTitle();
    return true;
}

void CQelEditWindow::ShowLastRun(const QString& command, int result, bool withSuccessCode) {
    QString text = QStringLiteral("%1: Ergebnis %2").arg(command).arg(result);
    if (withSuccessCode) text += QStringLiteral(", Erfolgscode %1").arg(_VarSuccess);
    runStatus->setText(text);
    runStatus->setStyleSheet(result == 1 ? QString() : QStringLiteral("color: #c00000;"));
}

// A running script is stopped first; the window closes when it has ended,
// asking about unsaved changes then.
bool CQelEditWindow::AskToStopForClosing() {
    const auto answer = QMessageBox::question(this, QStringLiteral("qel-edit"),
                                              QStringLiteral("Das Script läuft noch. Anhalten und schließen?"),
                                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    if (answer != QMessageBox::Yes || !session.IsRunning()) return false;
    closeAfterRun = true;
    StopRun();
    return true;
}
