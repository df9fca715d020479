// The language's keywords and their lookup. Keywords are 2 to 9 ASCII
// letters, so a word is folded to upper case into a small buffer and
// compared only with the keywords of its length.
#include "pipeline/keywords.h"

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

// The rows of each length, as indices into keywordRows.
struct ByLength {
    int rows[longestKeyword + 1][keywordRowCount];
    int count[longestKeyword + 1] = {};

    ByLength() {
        for (int i = 0; i < keywordRowCount; ++i) {
            const size_t length = std::strlen(keywordRows[i].text);
            rows[length][count[length]++] = i;
        }
    }
};

}  // namespace

Symbol BuiltInKeyword(const char* text, size_t length) {
    if (length < 2 || length > longestKeyword) return symIdent;
    char upper[longestKeyword];
    for (size_t i = 0; i < length; ++i) {
        const char c = text[i];
        if (c >= 'a' && c <= 'z')
            upper[i] = static_cast<char>(c - 32);
        else if (c >= 'A' && c <= 'Z')
            upper[i] = c;
        else
            return symIdent;  // no keyword holds anything but ASCII letters
    }
    static const ByLength byLength;
    for (int k = 0; k < byLength.count[length]; ++k) {
        const KeywordRow& row = keywordRows[byLength.rows[length][k]];
        if (std::memcmp(row.text, upper, length) == 0) return row.sym;
    }
    return symIdent;
}
