// Runs a program of the build as a child process and collects what it did,
// and the JSON lines that `qel --ui json` writes.
#pragma once

#include <string>
#include <vector>

struct CommandResult {
    int exitCode = -1;  // -1: did not exit normally
    std::string out;
    std::string err;

    std::vector<std::string> OutLines() const;
};

// `input` is fed to standard input; `workDir` empty: the current directory.
CommandResult RunCommand(const std::string& program, const std::vector<std::string>& args,
                         const std::string& input = "", const std::string& workDir = "");

CommandResult RunQel(const std::vector<std::string>& args, const std::string& input = "",
                     const std::string& workDir = "");

// Text of the tests is Latin-1; the command line and files want UTF-8.
std::string Utf8(const char* latin1);

std::string ExamplesDir();  // with its closing '/'

// JSON lines; texts are given in Latin-1, as the tests' literals are, and
// hold no character that JSON escapes.
std::string MessageLine(const char* caption, const char* text, const char* icon = "error");
std::string NumberEntryLine(const char* mode, const char* prompt, const char* answer);
// `stage`: of a failed run, "compile" or "run".
std::string ResultLine(int result, int success, const char* stage = nullptr);
