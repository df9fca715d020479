#include "tests/cli/json_lines.h"

#include "tests/cli/command.h"

// The tests' texts hold no character that JSON escapes.
std::string MessageLine(const char* caption, const char* text, const char* icon) {
    return R"({"event":"message","icon":")" + std::string(icon) + R"(","caption":")" +
           Utf8(caption) + R"(","text":")" + Utf8(text) + R"("})";
}

std::string NumberEntryLine(const char* mode, const char* prompt, const char* answer) {
    return R"({"event":"number-entry","mode":")" + std::string(mode) + R"(","prompt":")" +
           Utf8(prompt) + R"(","answer":)" + answer + "}";
}

std::string ResultLine(int result, int success) {
    return R"({"event":"result","result":)" + std::to_string(result) + R"(,"success":)" +
           std::to_string(success) + "}";
}
