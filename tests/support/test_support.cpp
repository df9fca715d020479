#include "support/test_support.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

void RecordingUserInterface::ShowMessage(const CString& text, const CString& caption, Icon icon) {
    events.push_back({UiEvent::Message, text, caption, icon});
}

void RecordingUserInterface::ShowTextDialog(const CString& title, const CString& text, int line,
                                            int column) {
    UiEvent e{UiEvent::TextDialog, text, title};
    e.line = line;
    e.column = column;
    events.push_back(e);
}

bool RecordingUserInterface::EnterNumber(const CString& prompt, bool integerMode, int& value) {
    UiEvent e{UiEvent::NumberEntry, prompt, CString()};
    e.integerMode = integerMode;
    events.push_back(e);
    if (numberAnswers.empty()) return false;
    std::optional<int> answer = numberAnswers.front();
    numberAnswers.pop_front();
    if (!answer) return false;
    value = *answer;
    return true;
}

bool RecordingUserInterface::FileDialog(bool openFileDialog, const CString& defaultExtension,
                                        const CString& filter, unsigned flags, CString& path) {
    UiEvent e{UiEvent::FileDialog, path, defaultExtension};
    e.integerMode = openFileDialog;
    e.line = static_cast<int>(flags);
    events.push_back(e);
    if (fileDialogAnswer.IsEmpty()) return false;
    path = fileDialogAnswer;
    return true;
}

bool RecordingUserInterface::PrintText(const CString& title, const CString& text, int, int, int,
                                       int) {
    events.push_back({UiEvent::Print, text, title});
    return true;
}

void RecordingUserInterface::Beep() { events.push_back({UiEvent::Beep, CString(), CString()}); }

std::vector<CString> RecordingUserInterface::Messages() const {
    std::vector<CString> texts;
    for (const UiEvent& e : events)
        if (e.kind == UiEvent::Message) texts.push_back(e.text);
    return texts;
}

ScopedRecordingUi::ScopedRecordingUi() : previous(pUserInterface) { pUserInterface = &ui; }
ScopedRecordingUi::~ScopedRecordingUi() { pUserInterface = previous; }

// ctest runs test processes side by side: each gets a directory of its own,
// removed when it ends.
static void RemoveProcessTempDir();

static const std::filesystem::path& ProcessTempDir() {
    static const std::filesystem::path dir =
        std::filesystem::path(QEL_BINARY_DIR) / "test-tmp" / std::to_string(getpid());
    // Registered after `dir` is made, so it runs before `dir` is destroyed.
    static const bool removedAtExit = std::atexit(RemoveProcessTempDir) == 0;
    (void)removedAtExit;
    return dir;
}

static void RemoveProcessTempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(ProcessTempDir(), ignored);
}

std::string MakeTempDir(const std::string& name) {
    namespace fs = std::filesystem;
    fs::path dir = ProcessTempDir() / name;
    fs::remove_all(dir);
    fs::create_directories(dir);
    return dir.string() + "/";
}

void WriteFileBytes(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary);
    out << bytes;
}

std::string ReadFileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

int RunText(const std::string& source, bool showErrors, bool run) {
    static const std::string emptyDir = MakeTempDir("empty-prelude");
    std::string text = source;
    return RunScript(emptyDir.c_str(), text.data(), static_cast<int>(text.size()), showErrors, run);
}

std::string ListingOf(const std::string& source) {
    static const std::string dir = MakeTempDir("listing");
    const std::string file = dir + "listing.asm";
    std::filesystem::remove(file);
    CString saved = DebugListingFile;
    DebugListingFile = file.c_str();
    RunText(source, false, false);
    DebugListingFile = saved;
    return Utf8ToLatin1(ReadFileBytes(file));
}
