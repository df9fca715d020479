#include <cstring>

#include "qelkern/platform.h"

namespace {

// Length of the UTF-8 sequence at `at` and its code point; 0 if invalid.
size_t DecodeUtf8At(const unsigned char* at, size_t left, unsigned& codePoint) {
    const unsigned char lead = at[0];
    size_t length;
    unsigned min;
    if (lead < 0x80) { codePoint = lead; return 1; }
    if ((lead & 0xE0) == 0xC0) { length = 2; codePoint = lead & 0x1F; min = 0x80; }
    else if ((lead & 0xF0) == 0xE0) { length = 3; codePoint = lead & 0x0F; min = 0x800; }
    else if ((lead & 0xF8) == 0xF0) { length = 4; codePoint = lead & 0x07; min = 0x10000; }
    else return 0;
    if (length > left) return 0;
    for (size_t k = 1; k < length; ++k) {
        if ((at[k] & 0xC0) != 0x80) return 0;
        codePoint = (codePoint << 6) | (at[k] & 0x3F);
    }
    if (codePoint < min || codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF)) return 0;
    return length;
}

const unsigned char* BytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

// Scripts are mostly ASCII: eight bytes are tested at once.
size_t AsciiRun(const unsigned char* bytes, size_t size) {
    constexpr uint64_t highBits = 0x8080808080808080ull;
    size_t i = 0;
    for (uint64_t word; i + 8 <= size; i += 8) {
        std::memcpy(&word, bytes + i, 8);
        if (word & highBits) break;
    }
    while (i < size && bytes[i] < 0x80) ++i;
    return i;
}

}  // namespace

bool IsValidUtf8(const std::string& bytes) {
    const unsigned char* at = BytesOf(bytes);
    const size_t size = bytes.size();
    unsigned codePoint;
    for (size_t i = 0; i < size;) {
        i += AsciiRun(at + i, size - i);
        if (i == size) break;
        const size_t length = DecodeUtf8At(at + i, size - i, codePoint);
        if (length == 0) return false;
        i += length;
    }
    return true;
}

std::string Utf8ToLatin1(const std::string& utf8) {
    const unsigned char* at = BytesOf(utf8);
    const size_t size = utf8.size();
    std::string out;
    out.reserve(size);
    unsigned codePoint;
    for (size_t i = 0; i < size;) {
        const size_t ascii = AsciiRun(at + i, size - i);
        out.append(utf8, i, ascii);
        i += ascii;
        if (i == size) break;
        const size_t length = DecodeUtf8At(at + i, size - i, codePoint);
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
    return DecodeToLatin1(std::string(bytes));
}

std::string DecodeToLatin1(std::string&& bytes) {
    if (AsciiRun(BytesOf(bytes), bytes.size()) == bytes.size()) return std::move(bytes);
    if (!IsValidUtf8(bytes)) return std::move(bytes);
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
