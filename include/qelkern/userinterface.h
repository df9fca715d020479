// Everything the user sees goes through one service object. A host installs
// its own (a GUI, a recorder in tests); null means the built-in console one.
#pragma once

#include <cstdio>

#include "qelkern/platform.h"

// Flags of the file dialog, with the framework's names.
enum : unsigned {
    OFN_READONLY = 0x00000001,
    OFN_OVERWRITEPROMPT = 0x00000002,
    OFN_HIDEREADONLY = 0x00000004,
    OFN_NOCHANGEDIR = 0x00000008,
    OFN_PATHMUSTEXIST = 0x00000800,
    OFN_FILEMUSTEXIST = 0x00001000,
};

class QELKERN_API CUserInterface {
public:
    enum Icon { IconNone, IconInformation, IconError };

    virtual ~CUserInterface();

    // A message box: shows the text under the caption and waits for the user.
    virtual void ShowMessage(const CString& text, const CString& caption, Icon icon);
    // The read-only text dialog that shows a compile error in place.
    virtual void ShowTextDialog(const CString& title, const CString& text, int line, int column);
    // The number entry dialog; false: cancelled. Accepts whole numbers only.
    virtual bool EnterNumber(const CString& prompt, bool integerMode, int& value);
    // The open or save file dialog. `path` comes in as the initial file name
    // and goes out as the chosen path; false: cancelled.
    virtual bool FileDialog(bool openFileDialog, const CString& defaultExtension,
                            const CString& filter, unsigned flags, CString& path);
    // Prints plain text with the given margins (twips); false: nothing printed.
    virtual bool PrintText(const CString& title, const CString& text, int leftMargin,
                           int topMargin, int rightMargin, int bottomMargin);
    // The short warning sound of the desktop.
    virtual void Beep();
};

// The console implementation: boxes become blocks of text on `out`, the error
// dialog shows the lines around the error, questions are read from `in`.
// Output is UTF-8.
class QELKERN_API CConsoleUserInterface : public CUserInterface {
public:
    explicit CConsoleUserInterface(std::FILE* out = stdout, std::FILE* in = stdin);

    void ShowMessage(const CString& text, const CString& caption, Icon icon) override;
    void ShowTextDialog(const CString& title, const CString& text, int line, int column) override;
    bool EnterNumber(const CString& prompt, bool integerMode, int& value) override;
    bool FileDialog(bool openFileDialog, const CString& defaultExtension, const CString& filter,
                    unsigned flags, CString& path) override;
    bool PrintText(const CString& title, const CString& text, int leftMargin, int topMargin,
                   int rightMargin, int bottomMargin) override;
    void Beep() override;

    // Where PrintText writes its pages (UTF-8); empty: "qel-druck.txt" in the
    // working directory.
    CString printFile;

protected:
    void WriteUtf8(const CString& latin1Text);
    bool ReadLine(CString& line);  // false at end of input; the line is Latin-1

    std::FILE* out;
    std::FILE* in;
};

// null: the built-in console implementation is used.
QELKERN_API extern CUserInterface* pUserInterface;

// The service in force: pUserInterface, or the built-in console one.
QELKERN_API CUserInterface& GetUserInterface();

// Reads a whole number as the number entry dialog accepts it: optional blanks,
// optional sign, decimal digits, optional blanks; nothing else, and nothing
// outside the 32-bit range. false: no whole number.
QELKERN_API bool ParseWholeNumber(const char* text, int& value);
