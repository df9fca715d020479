// The command line of `qel`.
#pragma once

#include <cstdint>
#include <string>

struct QelOptions {
    enum class Ui { Console, Json };

    std::string scriptFile;    // the script to run; empty with -e; "-": standard input
    std::string scriptText;    // TEXT of -e, as given (UTF-8)
    bool hasScriptText = false;
    std::string preludeDir;    // where extern.qel is looked for, as given
    bool hasPreludeDir = false;
    std::string listingFile;
    bool listingLines = false;
    bool compileOnly = false;
    bool quiet = false;
    bool help = false;
    bool version = false;
    Ui ui = Ui::Console;
    // Limits of the run; 0: none.
    uint64_t maxSteps = 0;
    uint64_t timeoutMilliseconds = 0;
    uint64_t maxMemoryBytes = 0;

    bool ScriptFromStdin() const { return scriptFile == "-"; }
    bool HasLimits() const { return maxSteps || timeoutMilliseconds || maxMemoryBytes; }
};

// false: a usage error, described in `error`.
bool ParseOptions(int argc, char** argv, QelOptions& options, std::string& error);

// The directory handed to the engine, with its closing '/': the one given;
// else the directory of the script file (the current one for -e and -) if it
// holds extern.qel; else `installedDir` if that holds one; else the former.
std::string PreludeDirectory(const QelOptions& options, const std::string& installedDir);

extern const char* const qelUsage;
