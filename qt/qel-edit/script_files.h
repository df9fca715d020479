// Script text between files, the editor and the engine. Files are UTF-8; the
// engine's text is Latin-1 with '\n' line ends; paths are the file
// system's bytes.
#pragma once

#include <QString>

#include "qelkern/qelkern.h"

// The text of a script file; false if it cannot be read.
bool ReadScriptFile(const QString& path, CString& latin1);
// Writes the text as UTF-8, replacing the file; false on any failure.
bool WriteScriptFile(const QString& path, const CString& latin1);

// The editor's text with '\n' line ends, as the engine reads scripts.
CString ScriptTextOf(const CRichEditCtrl& editor);

// Compiles the text with the prelude "extern.qel" of the directory, and runs
// it if `run`; the engine's result, 1 or 0. Errors reach the user through
// the user interface service.
int CompileScript(const QString& preludeDirectory, const CString& text, bool run);

// The path of the prelude of a directory.
QString PreludePath(const QString& directory);
