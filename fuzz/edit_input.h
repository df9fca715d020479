// How the editor fuzzer reads its input, and what the actions do to a text
// by the widget's rules, so that the harness can predict it.
#pragma once

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <string>

namespace fuzz {

// Reads the input as a row of actions, each a byte and its arguments.
class EditInput {
public:
    EditInput(const uint8_t* bytes, size_t length) : at(bytes), end(bytes + length) {}
    bool Empty() const { return at == end; }
    uint8_t Byte() { return at == end ? 0 : *at++; }
    // Up to 31 characters; a NUL would end the text early, so it is a blank.
    std::string Text() {
        std::string text(Byte() % 32, ' ');
        for (char& c : text) c = static_cast<char>(Byte());
        for (char& c : text)
            if (c == '\0') c = ' ';
        return text;
    }

private:
    const uint8_t* at;
    const uint8_t* end;
};

// The widget's paragraph ends: "\r\n" and "\n" are "\r".
inline std::string AsParagraphs(const std::string& text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        out += text[i] == '\n' ? '\r' : text[i];
    }
    return out;
}

// What typing gives: only printable characters, return and tab go in.
inline std::string AsTyped(const std::string& text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        if (c == '\n' || c == '\r') out += '\r';
        else if (c == '\t' || (c >= 32 && c != 127)) out += static_cast<char>(c);
    }
    return out;
}

// The colouring only changes the case of words, never their letters.
inline std::string Folded(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

inline std::string Spliced(const std::string& text, int start, int end, const std::string& inserted) {
    return text.substr(0, static_cast<size_t>(start)) + inserted + text.substr(static_cast<size_t>(end));
}

}  // namespace fuzz
