// The JSON lines that `qel --ui json` is expected to write. Texts are given
// in Latin-1, as the tests' string literals are, and written as UTF-8.
#pragma once

#include <string>

std::string MessageLine(const char* caption, const char* text, const char* icon = "error");
std::string NumberEntryLine(const char* mode, const char* prompt, const char* answer);
std::string ResultLine(int result, int success);
