// The command line of `qel`.
#pragma once

#include <string>

struct QelOptions {
    enum class Ui { Console, Json };

    std::string scriptFile;    // the script to run; empty with -e
    std::string scriptText;    // TEXT of -e, as given (UTF-8)
    bool hasScriptText = false;
    std::string preludeDir;    // where extern.qel is looked for, as given
    bool hasPreludeDir = false;
    std::string listingFile;
    bool compileOnly = false;
    bool quiet = false;
    bool help = false;
    Ui ui = Ui::Console;
};

// false: a usage error, described in `error`.
bool ParseOptions(int argc, char** argv, QelOptions& options, std::string& error);

// The directory handed to the engine, with its closing '/': the one given,
// else the directory of the script file, else the current directory.
std::string PreludeDirectory(const QelOptions& options);

extern const char* const qelUsage;
