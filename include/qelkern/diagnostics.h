// SPDX-License-Identifier: MIT
// What went wrong in the last run, as facts a host can read without parsing
// message texts. Filled by every RunScript, also with showErrors false.
#pragma once

#include "qelkern/platform.h"
#include "qelkern/runcontrol.h"

enum class ScriptErrorKind : int {
    None = 0,  // the run succeeded
    Scanner,   // the scanner's first error
    Compile,   // the parser's first error
    Runtime,   // a run-time error of the machine
    Stopped,   // ended by the host's run control; see `cause`
    OutOfMemory,
    Warning,   // a compiler warning; only a CDiagnosticListener sees these
};

// One diagnostic: the first error of a run (GetLastScriptError), or one event
// as a CDiagnosticListener receives it.
struct QELKERN_API CScriptError {
    ScriptErrorKind kind = ScriptErrorKind::None;
    StopCause cause = StopCause::None;
    CString message;  // the German text the user was shown (or would have been)
    // Where, in the joined text of prelude and script, as the scanner counts
    // (both from 0); -1 when unknown.
    int line = -1;
    int position = -1;
    // Where, in the file the error lies in, counted from 1; 0 when unknown.
    int scriptLine = 0;
    int scriptColumn = 0;
    CString file;            // that file's path; empty when the text had none
    bool inPrelude = false;  // the error lies in the prelude, not the script

    void Clear() { *this = CScriptError(); }
};

// The record of the last RunScript on this process: the first scanner or
// compile error, else the run-time error, else kind None. A compile error's
// line and column are those of the symbol the parser stood on; a run-time
// error's are those of the statement whose code failed. Valid until the next
// RunScript starts; like the runs themselves, not for several threads.
QELKERN_API const CScriptError& GetLastScriptError();

// Receives every diagnostic of a run as it happens, on the script's thread:
// each scanner error, the first compile error, each warning (also with
// showErrors false) and the run-time error. Compile-time diagnostics arrive
// before the user interface shows them; the run-time error after the
// machine's message box, when its place is known.
class QELKERN_API CDiagnosticListener {
public:
    virtual ~CDiagnosticListener();
    virtual void OnDiagnostic(const CScriptError& diagnostic) = 0;
};

// The listener of the next runs; null (the default): none.
QELKERN_API extern CDiagnosticListener* pDiagnosticListener;
