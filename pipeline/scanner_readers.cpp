// The readers that GetSym dispatches to: words, numbers, comments, strings.
#include <algorithm>
#include <climits>
#include <cstdlib>
#include <string>
#include <string_view>

#include "pipeline/keywords.h"
#include "qelkern/numbers.h"
#include "qelkern/scanner.h"

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isNumberByte(char c) { return isDigit(c) || c == '.'; }

// istIdentifierZeichen, looked up: the scanner asks it for every byte of a word.
bool isWordByte(char c) {
    static const struct Table {
        bool word[256];
        Table() {
            for (int b = 0; b < 256; ++b) word[b] = istIdentifierZeichen(static_cast<char>(b)) != 0;
        }
    } table;
    return table.word[static_cast<unsigned char>(c)];
}

// Decimal digits by strtol rules; what does not fit in 32 bits saturates.
int saturatedInteger(const char* text, const char** end) {
    char* stop = nullptr;
    long long number = std::strtoll(text, &stop, 10);
    *end = stop;
    if (number > INT_MAX) return INT_MAX;
    if (number < INT_MIN) return INT_MIN;
    return static_cast<int>(number);
}

// `ch` and the run of bytes behind it that `belongs` accepts; then reads the
// character behind the run, as GetCh would one by one. No byte of a run is a
// line feed, so only `position` moves.
template <class Accepts>
std::string TakeRun(CScanner& s, Accepts belongs) {
    const int end = std::min(s.length, static_cast<int>(s.buffer.size()));
    int stop = s.index;
    if (stop >= 0)
        while (stop < end && belongs(s.buffer[static_cast<size_t>(stop)])) ++stop;
    std::string word(1, s.ch);
    if (stop > s.index) word.append(s.buffer.data() + s.index, static_cast<size_t>(stop - s.index));
    s.position += stop - s.index;
    s.index = stop;
    s.GetCh();
    return word;
}

}  // namespace

// The language's own keywords are found by BuiltInKeyword; rows that a host
// entered behind them are searched in turn.
void CScanner::Identifier() {
    const std::string word = TakeRun(*this, isWordByte);
    id = CString(std::string_view(word));
    sym = BuiltInKeyword(word.data(), word.size());
    if (sym != symIdent) return;
    for (int row = keywordRowCount; row < keywordCount; ++row) {
        if (id.CompareNoCase(keywords[row].name) == 0) {
            sym = keywords[row].sym;
            return;
        }
    }
}

void CScanner::Number() {
    sym = symNumber;
    const std::string text = TakeRun(*this, isNumberByte);
    const char* start = text.c_str();
    const char* end = start;
    if (text.find('.') != std::string::npos) {
        char* stop = nullptr;
        value = zahlAusText(start, &stop);
        end = stop;
    } else {
        value = saturatedInteger(start, &end);
    }
    if (end != start + text.size()) Mark("Fehler bei der Zahlenangabe.");
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
