// The language's keywords and their lookup. Keywords are 2 to 9 ASCII
// letters, so a word is compared only with the keywords of its length and
// first letter.
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
constexpr int letters = 26;
constexpr int rowsPerCell = 4;

// The rows by length and first letter: most words are ruled out by a
// look at both, the rest compared with a row or two.
struct ByLengthAndLetter {
    int8_t rows[longestKeyword + 1][letters][rowsPerCell];

    ByLengthAndLetter() {
        std::memset(rows, -1, sizeof rows);
        for (int i = 0; i < keywordRowCount; ++i) {
            const char* text = keywordRows[i].text;
            int8_t* cell = rows[std::strlen(text)][text[0] - 'A'];
            int k = 0;
            while (cell[k] >= 0) ++k;
            cell[k] = static_cast<int8_t>(i);
        }
    }
};

// The index of `c` as an ASCII letter in either case; -1 for anything else.
int LetterIndex(char c) {
    if (c >= 'A' && c <= 'Z') return c - 'A';
    if (c >= 'a' && c <= 'z') return c - 'a';
    return -1;
}

bool SpellsKeyword(const char* text, size_t length, const char* keyword) {
    for (size_t i = 1; i < length; ++i) {
        if (LetterIndex(text[i]) != keyword[i] - 'A') return false;
    }
    return true;
}

}  // namespace

Symbol BuiltInKeyword(const char* text, size_t length) {
    if (length < 2 || length > longestKeyword) return symIdent;
    const int first = LetterIndex(text[0]);
    if (first < 0) return symIdent;
    static const ByLengthAndLetter table;
    for (int8_t row : table.rows[length][first]) {
        if (row < 0) break;
        if (SpellsKeyword(text, length, keywordRows[row].text)) return keywordRows[row].sym;
    }
    return symIdent;
}
