#include "json_line.h"

#include <cstdio>

std::string JsonEscape(const std::string& utf8) {
    std::string out;
    out.reserve(utf8.size());
    for (const char c : utf8) {
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        case '\b': out += "\\b"; break;
        case '\f': out += "\\f"; break;
        default:
            if (static_cast<unsigned char>(c) < 0x20) {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned char>(c));
                out += escaped;
            } else {
                out += c;
            }
        }
    }
    return out;
}

void JsonLine::Key(const char* key) {
    if (body.size() > 1) body += ',';
    body += '"';
    body += key;
    body += "\":";
}

JsonLine& JsonLine::Text(const char* key, const CString& latin1) {
    Key(key);
    body += '"' + JsonEscape(Latin1ToUtf8(latin1.str())) + '"';
    return *this;
}

JsonLine& JsonLine::Utf8Text(const char* key, const std::string& utf8) {
    Key(key);
    body += '"' + JsonEscape(utf8) + '"';
    return *this;
}

JsonLine& JsonLine::Number(const char* key, int number) {
    Key(key);
    body += std::to_string(number);
    return *this;
}

JsonLine& JsonLine::Null(const char* key) {
    Key(key);
    body += "null";
    return *this;
}
