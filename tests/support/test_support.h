// Shared helpers of the tests: a user interface that records what the user
// would see, and short ways to compile and run a script text.
#pragma once

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "qelkern/qelkern.h"

struct UiEvent {
    enum Kind { Message, TextDialog, NumberEntry, FileDialog, Print, Beep } kind;
    CString text;     // message text, dialog text, prompt, printed text
    CString caption;  // message caption, dialog title
    CUserInterface::Icon icon = CUserInterface::IconNone;
    int line = 0;
    int column = 0;
    bool integerMode = false;
};

class RecordingUserInterface : public CUserInterface {
public:
    void ShowMessage(const CString& text, const CString& caption, Icon icon) override;
    void ShowTextDialog(const CString& title, const CString& text, int line, int column) override;
    bool EnterNumber(const CString& prompt, bool integerMode, int& value) override;
    bool FileDialog(bool openFileDialog, const CString& defaultExtension, const CString& filter,
                    unsigned flags, CString& path) override;
    bool PrintText(const CString& title, const CString& text, int leftMargin, int topMargin,
                   int rightMargin, int bottomMargin) override;
    void Beep() override;

    std::vector<UiEvent> events;
    // Answers of the number entry, in order; nullopt or none left: cancelled.
    std::deque<std::optional<int>> numberAnswers;
    // Answer of the next file dialog; empty: cancelled.
    CString fileDialogAnswer;

    std::vector<CString> Messages() const;  // texts of the message boxes
};

// Installs a RecordingUserInterface for the life of the object.
class ScopedRecordingUi {
public:
    ScopedRecordingUi();
    ~ScopedRecordingUi();
    RecordingUserInterface ui;

private:
    CUserInterface* previous;
};

// Hands `control` to the runs of RunScript while in scope.
class ScopedRunControl {
public:
    explicit ScopedRunControl(CRunControl& control) : previous(pRunControl) { pRunControl = &control; }
    ~ScopedRunControl() { pRunControl = previous; }
    ScopedRunControl(const ScopedRunControl&) = delete;
    ScopedRunControl& operator=(const ScopedRunControl&) = delete;

private:
    CRunControl* previous;
};

// A fresh empty directory below the build tree, with its closing '/'.
std::string MakeTempDir(const std::string& name);
// Writes bytes to a file as they are.
void WriteFileBytes(const std::string& path, const std::string& bytes);
std::string ReadFileBytes(const std::string& path);

// Compiles `source` with no prelude (an empty directory), optionally runs it.
// Returns RunScript's result.
int RunText(const std::string& source, bool showErrors = true, bool run = true);

// The listing of `source` as the listing file would hold it; compile errors
// give an empty string.
std::string ListingOf(const std::string& source);
