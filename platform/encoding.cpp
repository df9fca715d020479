#include "qelkern/platform.h"

// Length of the UTF-8 sequence starting at `i` and its code point; 0 if invalid.
static size_t DecodeUtf8At(const std::string& bytes, size_t i, unsigned& codePoint) {
    const auto byte = [&](size_t k) { return static_cast<unsigned char>(bytes[k]); };
    unsigned char lead = byte(i);
    size_t length;
    unsigned min;
    if (lead < 0x80) { codePoint = lead; return 1; }
    if ((lead & 0xE0) == 0xC0) { length = 2; codePoint = lead & 0x1F; min = 0x80; }
    else if ((lead & 0xF0) == 0xE0) { length = 3; codePoint = lead & 0x0F; min = 0x800; }
    else if ((lead & 0xF8) == 0xF0) { length = 4; codePoint = lead & 0x07; min = 0x10000; }
    else return 0;
    if (i + length > bytes.size()) return 0;
    for (size_t k = 1; k < length; ++k) {
        if ((byte(i + k) & 0xC0) != 0x80) return 0;
        codePoint = (codePoint << 6) | (byte(i + k) & 0x3F);
    }
    if (codePoint < min || codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF)) return 0;
    return length;
}

bool IsValidUtf8(const std::string& bytes) {
    unsigned codePoint;
    for (size_t i = 0; i < bytes.size();) {
        size_t length = DecodeUtf8At(bytes, i, codePoint);
        if (length == 0) return false;
        i += length;
    }
    return true;
}

std::string Utf8ToLatin1(const std::string& utf8) {
    std::string out;
    out.reserve(utf8.size());
    unsigned codePoint;
    for (size_t i = 0; i < utf8.size();) {
        size_t length = DecodeUtf8At(utf8, i, codePoint);
        if (length == 0) {  // a stray byte is taken as Latin-1
            out += utf8[i++];
            continue;
        }
        out += codePoint <= 0xFF ? static_cast<char>(codePoint) : '?';
        i += length;
    }
    return out;
}

std::string DecodeToLatin1(const std::string& bytes) {
    if (!IsValidUtf8(bytes)) return bytes;
    const bool hasBom = bytes.size() >= 3 && bytes.compare(0, 3, "\xEF\xBB\xBF") == 0;
    return Utf8ToLatin1(hasBom ? bytes.substr(3) : bytes);
}

std::string Latin1ToUtf8(const std::string& latin1) {
    std::string out;
    out.reserve(latin1.size() + latin1.size() / 8);
    for (char ch : latin1) {
        unsigned char c = static_cast<unsigned char>(ch);
        if (c < 0x80) {
            out += ch;
        } else {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return out;
}
