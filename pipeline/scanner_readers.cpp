// The readers that GetSym dispatches to: words, numbers, comments, strings.
#include <climits>
#include <cstdlib>

#include "qelkern/numbers.h"
#include "qelkern/scanner.h"

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Decimal digits by strtol rules; what does not fit in 32 bits saturates.
int saturatedInteger(const char* text, const char** end) {
    char* stop = nullptr;
    long long number = std::strtoll(text, &stop, 10);
    *end = stop;
    if (number > INT_MAX) return INT_MAX;
    if (number < INT_MIN) return INT_MIN;
    return static_cast<int>(number);
}

}  // namespace

void CScanner::Identifier() {
    id.Empty();
    do {
        id += ch;
        GetCh();
    } while (istIdentifierZeichen(ch));
    sym = symIdent;
    for (int row = 0; row < keywordCount; ++row) {
        if (id.CompareNoCase(keywords[row].name) == 0) {
            sym = keywords[row].sym;
            return;
        }
    }
}

void CScanner::Number() {
    sym = symNumber;
    CString text;
    bool hasPoint = false;
    while (isDigit(ch) || ch == '.') {
        hasPoint = hasPoint || ch == '.';
        text += ch;
        GetCh();
    }
    const char* start = text;
    const char* end = start;
    if (hasPoint) {
        char* stop = nullptr;
        value = zahlAusText(start, &stop);
        end = stop;
    } else {
        value = saturatedInteger(start, &end);
    }
    if (end != start + text.GetLength()) Mark("Fehler bei der Zahlenangabe.");
}

// Entered on the '*' of "(*". Nesting is counted, not recursed, so that deep
// nesting cannot exhaust the stack; an unclosed comment is reported once.
void CScanner::comment() {
    int depth = 1;
    GetCh();
    for (;;) {
        if (ch == '(') {
            GetCh();
            if (ch == '*') {
                ++depth;
                GetCh();
            }
            continue;
        }
        if (ch == '*') {
            GetCh();
            if (ch == ')') {
                GetCh();
                if (--depth == 0) return;
            }
            continue;
        }
        if (eof) {
            Mark("Kommentar wurde nicht beendet");
            return;
        }
        GetCh();
    }
}

// Entered on the opening double quote. A backslash takes the next character
// literally; there are no control escapes.
void CScanner::string() {
    sym = symNumber;
    CString collected;
    value.SetString(collected);
    GetCh();
    for (;;) {
        if (ch == '"') {
            GetCh();
            break;
        }
        if (ch == '\\') GetCh();
        if (ch == 0) {
            Mark("Ende der Zeichenkette fehlt.");
            break;
        }
        collected += ch;
        GetCh();
    }
    value.SetString(collected);
}
