// The scanner's classes of bytes, looked up: it asks for every byte of the text.
#pragma once

#include <array>
#include <cstdint>

namespace qelkern {

enum CharClass : uint8_t {
    blankByte = 1,      // skipped between symbols: control characters and space
    wordStartByte = 2,  // istIdentifierAnfang
    wordByte = 4,       // istIdentifierZeichen
    numberByte = 8,     // a digit or the point
};

// A letter, '_' or one of ä ö ü ß Ä Ö Ü in Latin-1.
constexpr bool StartsWord(unsigned char u) {
    if (u == '_' || (u >= 'A' && u <= 'Z') || (u >= 'a' && u <= 'z')) return true;
    return u == 0xE4 || u == 0xF6 || u == 0xFC || u == 0xDF || u == 0xC4 || u == 0xD6 || u == 0xDC;
}

constexpr std::array<uint8_t, 256> MakeCharClasses() {
    std::array<uint8_t, 256> classes{};
    for (int b = 0; b < 256; ++b) {
        const bool digit = b >= '0' && b <= '9';
        uint8_t set = 0;
        if (b <= 32) set |= blankByte;
        if (StartsWord(static_cast<unsigned char>(b))) set |= wordStartByte | wordByte;
        if (digit) set |= wordByte | numberByte;
        if (b == '.') set |= numberByte;
        classes[static_cast<size_t>(b)] = set;
    }
    return classes;
}

inline constexpr std::array<uint8_t, 256> charClasses = MakeCharClasses();

inline bool HasClass(char c, CharClass wanted) {
    return (charClasses[static_cast<unsigned char>(c)] & wanted) != 0;
}

}  // namespace qelkern
