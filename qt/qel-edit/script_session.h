// One run of a script from qel-edit that does not hold the window hostage.
//
// The script runs on the GUI thread, as the engine expects: its tables are
// the process's and its dialogs are Qt's. The run control's poll lets the
// event loop turn every few milliseconds, so the window repaints, its menus
// answer, and Stop cancels the run at the machine's next check. The window
// guards what must not happen meanwhile (a second compile, its own
// destruction) by asking IsRunning().
#pragma once

#include <QString>

#include "qelkern/qelkern.h"
#include "error_site.h"
#include "qelkern/debugger.h"
#include "qelkern/runcontrol.h"

class CScriptSession {
public:
    static constexpr unsigned pollMilliseconds = 20;

    // Compiles the text with the prelude of the directory, and runs it if
    // `run`; the engine's result, 1 or 0. A debugger, if given, serves this
    // run only.
    int Run(const QString& preludeDirectory, const CString& text, bool run, CDebugger* debugger = nullptr);

    bool IsRunning() const { return running; }
    // Ends the running script at once; the engine's own notice of the
    // cancel is not shown, since the user asked for it.
    void Stop();
    // Whether the last run ended by Stop.
    bool WasStopped() const { return stopped; }
    // What the error dialog of the last run showed, if it came up.
    const ShownError& LastShownError() const { return lastError; }

private:
    CRunControl control;
    bool running = false;
    bool stopped = false;
    ShownError lastError;
};
