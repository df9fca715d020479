#include "json_ui.h"

#include "json_line.h"


namespace {

const char* IconName(CUserInterface::Icon icon) {
    switch (icon) {
    case CUserInterface::IconInformation: return "information";
    case CUserInterface::IconError: return "error";
    default: return "none";
    }
}

const char* EventOf(ScriptErrorKind kind) {
    switch (kind) {
    case ScriptErrorKind::Scanner: return "scanner-error";
    case ScriptErrorKind::Warning: return "warning";
    default: return "runtime-error";
    }
}

const char* StageOf(ScriptErrorKind kind) {
    switch (kind) {
    case ScriptErrorKind::None: return nullptr;
    case ScriptErrorKind::Scanner:
    case ScriptErrorKind::Compile: return "compile";
    default: return "run";
    }
}

// The place fields behind those an event already has.
void AppendPlace(JsonLine& event, const CScriptError& diagnostic, const std::string& file,
                 const std::string& message) {
    event.Utf8Text("file", file)
        .Number("script_line", diagnostic.scriptLine)
        .Number("script_column", diagnostic.scriptColumn)
        .Utf8Text("message", message);
}

}  // namespace

void CJsonUserInterface::WriteLine(const std::string& json) {
    std::fputs(json.c_str(), out);
    std::fputc('\n', out);
    std::fflush(out);
}

bool CJsonUserInterface::ReadLine(std::string& line) {
    line.clear();
    int c;
    while ((c = std::fgetc(in)) != EOF && c != '\n') line += static_cast<char>(c);
    return c != EOF || !line.empty();
}

void CJsonUserInterface::ShowMessage(const CString& text, const CString& caption, Icon icon) {
    WriteLine(JsonLine()
                  .Text("event", "message")
                  .Text("icon", IconName(icon))
                  .Text("caption", caption)
                  .Text("text", text)
                  .Finish());
}

void CJsonUserInterface::ShowTextDialog(const CString& title, const CString& text, int line,
                                        int column) {
    JsonLine event;
    event.Text("event", "text-dialog")
        .Text("title", title)
        .Text("text", text)
        .Number("line", line)
        .Number("column", column);
    if (pendingPlace) {
        AppendPlace(event, pendingPlace->diagnostic, pendingPlace->file, pendingPlace->message);
        pendingPlace.reset();
    }
    WriteLine(event.Finish());
}

void CJsonUserInterface::AddDiagnostic(const CScriptError& diagnostic, const std::string& file,
                                       const std::string& message) {
    if (diagnostic.kind == ScriptErrorKind::Compile) {
        pendingPlace = Place{diagnostic, file, message};
        return;
    }
    JsonLine event;
    event.Text("event", EventOf(diagnostic.kind));
    AppendPlace(event, diagnostic, file, message);
    WriteLine(event.Finish());
}

bool CJsonUserInterface::EnterNumber(const CString& prompt, bool integerMode, int& value) {
    JsonLine event;
    event.Text("event", "number-entry")
        .Text("mode", integerMode ? "integer" : "double")
        .Text("prompt", prompt);
    std::string line;
    while (ReadLine(line)) {
        int number = 0;
        // An embedded NUL would hide the rest of the line from the parser.
        if (line.find('\0') == std::string::npos && ParseWholeNumber(line.c_str(), number)) {
            value = number;
            WriteLine(event.Number("answer", number).Finish());
            return true;
        }
    }
    WriteLine(event.Null("answer").Finish());
    return false;
}

bool CJsonUserInterface::FileDialog(bool, const CString&, const CString&, unsigned, CString&) {
    return false;
}

bool CJsonUserInterface::PrintText(const CString&, const CString&, int, int, int, int) {
    return false;
}

void CJsonUserInterface::Beep() {}

void CJsonUserInterface::WriteResult(int result, int success, ScriptErrorKind failure) {
    JsonLine event;
    event.Text("event", "result").Number("result", result).Number("success", success);
    const char* stage = StageOf(failure);
    if (result != 1 && stage != nullptr) event.Text("stage", stage);
    WriteLine(event.Finish());
}
