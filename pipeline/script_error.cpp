// SPDX-License-Identifier: MIT
// The record of the last run's error and the listener of diagnostics.
#include "pipeline/script_error.h"

CDiagnosticListener* pDiagnosticListener = nullptr;

CDiagnosticListener::~CDiagnosticListener() = default;

namespace {

struct RunFiles {
    CString prelude;
    int preludeLines = 0;
    CString script;
};

CScriptError lastScriptError;
RunFiles runFiles;

bool IsError(ScriptErrorKind kind) {
    return kind != ScriptErrorKind::None && kind != ScriptErrorKind::Warning;
}

CScriptError Locate(ScriptErrorKind kind, int line, int position) {
    CScriptError located;
    located.kind = kind;
    located.line = line;
    located.position = position;
    if (line < 0) {
        located.file = runFiles.script;
        return located;
    }
    located.inPrelude = line < runFiles.preludeLines;
    located.file = located.inPrelude ? runFiles.prelude : runFiles.script;
    located.scriptLine = located.inPrelude ? line + 1 : line - runFiles.preludeLines + 1;
    // The scanner counts a line's first character as position 1.
    located.scriptColumn = position > 0 ? position : 1;
    return located;
}

}  // namespace

const CScriptError& GetLastScriptError() { return lastScriptError; }

namespace qelkern {

void BeginScriptRecord(const CString& preludePath, int preludeLines, const CString& scriptPath) {
    lastScriptError.Clear();
    runFiles = RunFiles{preludePath, preludeLines, scriptPath};
}

void ReportDiagnostic(ScriptErrorKind kind, int line, int position, const CString& message,
                      StopCause cause) {
    CScriptError diagnostic = Locate(kind, line, position);
    diagnostic.message = message;
    diagnostic.cause = cause;
    // Only the first error of a run is kept: later ones are mostly its echoes.
    if (IsError(kind) && lastScriptError.kind == ScriptErrorKind::None) lastScriptError = diagnostic;
    if (pDiagnosticListener != nullptr) pDiagnosticListener->OnDiagnostic(diagnostic);
}

CString DescribePlace(int line, int position) {
    if (line < 0) return CString();
    const CScriptError place = Locate(ScriptErrorKind::None, line, position);
    CString text;
    text.Format("%d:%d", place.scriptLine, place.scriptColumn);
    return place.file.IsEmpty() ? text : place.file + ":" + text;
}

}  // namespace qelkern
