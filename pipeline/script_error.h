// SPDX-License-Identifier: MIT
// Filling the error record of a run and telling the diagnostic listener.
// Places come as the scanner counts them in the joined text; the record turns
// them into a file, a line and a column of that file.
#pragma once

#include "qelkern/diagnostics.h"

namespace qelkern {

// Starts the record of a run: the prelude's path and its number of lines,
// and the script's path (empty for a text without a file).
void BeginScriptRecord(const CString& preludePath, int preludeLines, const CString& scriptPath);

// line and position as the scanner counts them; -1 when unknown.
void ReportDiagnostic(ScriptErrorKind kind, int line, int position, const CString& message,
                      StopCause cause = StopCause::None);

// "FILE:LINE:COLUMN" of a place in the joined text of the running compile,
// for the listing; "" when unknown.
CString DescribePlace(int line, int position);

}  // namespace qelkern
