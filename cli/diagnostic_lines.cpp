// SPDX-License-Identifier: MIT
#include "diagnostic_lines.h"

#include "json_ui.h"

namespace {

// A message on one line: line ends of the engine's texts become blanks.
std::string OneLine(const CString& latin1) {
    std::string text = Latin1ToUtf8(latin1.str());
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    for (char& c : text)
        if (c == '\n' || c == '\r') c = ' ';
    return text;
}

bool IsCompileTime(ScriptErrorKind kind) {
    return kind == ScriptErrorKind::Compile || kind == ScriptErrorKind::Warning;
}

}  // namespace

std::string CQelDiagnostics::FileOf(const CScriptError& diagnostic) const {
    // File names are passed through as the system gave them, not as Latin-1.
    return diagnostic.file.IsEmpty() ? name : diagnostic.file.str();
}

std::string CQelDiagnostics::Line(const CScriptError& diagnostic) const {
    std::string line = FileOf(diagnostic) + ":";
    if (diagnostic.scriptLine > 0)
        line += std::to_string(diagnostic.scriptLine) + ":" + std::to_string(diagnostic.scriptColumn) + ":";
    line += diagnostic.kind == ScriptErrorKind::Warning ? " Warnung: " : " Fehler: ";
    return line + OneLine(diagnostic.message);
}

void CQelDiagnostics::OnDiagnostic(const CScriptError& diagnostic) {
    if (quietCompile && IsCompileTime(diagnostic.kind)) return;
    std::fprintf(err, "%s\n", Line(diagnostic).c_str());
    std::fflush(err);
    if (jsonUi != nullptr) jsonUi->AddDiagnostic(diagnostic, FileOf(diagnostic), OneLine(diagnostic.message));
}
