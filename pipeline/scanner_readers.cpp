// The readers that GetSym dispatches to: words, numbers, comments, strings.
#include <algorithm>
#include <climits>
#include <string>
#include <string_view>

#include "pipeline/char_classes.h"
#include "pipeline/keywords.h"
#include "pipeline/scanner_step.h"
#include "qelkern/numbers.h"
#include "qelkern/scanner.h"

namespace {

using qelkern::HasClass;

// Decimal digits as strtol reads them; what does not fit in 32 bits saturates.
int SaturatedInteger(std::string_view digits) {
    long long number = 0;
    for (char digit : digits) {
        number = number * 10 + (digit - '0');
        if (number > INT_MAX) return INT_MAX;
    }
    return static_cast<int>(number);
}

// `ch` and the run of bytes behind it of class `belongs`; then reads the
// character behind the run, as GetCh would one by one. No byte of a run is a
// line feed, so only `position` moves. The run is looked at in the buffer,
// where `ch` stands just before `index`, and copied only where it does not:
// valid up to the next run.
std::string_view TakeRun(CScanner& s, qelkern::CharClass belongs) {
    const int end = std::min(s.length, static_cast<int>(s.buffer.size()));
    const int start = s.index;
    int stop = start;
    if (stop >= 0)
        while (stop < end && HasClass(s.buffer[static_cast<size_t>(stop)], belongs)) ++stop;
    std::string_view run;
    if (start >= 1 && stop > start - 1 && s.buffer[static_cast<size_t>(start - 1)] == s.ch) {
        run = std::string_view(s.buffer.data() + start - 1, static_cast<size_t>(stop - start + 1));
    } else {
        thread_local std::string copy;
        copy.assign(1, s.ch);
        if (stop > start) copy.append(s.buffer.data() + start, static_cast<size_t>(stop - start));
        run = copy;
    }
    s.position += stop - start;
    s.index = stop;
    return run;
}

}  // namespace

// The language's own keywords are found by BuiltInKeyword; rows that a host
// entered behind them are searched in turn.
void CScanner::Identifier() {
    const std::string_view word = TakeRun(*this, qelkern::wordByte);
    id.Assign(word);
    sym = BuiltInKeyword(word.data(), word.size());
    qelkern::NextCh(*this);
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
    const std::string_view digits = TakeRun(*this, qelkern::numberByte);
    if (digits.find('.') == std::string_view::npos) {
        value = SaturatedInteger(digits);
        qelkern::NextCh(*this);
        return;
    }
    const std::string text(digits);
    GetCh();
    char* stop = nullptr;
    value = zahlAusText(text.c_str(), &stop);
    if (stop != text.c_str() + text.size()) Mark("Fehler bei der Zahlenangabe.");
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
