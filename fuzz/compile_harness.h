// One input of the compile fuzzer, shared by the fuzzer and by the test that
// replays the kept inputs in every ordinary build.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "qelkern/qelkern.h"

namespace fuzz {

// Shows nothing and answers every question with "cancel".
class SilentUserInterface : public CUserInterface {
public:
    void ShowMessage(const CString&, const CString&, Icon) override { ++shown; }
    void ShowTextDialog(const CString&, const CString&, int, int) override { ++shown; }
    bool EnterNumber(const CString&, bool, int&) override { return false; }
    bool FileDialog(bool, const CString&, const CString&, unsigned, CString&) override { return false; }
    bool PrintText(const CString&, const CString&, int, int, int, int) override { return false; }
    void Beep() override {}

    long shown = 0;
};

// The built-in routines, and an IMPORT that splices its second string into
// the text when the first is "text", as a host may.
class SplicingEnvironment : public CBasisPredefinedUmgebung {
public:
    void Import(CScanner* scanner, CString first, CString second) override {
        if (first == "text") scanner->InsertText(second);
    }
};

// The first byte chooses whether errors are shown; the rest is the script.
// There is no prelude. Returns RunScript's result.
inline int CompileOne(const uint8_t* data, size_t size) {
    static SilentUserInterface ui;
    static SplicingEnvironment environment;
    pUserInterface = &ui;
    pBasisPredefinedUmgebung = &environment;
    if (size == 0) return 0;
    const bool showErrors = (data[0] & 1) != 0;
    std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    return RunScript("/nonexistent-qel-prelude/", text.data(), static_cast<int>(text.size()),
                     showErrors, false);
}

}  // namespace fuzz
