// The user interface of `qel --ui json`: every dialog and message box becomes
// one JSON object on a line of its own, for programs that drive qel.
#pragma once

#include <cstdio>
#include <string>

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

    // The last line of a run: RunScript's result and the success code.
    void WriteResult(int result, int success);

private:
    void WriteLine(const std::string& json);
    bool ReadLine(std::string& line);

    std::FILE* out;
    std::FILE* in;
};
