// Shared pieces of the language tests: the first compile error's message,
// and an environment whose routine "merke" records what a script passes.
#pragma once

#include <string>
#include <vector>

#include "support/test_support.h"

// The message on the marker line of the first compile error, or "" if the
// script compiled. Runs with errors shown, through the recording UI.
std::string CompileError(const std::string& source);

// A host environment for the tests: "merke" and "merkeZahl" record their last
// argument cell (text by its tag, e.g. "i:5", "d:1.5", "s:abc"), and "setze"
// writes 7 into its VAR argument. Import records its strings and splices the
// second one into the text when the first is "text".
class RecordingEnvironment : public CBasisPredefinedUmgebung {
public:
    void InitPredefinedArray() override;
    void Import(CScanner* scanner, CString first, CString second) override;

    std::vector<std::string> imports;
};

// Installs a RecordingEnvironment as the process's environment for its life,
// and empties the record.
class ScopedEnvironment {
public:
    ScopedEnvironment();
    ~ScopedEnvironment();
    RecordingEnvironment environment;

private:
    CBasisPredefinedUmgebung* previous;
};

// What "merke" recorded since the last ScopedEnvironment was made.
std::vector<std::string>& Recorded();

// The declarations of the recording routines, to put in front of a script.
extern const char* const recordingDeclarations;

// Runs `source` behind the recording declarations with errors shown and
// returns what merke recorded; `result` gets RunScript's result.
std::vector<std::string> RunRecorded(const std::string& body, int* result = nullptr);
