#include "command_line.h"

CommandLine ParseCommandLine(const std::vector<std::string>& arguments) {
    CommandLine line;
    bool optionsEnded = false;
    for (const std::string& argument : arguments) {
        if (!optionsEnded && (argument == "--help" || argument == "-h")) {
            line.action = CommandLine::Help;
            return line;
        }
        if (!optionsEnded && argument == "--version") {
            line.action = CommandLine::Version;
            return line;
        }
        if (!optionsEnded && argument == "--") {
            optionsEnded = true;
            continue;
        }
        if (!optionsEnded && argument.size() > 1 && argument[0] == '-') {
            line.action = CommandLine::UsageError;
            line.error = "unknown option '" + argument + "'";
            return line;
        }
        if (!line.file.empty()) {
            line.action = CommandLine::UsageError;
            line.error = "only one file can be edited at a time";
            return line;
        }
        line.file = argument;
    }
    return line;
}
