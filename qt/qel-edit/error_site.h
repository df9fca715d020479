// Where a compile error lies in the user's own files: the engine counts lines
// in the prelude and the script joined, the user in the file they edit.
#pragma once

#include <QString>

#include "qelkern/diagnostics.h"
#include "qelkern/qelkern.h"

// What the error dialog was shown: the joined text with its marker line,
// and the line of the error in it (from 0).
struct ShownError {
    bool shown = false;
    int line = 0;
    CString markedText;
};

struct ErrorSite {
    bool known = false;
    bool inPrelude = false;
    int line = 0;  // from 1, in the file it lies in
    QString message;
    QString file;  // the file it lies in, when the engine names it
};

// From the engine's error record when it has one, else from the dialog and
// the number of lines that the prelude put in front.
ErrorSite LocateError(const CScriptError& record, const ShownError& shown, const QString& preludePath);

// The message of the marker line of a marked text.
QString MarkerMessage(const CString& markedText);
