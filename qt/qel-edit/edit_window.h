// The main window of qel-edit: one script in the colouring editor, with
// file, print, compile and run commands and the status of the last run.
#pragma once

#include <QMainWindow>

#include "qelkern/qelkern.h"

class QLabel;
class QTimer;

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
    // The directory whose "extern.qel" goes in front of the script. Until one
    // is chosen, it follows the directory of the script file.
    void SetPreludeDirectory(const QString& directory, bool chosen);

    CTWScriptEdit& Editor() { return editor; }
    QString FilePath() const { return filePath; }
    QString PreludeDirectory() const { return preludeDirectory; }
    QString LastRunText() const;
    bool IsModified() const;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void BuildMenus();
    void NewFile();
    void OpenByDialog();
    bool Save();
    bool SaveAs();
    void ChoosePreludeDirectory();
    bool ConfirmDiscard();
    void LoadText(const CString& latin1, const QString& path);
    void LearnWords();
    void ShowLastRun(const QString& command, int result, bool withSuccessCode);
    void UpdateTitle();

    CTWScriptEdit editor;
    QLabel* runStatus = nullptr;
    QLabel* preludeStatus = nullptr;
    QTimer* modifiedCheck = nullptr;
    QString filePath;
    QString preludeDirectory;
    QString learntPrelude;
    bool preludeChosen = false;
    CString savedText;
};
