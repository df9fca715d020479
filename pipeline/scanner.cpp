// The scanner's frame: construction, reading characters, dispatching symbols,
// reporting errors, splicing text.
#include "qelkern/scanner.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <new>

#include "pipeline/char_classes.h"
#include "pipeline/keywords.h"
#include "pipeline/scanner_step.h"
#include "qelkern/parser.h"
#include "qelkern/userinterface.h"
#include "pipeline/script_error.h"

int istIdentifierAnfang(char c) { return qelkern::StartsWord(static_cast<unsigned char>(c)) ? 1 : 0; }

int istIdentifierZeichen(char c) { return istIdentifierAnfang(c) || (c >= '0' && c <= '9'); }

namespace {

using qelkern::HasClass;
using qelkern::NextCh;

// Held-back text comes in steps this large: an insertion moves back at most
// one step that is not yet read.
constexpr size_t heldBackStep = 512;

// The blanks before a symbol, read straight from the buffer: as GetCh would
// one by one, without its tests for each of them.
void SkipBlanks(CScanner& s) {
    while (!s.eof && HasClass(s.ch, qelkern::blankByte)) {
        const int end = std::min(s.length, static_cast<int>(s.buffer.size()));
        int at = s.index;
        if (at < 0 || at >= end) {
            s.GetCh();
            continue;
        }
        const char* text = s.buffer.data();
        int line = s.line;
        int position = s.position;
        char c = 0;
        do {
            c = text[at++];
            ++position;
            if (c == '\n') {
                position = 0;
                ++line;
            }
        } while (HasClass(c, qelkern::blankByte) && at < end);
        s.index = at;
        s.line = line;
        s.position = position;
        s.ch = c;
    }
}

}  // namespace

CScanner::CScanner(char* text, int textLength) {
    PredefinedTypen.DeleteAll();
    if (text != nullptr && textLength > 0) buffer.assign(text, text + textLength);
    length = static_cast<int>(buffer.size());
    for (int row = 0; row < keywordRowCount; ++row) EnterKW(keywordRows[row].sym, keywordRows[row].text);
    nextType = firstTypedefTag;
}

CScanner::~CScanner() = default;

void CScanner::EnterKW(Symbol symbol, const char* text) {
    if (keywordCount >= keywordCapacity) return;
    keywords[keywordCount] = CKeySym(symbol, text);
    ++keywordCount;
}

void CScanner::GetCh() {
    ++position;
    // `length` is public; the buffer's own size is the hard bound, up to
    // the text that an insertion holds back.
    if (index >= 0 && index < length &&
        (index < static_cast<int>(buffer.size()) ||
         (FetchHeldBack(heldBackStep) && index < static_cast<int>(buffer.size())))) {
        ch = buffer[static_cast<size_t>(index)];
        ++index;
        if (ch == '\n') {
            position = 0;
            ++line;
        }
    } else {
        eof = 1;
        ch = 0;
    }
}

void CScanner::GetSym() {
    // A loop rather than recursion: comments and dropped characters in a row
    // must not deepen the native stack.
    for (;;) {
        SkipBlanks(*this);
        symLine = line;
        symPosition = position;
        if (eof) {
            sym = symEof;
            return;
        }
        if (ch >= '0' && ch <= '9') {
            Number();
            return;
        }
        if (HasClass(ch, qelkern::wordStartByte)) {
            Identifier();
            return;
        }
        switch (ch) {
            case '"': string(); return;
            case '#': sym = symNotEqual; NextCh(*this); return;
            case '(':
                NextCh(*this);
                if (ch == '*') {
                    comment();
                    continue;
                }
                sym = symLeftParen;
                return;
            case ')': sym = symRightParen; NextCh(*this); return;
            case '*': sym = symTimes; NextCh(*this); return;
            case '+': sym = symPlus; NextCh(*this); return;
            case ',': sym = symComma; NextCh(*this); return;
            case '-': sym = symMinus; NextCh(*this); return;
            case '.': sym = symPeriod; NextCh(*this); return;
            case '/': sym = symDivide; NextCh(*this); return;
            case ':':
                NextCh(*this);
                if (ch == '=') {
                    NextCh(*this);
                    sym = symBecomes;
                } else {
                    sym = symColon;
                }
                return;
            case ';': sym = symSemicolon; NextCh(*this); return;
            case '<':
                NextCh(*this);
                if (ch == '=') {
                    NextCh(*this);
                    sym = symLessEqual;
                } else {
                    sym = symLess;
                }
                return;
            case '=': sym = symEqual; NextCh(*this); return;
            case '>':
                NextCh(*this);
                if (ch == '=') {
                    NextCh(*this);
                    sym = symGreaterEqual;
                } else {
                    sym = symGreater;
                }
                return;
            case '[': sym = symLeftBracket; NextCh(*this); return;
            case ']': sym = symRightBracket; NextCh(*this); return;
            default:
                NextCh(*this);  // dropped without a message
                continue;
        }
    }
}

void CScanner::Mark(CString message) {
    errorFound = 1;
    qelkern::ReportDiagnostic(ScriptErrorKind::Scanner, symLine, symPosition, message);
    CString text;
    text.Format("Scanner: Zeile: %d Position: %d: %s\n", line, position,
                static_cast<const char*>(message));
    GetUserInterface().ShowMessage(text, "", CUserInterface::IconNone);
}

// Only the unread rest of the buffer moves, and that is held-back text
// fetched a step at a time, or text inserted before: so the script behind
// many insertions is moved once, not once for each of them.
void CScanner::InsertText(CString text) {
    const int count = text.GetLength();
    if (count == 0) return;
    const int size = static_cast<int>(buffer.size());
    const int64_t whole = static_cast<int64_t>(size) + static_cast<int64_t>(heldBack.size());
    if (count > INT_MAX - whole) return;
    const int at = index < 0 ? 0 : (index > size ? size : index);
    const size_t rest = static_cast<size_t>(size - at);
    try {
        const size_t held = heldBack.size() + rest;
        if (held > heldBack.capacity()) heldBack.reserve(std::max(held, 2 * heldBack.capacity()));
        const size_t needed = static_cast<size_t>(at) + static_cast<size_t>(count);
        if (needed > buffer.capacity()) buffer.reserve(std::max(needed, 2 * buffer.capacity()));
    } catch (const std::bad_alloc&) {
        return;
    }
    for (size_t i = buffer.size(); i > static_cast<size_t>(at); --i) heldBack.push_back(buffer[i - 1]);
    buffer.resize(static_cast<size_t>(at));
    const char* bytes = text.view().data();
    buffer.insert(buffer.end(), bytes, bytes + count);
    const int64_t before = length < 0 ? 0 : std::min<int64_t>(length, whole);
    length = static_cast<int>(before + count);
    // The end has moved: text spliced in at the end is still to be read.
    eof = 0;
}

bool CScanner::FetchHeldBack(size_t count) {
    if (heldBack.empty()) return false;
    count = std::min(count, heldBack.size());
    buffer.insert(buffer.end(), heldBack.rbegin(), heldBack.rbegin() + static_cast<std::ptrdiff_t>(count));
    heldBack.resize(heldBack.size() - count);
    return true;
}
