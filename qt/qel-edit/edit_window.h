// The main window of qel-edit: one script in the colouring editor, with
// file, print, compile and run commands and the status of the last run.
#pragma once

#include <QMainWindow>

#include "qelkern/qelkern.h"
#include <memory>
#include <vector>

#include "edit_debugger.h"
#include "recent_files.h"
#include "recovery.h"
#include "script_session.h"

class QLabel;
class QTimer;
class QMenu;
class QAction;
class CQtRichEditWidget;
class CFindDialog;
class CDebugPanes;
class QToolBar;

class CQelEditWindow : public QMainWindow {
public:
    explicit CQelEditWindow(QWidget* parent = nullptr);
    ~CQelEditWindow() override;

    // Loads a script; false (and nothing changed) if it cannot be read.
    bool OpenFile(const QString& path);
    // An empty script that will be saved under this path.
    void StartNewFile(const QString& path);
    bool SaveTo(const QString& path);
    // 1 or 0, as the engine answers; the status bar shows it.
    int CompileText();
    int RunText();
    // Runs under the debugger: to the first breakpoint, or, with none, to
    // the first statement; 1 or 0 as RunText.
    int DebugText();
    // Ends the running script, paused or not; the status says so.
    void StopRun();
    // The next step of a paused run.
    void Resume(DebugCommand command);
    bool IsPaused() const { return debugger.IsPaused(); }
    // Lines from 1.
    void ToggleBreakpoint(int line);
    bool HasBreakpoint(int line) const;
    std::vector<int> BreakpointLines() const;
    const CDebugPanes& DebugPanes() const;
    bool IsRunning() const { return session.IsRunning(); }
    // Offers back the newest work that a run left unsaved when the editor
    // went down; true if it was taken.
    bool OfferRecovery();
    // The directory whose "extern.qel" goes in front of the script. Until one
    // is chosen, it follows the directory of the script file.
    void SetPreludeDirectory(const QString& directory, bool chosen);

    // Puts the caret at the start of a line (from 1) and shows it.
    void GoToLine(int line);
    void AskForLine();
    void ShowFind(bool replace);
    void FindNextMatch();
    void Zoom(int steps);  // 0: back to the normal size

    CTWScriptEdit& Editor() { return editor; }
    CQtRichEditWidget* Widget() const { return widget; }
    CFindDialog* FindDialog() const { return findDialog; }
    QString FilePath() const { return filePath; }
    QString PreludeDirectory() const { return preludeDirectory; }
    QString LastRunText() const;
    QString StatusMessage() const;
    bool IsModified() const;
    QMenu* RecentFilesMenu() const { return recentMenu; }
    QAction* StopAction() const { return stopAction; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void BuildMenus();
    void BuildFileMenu();
    void BuildEditMenu();
    void BuildViewMenu();
    void BuildScriptMenu();
    void BuildDebugMenu(QToolBar* tools);
    void FillRecentFilesMenu();
    void OpenRecent(const QString& path);
    void RememberFile(const QString& path);
    void NewFile();
    void OpenByDialog();
    bool Save();
    bool SaveAs();
    void ChoosePreludeDirectory();
    bool ConfirmDiscard();
    void LoadText(const CString& latin1, const QString& path);
    void LearnWords();
    void ShowLastRun(const QString& command, int result, bool withSuccessCode);
    void ResetRunStatus();
    void UpdateTitle();
    void UseColoursOfPalette();
    void CharacterRejected(QChar character);
    void ReplaceOne();
    void ReplaceEvery();
    void SetRunning(bool running);
    int RunSession(const QString& command, bool run, CDebugger* debugging = nullptr);
    void ShowPause(const CDebugPause& pause);
    void LeavePause();
    void MarkCurrentLine(int line);
    void ChooseFrame(int frame);
    void MoveBreakpoint(const CDebugBreakpoint& breakpoint);
    bool AskToStopForClosing();
    void ShowErrorSite(const QString& command, const ErrorSite& site);
    void ClearErrorMark();
    void TextChanged();

    CTWScriptEdit editor;
    CQtRichEditWidget* widget = nullptr;
    CFindDialog* findDialog = nullptr;
    QMenu* recentMenu = nullptr;
    QAction* stopAction = nullptr;
    QList<QAction*> idleOnly;  // commands that wait while a script runs
    QList<QAction*> pausedOnly;
    QAction* pauseAction = nullptr;
    CScriptSession session;
    CEditDebugger debugger;
    std::unique_ptr<CDebugPanes> panes;
    bool debugging = false;
    CRecovery recovery{CRecovery::DefaultDirectory()};
    bool closeAfterRun = false;
    bool learnAfterRun = false;
    bool errorMarked = false;
    unsigned revisionAtError = 0;
    unsigned checkedRevision = 0;
    QLabel* runStatus = nullptr;
    QLabel* preludeStatus = nullptr;
    QTimer* modifiedCheck = nullptr;
    CRecentFiles recentFiles;
    QString filePath;
    QString preludeDirectory;
    QString learntPrelude;
    bool preludeChosen = false;
    int zoomSteps = 0;
    CString savedText;
};
