// One JSON object on one line, built field by field.
#pragma once

#include <string>

#include "qelkern/platform.h"

class JsonLine {
public:
    JsonLine& Text(const char* key, const CString& latin1);  // written as UTF-8
    JsonLine& Utf8Text(const char* key, const std::string& utf8);
    JsonLine& Number(const char* key, int number);
    JsonLine& Null(const char* key);
    // The object with its closing brace, without a line end.
    std::string Finish() const { return body + "}"; }

private:
    void Key(const char* key);
    std::string body = "{";
};

// `utf8` as the contents of a JSON string: quotes, backslashes and control
// characters escaped, everything else as it is.
std::string JsonEscape(const std::string& utf8);
