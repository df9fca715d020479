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
};

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

// The record of the last RunScript on this process.
QELKERN_API const CScriptError& GetLastScriptError();
