// The user interface of `qel --ui json`: every dialog and message box becomes
// one JSON object on a line of its own, for programs that drive qel.
#pragma once

#include <cstdio>
#include <optional>
#include <string>

#include "qelkern/diagnostics.h"
#include "qelkern/userinterface.h"

class CJsonUserInterface : public CUserInterface {
public:
    CJsonUserInterface(std::FILE* outStream, std::FILE* inStream) : out(outStream), in(inStream) {}

    void ShowMessage(const CString& text, const CString& caption, Icon icon) override;
    void ShowTextDialog(const CString& title, const CString& text, int line, int column) override;
    // One line of input per answer; a line that is no whole number is
    // rejected and the next one read; end of input cancels.
    bool EnterNumber(const CString& prompt, bool integerMode, int& value) override;
    // File dialogs are cancelled, nothing is printed, the beep is silent:
    // standard output carries the JSON lines alone.
    bool FileDialog(bool openFileDialog, const CString& defaultExtension, const CString& filter,
                    unsigned flags, CString& path) override;
    bool PrintText(const CString& title, const CString& text, int leftMargin, int topMargin,
                   int rightMargin, int bottomMargin) override;
    void Beep() override;

    // A diagnostic of the engine, with its file and message as UTF-8: the
    // compile error adds its place to the text-dialog event that follows;
    // scanner errors, warnings and run-time errors are events of their own.
    void AddDiagnostic(const CScriptError& diagnostic, const std::string& file,
                       const std::string& message);

    // The last line of a run: RunScript's result and the success code; for a
    // failed run also the stage ("compile" or "run") of `failure`.
    void WriteResult(int result, int success, ScriptErrorKind failure = ScriptErrorKind::None);

private:
    void WriteLine(const std::string& json);
    bool ReadLine(std::string& line);

    std::FILE* out;
    std::FILE* in;
    // The compile error whose place the next text-dialog event carries.
    struct Place {
        CScriptError diagnostic;
        std::string file;
        std::string message;
    };
    std::optional<Place> pendingPlace;
};
