// The language's keywords and their lookup. Keywords are 2 to 9 ASCII
// letters, so a word is folded to upper case, packed into two integers and
// compared only with the keywords of its length.
#include "pipeline/keywords.h"

#include <cstdint>
#include <cstring>

const KeywordRow keywordRows[] = {
    {symDo, "DO"},           {symIf, "IF"},           {symEnd, "END"},
    {symVar, "VAR"},         {symThen, "THEN"},       {symElse, "ELSE"},
    {symElsif, "ELSIF"},     {symBegin, "BEGIN"},     {symConst, "CONST"},
    {symWhile, "WHILE"},     {symRepeat, "REPEAT"},   {symUntil, "UNTIL"},
    {symFor, "FOR"},         {symTo, "TO"},           {symDownto, "DOWNTO"},
    {symBreak, "BREAK"},     {symContinue, "CONTINUE"}, {symLoop, "LOOP"},
    {symDouble, "DOUBLE"},   {symInteger, "INTEGER"}, {symString, "STRING"},
    {symArray, "ARRAY"},     {symOf, "OF"},           {symHigh, "HIGH"},
    {symProcedure, "PROCEDURE"}, {symFunction, "FUNCTION"}, {symBitOr, "BITOR"},
    {symBitAnd, "BITAND"},   {symBitNot, "BITNOT"},   {symOr, "OR"},
    {symAnd, "AND"},         {symNot, "NOT"},         {symExit, "EXIT"},
    {symExtern, "EXTERN"},   {symTypedef, "TYPEDEF"}, {symImport, "IMPORT"},
};
const int keywordRowCount = sizeof keywordRows / sizeof keywordRows[0];

namespace {

constexpr size_t longestKeyword = 9;

// A word of up to nine ASCII letters folded to upper case and packed into
// two integers, so that a keyword is one comparison of numbers; 0 for
// anything that cannot be a keyword.
struct Packed {
    uint64_t head = 0;  // the first eight letters
    uint64_t tail = 0;  // the ninth, and the length
    bool operator==(const Packed&) const = default;
};

Packed Pack(const char* text, size_t length) {
    Packed packed;
    if (length < 2 || length > longestKeyword) return {};
    for (size_t i = 0; i < length; ++i) {
        char c = text[i];
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 32);
        else if (c < 'A' || c > 'Z')
            return {};  // no keyword holds anything but ASCII letters
        if (i < 8)
            packed.head |= static_cast<uint64_t>(static_cast<unsigned char>(c)) << (8 * i);
        else
            packed.tail = static_cast<unsigned char>(c);
    }
    packed.tail |= static_cast<uint64_t>(length) << 8;
    return packed;
}

// The rows of each length, packed.
struct ByLength {
    struct Row {
        Packed packed;
        Symbol sym;
    };
    Row rows[longestKeyword + 1][keywordRowCount];
    int count[longestKeyword + 1] = {};

    ByLength() {
        for (int i = 0; i < keywordRowCount; ++i) {
            const size_t length = std::strlen(keywordRows[i].text);
            rows[length][count[length]++] = {Pack(keywordRows[i].text, length), keywordRows[i].sym};
        }
    }
};

}  // namespace

Symbol BuiltInKeyword(const char* text, size_t length) {
    const Packed packed = Pack(text, length);
    if (packed.tail == 0) return symIdent;
    static const ByLength byLength;
    for (int k = 0; k < byLength.count[length]; ++k) {
        if (byLength.rows[length][k].packed == packed) return byLength.rows[length][k].sym;
    }
    return symIdent;
}
