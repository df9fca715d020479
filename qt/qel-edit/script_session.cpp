#include "script_session.h"

#include <QCoreApplication>

#include "script_files.h"

namespace {
// The user interface in force, but silent about a cancel the user asked for;
// it notes what the error dialog showed.
class CStopAwareUserInterface : public CUserInterface {
public:
    CStopAwareUserInterface(CUserInterface& inner, const CRunControl& runControl, ShownError& shownError)
        : shown(inner), control(runControl), error(shownError) {}

    void ShowMessage(const CString& text, const CString& caption, Icon icon) override {
        if (control.IsCancelRequested() && text == "Skript abgebrochen.") return;
        shown.ShowMessage(text, caption, icon);
    }
    void ShowTextDialog(const CString& title, const CString& text, int line, int column) override {
        error.shown = true;
        error.line = line;
        error.markedText = text;
        shown.ShowTextDialog(title, text, line, column);
    }
    bool EnterNumber(const CString& prompt, bool integerMode, int& value) override {
        return shown.EnterNumber(prompt, integerMode, value);
    }
    bool FileDialog(bool openFileDialog, const CString& defaultExtension, const CString& filter, unsigned flags,
                    CString& path) override {
        return shown.FileDialog(openFileDialog, defaultExtension, filter, flags, path);
    }
    bool PrintText(const CString& title, const CString& text, int leftMargin, int topMargin, int rightMargin,
                   int bottomMargin) override {
        return shown.PrintText(title, text, leftMargin, topMargin, rightMargin, bottomMargin);
    }
    void Beep() override { shown.Beep(); }

private:
    CUserInterface& shown;
    const CRunControl& control;
    ShownError& error;
};

// Puts a value in place for its lifetime, and the old one back.
template <class T>
class Borrowed {
public:
    Borrowed(T& place, T value) : target(place), old(place) { target = value; }
    ~Borrowed() { target = old; }
    Borrowed(const Borrowed&) = delete;
    Borrowed& operator=(const Borrowed&) = delete;

private:
    T& target;
    T old;
};
}  // namespace

int CScriptSession::Run(const QString& preludeDirectory, const CString& text, bool run, CDebugger* debugger) {
    if (running) return 0;
    lastError = ShownError();
    CStopAwareUserInterface userInterface(GetUserInterface(), control, lastError);
    Borrowed<CUserInterface*> shownBy(pUserInterface, &userInterface);
    Borrowed<CRunControl*> controlledBy(pRunControl, &control);
    Borrowed<CDebugger*> debuggedBy(pDebugger, debugger);
    control.Reset();
    control.pollMilliseconds = pollMilliseconds;
    control.onPoll = [](CRunControl&) { QCoreApplication::processEvents(QEventLoop::AllEvents); };
    running = true;
    stopped = false;
    const int result = CompileScript(preludeDirectory, text, run);
    running = false;
    stopped = control.stopCause == StopCause::Cancelled;
    control.onPoll = nullptr;
    return result;
}

void CScriptSession::Stop() {
    if (running) control.Cancel();
}
