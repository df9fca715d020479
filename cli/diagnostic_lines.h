// SPDX-License-Identifier: MIT
// The diagnostics of a qel run as editors and CI read them: one line
// "FILE:LINE:COLUMN: Fehler: MESSAGE" (or "Warnung:") on standard error each,
// and the same facts as JSON events when qel speaks JSON.
#pragma once

#include <cstdio>
#include <string>

#include "qelkern/diagnostics.h"

class CJsonUserInterface;

class CQelDiagnostics : public CDiagnosticListener {
public:
    // `scriptName` names the script where the engine knows no file (-e, -).
    // `quiet`: compile errors and warnings are not shown, so not told either.
    CQelDiagnostics(std::FILE* errorStream, std::string scriptName, bool quiet,
                    CJsonUserInterface* json)
        : err(errorStream), name(std::move(scriptName)), quietCompile(quiet), jsonUi(json) {}

    void OnDiagnostic(const CScriptError& diagnostic) override;

    // The line for one diagnostic, UTF-8, without the line end.
    std::string Line(const CScriptError& diagnostic) const;
    std::string FileOf(const CScriptError& diagnostic) const;

private:
    std::FILE* err;
    std::string name;
    bool quietCompile;
    CJsonUserInterface* jsonUi;
};
