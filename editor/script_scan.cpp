#include "editor/script_scan.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <locale.h>
#include <string>

#include "qelkern/parser.h"
#include "qelkern/scanner.h"

namespace {
// Numbers are read in the "C" notation whatever locale the host has set.
locale_t CLocale() {
    static locale_t c = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return c;
}

char* EndOfNumber(char* from) {
    char* end = from;
    strtod_l(from, &end, CLocale());
    return end;
}
}  // namespace

CScriptScan::CScriptScan(CTWScriptEdit& editControl, char* text, int textOffset)
    : edit(editControl), buffer(text), offset(textOffset), p(text), plain(text) {}

void CScriptScan::Run() {
    while (*p) Step();
}

void CScriptScan::Step() {
    const char* tokenStart = p;
    const SymbolStyle* style = Lex();
    if (rescan) {
        rescan = false;
        return;
    }
    if (style)
        FormatToken(tokenStart, *style);
    else
        FormatPlainCharacter();
}

// The first rule that fits decides.
const SymbolStyle* CScriptScan::Lex() {
    if (!edit.commentStart.IsEmpty() && !edit.commentEnd.IsEmpty() && StartsWith(edit.commentStart)) {
        SkipBracketComment();
        return &edit.commentStyle;
    }
    if (StartsWith(FehlerMeldungStart)) {
        SkipErrorLine();
        return &edit.errorStyle;
    }
    if (LineCommentFits()) {
        SkipToLineEnd();
        return &edit.commentStyle;
    }
    if (edit.IsStringQuote(*p)) {
        SkipString();
        return &edit.stringStyle;
    }
    if (*p >= '0' && *p <= '9') {
        SkipNumber();
        return &edit.numberStyle;
    }
    if (istIdentifierAnfang(*p)) return Word();
    ++p;
    return nullptr;
}

bool CScriptScan::StartsWith(const char* marker) const {
    return std::strncmp(p, marker, std::strlen(marker)) == 0;
}

bool CScriptScan::LineCommentFits() const {
    return *p == edit.commentChar && (edit.commentChar2 == 0 || p[1] == edit.commentChar2);
}

// Comments nest; an unclosed one runs to the end of the range.
void CScriptScan::SkipBracketComment() {
    const size_t startLength = static_cast<size_t>(edit.commentStart.GetLength());
    const size_t endLength = static_cast<size_t>(edit.commentEnd.GetLength());
    int depth = 1;
    p += startLength;
    while (depth > 0 && *p) {
        if (StartsWith(edit.commentStart)) {
            ++depth;
            p += startLength;
        } else if (StartsWith(edit.commentEnd)) {
            --depth;
            p += endLength;
        } else {
            ++p;
        }
    }
}

// The marker takes at least one more character, even a line end.
void CScriptScan::SkipErrorLine() {
    p += std::strlen(FehlerMeldungStart);
    if (*p) ++p;
    SkipToLineEnd();
}

void CScriptScan::SkipToLineEnd() {
    while (*p && *p != '\r') ++p;
}

// Line ends do not stop a string, and nothing escapes a quote.
void CScriptScan::SkipString() {
    const char quote = *p++;
    while (*p && *p != quote) ++p;
    if (*p == quote) ++p;
}

// "3,14" is one number; the comma of "3, x" belongs to the number as well.
void CScriptScan::SkipNumber() {
    char* end = EndOfNumber(p);
    p = end > p ? end : p + 1;
    if (*p == ',') p = EndOfNumber(p + 1);
}

const SymbolStyle* CScriptScan::Word() {
    char* const start = p;
    while (istIdentifierZeichen(*p)) ++p;
    const std::string word(start, p);
    const int length = static_cast<int>(word.size());

    const int keyword = edit.IsKeyword(word.c_str());
    if (keyword >= 0) {
        edit.ChangeCase(Position(start), Position(p), edit.keywords.Mid(keyword + 1, length));
        if (!edit.commentWord.IsEmpty() && edit.commentWord.CompareNoCase(word.c_str()) == 0) {
            start[0] = edit.commentChar;
            if (start[1] != 0 && edit.commentChar2 != 0) start[1] = edit.commentChar2;
            char* const behind = p;
            p = start;
            if (LineCommentFits()) {
                rescan = true;
                return nullptr;
            }
            // Markers that the line comment rule does not take would bring the
            // scan back to this word for ever: it stays a keyword.
            p = behind;
        }
        return &edit.keywordStyle;
    }
    const int constant = edit.IsConstant(word.c_str());
    if (constant >= 0) {
        edit.ChangeCase(Position(start), Position(p), edit.constants.Mid(constant + 1, length));
        return &edit.constantStyle;
    }
    return nullptr;
}

void CScriptScan::FormatToken(const char* tokenStart, const SymbolStyle& style) {
    edit.SetFormatRange(Position(plain), Position(tokenStart), 0, 0);
    edit.SetFormatRange(Position(tokenStart), Position(p), style.bold, style.colour);
    plain = p;
}

// One character only: the rest of a plain run is formatted when the next
// token closes the run.
void CScriptScan::FormatPlainCharacter() {
    edit.SetFormatRange(Position(plain), Position(plain) + 1, 0, 0);
}
