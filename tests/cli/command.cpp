#include "tests/cli/command.h"

#include <sys/wait.h>

#include <cstdio>
#include <sstream>

#include "support/test_support.h"

namespace {

std::string ShellQuote(const std::string& word) {
    std::string quoted = "'";
    for (const char c : word) {
        if (c == '\'') quoted += "'\\''";
        else quoted += c;
    }
    return quoted + "'";
}

std::string ScratchDir() {
    static const std::string dir = MakeTempDir("cli-command");
    return dir;
}

}  // namespace

std::vector<std::string> CommandResult::OutLines() const {
    std::vector<std::string> lines;
    std::istringstream stream(out);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

CommandResult RunCommand(const std::string& program, const std::vector<std::string>& args,
                         const std::string& input, const std::string& workDir) {
    const std::string inFile = ScratchDir() + "stdin.txt";
    const std::string errFile = ScratchDir() + "stderr.txt";
    WriteFileBytes(inFile, input);

    std::string command;
    if (!workDir.empty()) command += "cd " + ShellQuote(workDir) + " && ";
    command += ShellQuote(program);
    for (const std::string& arg : args) command += " " + ShellQuote(arg);
    command += " <" + ShellQuote(inFile) + " 2>" + ShellQuote(errFile);

    CommandResult result;
    std::FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return result;
    char buffer[4096];
    size_t count;
    while ((count = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) result.out.append(buffer, count);
    const int status = pclose(pipe);
    if (status != -1 && WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
    result.err = ReadFileBytes(errFile);
    return result;
}

CommandResult RunQel(const std::vector<std::string>& args, const std::string& input,
                     const std::string& workDir) {
    return RunCommand(QEL_CLI, args, input, workDir);
}

std::string Utf8(const char* latin1) { return Latin1ToUtf8(latin1); }

std::string ExamplesDir() { return std::string(QEL_SOURCE_DIR) + "/examples/"; }

std::string MessageLine(const char* caption, const char* text, const char* icon) {
    return R"({"event":"message","icon":")" + std::string(icon) + R"(","caption":")" +
           Utf8(caption) + R"(","text":")" + Utf8(text) + R"("})";
}

std::string NumberEntryLine(const char* mode, const char* prompt, const char* answer) {
    return R"({"event":"number-entry","mode":")" + std::string(mode) + R"(","prompt":")" +
           Utf8(prompt) + R"(","answer":)" + answer + "}";
}

std::string ResultLine(int result, int success, const char* stage) {
    return R"({"event":"result","result":)" + std::to_string(result) + R"(,"success":)" +
           std::to_string(success) + (stage ? R"(,"stage":")" + std::string(stage) + "\"" : "") + "}";
}
