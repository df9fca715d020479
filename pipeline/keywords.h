// The language's keywords: the rows the scanner enters into its table, and
// a lookup that needs no walk through them.
#pragma once

#include <cstddef>

#include "qelkern/symbols.h"

struct KeywordRow {
    Symbol sym;
    const char* text;
};

// In the order of the scanner's table.
extern const KeywordRow keywordRows[];
extern const int keywordRowCount;

// The keyword spelled `text` in any case, or symIdent.
Symbol BuiltInKeyword(const char* text, size_t length);
