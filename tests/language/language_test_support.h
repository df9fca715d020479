// Shared pieces of the language tests: compile errors, and a host environment
// whose routines record what a script passes.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "support/test_support.h"

using Record = std::vector<std::string>;

// Messages that many cases expect.
inline const char* const undeclared = "Dieser Bezeichner ist nicht vereinbart.";
inline const char* const twice = "Ein Bezeichner darf nur einmal vereinbart werden.";
inline const char* const incompatible = "Typen sind nicht kompatibel";
inline const char* const semicolon = "Strichpunkt (oder Komma) fehlt.";
inline const char* const identifier = "Nach CONST, VAR, oder PROCEDURE muss ein Bezeichner folgen.";

// The message on the marker line of the first compile error shown, or "" if
// the script compiled.
std::string CompileError(const std::string& source);

// Each source shows its message; with errors not shown it fails without a sign.
void ExpectErrors(const std::vector<std::pair<std::string, std::string>>& cases);

// RunText's result for a script that must compile and run without showing anything.
int RunSilently(const std::string& source);

// "merke" and "merkeZahl" record their argument cell by its tag ("i:5", "d:1.5",
// "s:abc", "t60:5"), "setze" writes 7 into its VAR argument. Import records
// "first|second" and splices the second string in when the first is "text".
struct RecordingEnvironment : CBasisPredefinedUmgebung {
    void InitPredefinedArray() override;
    void Import(CScanner* scanner, CString first, CString second) override;
    std::vector<std::string> imports;
};

// Installs a RecordingEnvironment for its life and empties the record.
struct ScopedEnvironment {
    ScopedEnvironment();
    ~ScopedEnvironment();
    RecordingEnvironment environment;
    CBasisPredefinedUmgebung* const previous;
};

// What the recording routines recorded since the last ScopedEnvironment was made.
Record& Recorded();

// Runs `body` behind EXTERN declarations of merke (STRING) and merkeZahl
// (INTEGER), with errors shown; `result` gets RunText's result.
Record RunRecorded(const std::string& body, int* result = nullptr);
