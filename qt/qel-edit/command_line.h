// qel-edit's command line, read before any window exists, so that --help and
// --version work without a display.
#pragma once

#include <string>
#include <vector>

struct CommandLine {
    enum Action { Edit, Help, Version, UsageError };
    Action action = Edit;
    std::string file;   // empty: a new script
    std::string error;  // for UsageError, in English
};

CommandLine ParseCommandLine(const std::vector<std::string>& arguments);
