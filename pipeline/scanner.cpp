// The scanner's frame: construction, reading characters, dispatching symbols,
// reporting errors, splicing text.
#include "qelkern/scanner.h"

#include <algorithm>
#include <climits>
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

// The blanks before a symbol, read straight from the buffer: as GetCh would
// one by one, without its tests for each of them.
void SkipBlanks(CScanner& s) {
    if (s.eof || !HasClass(s.ch, qelkern::blankByte)) return;
    const int end = std::min(s.length, static_cast<int>(s.buffer.size()));
    int at = s.index;
    if (at < 0 || at >= end) {
        s.GetCh();
        return;
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
    if (HasClass(c, qelkern::blankByte)) s.GetCh();  // the end of the text
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
    // `length` is public; the buffer's own size is the hard bound.
    if (index >= 0 && index < length && index < static_cast<int>(buffer.size())) {
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

void CScanner::InsertText(CString text) {
    const int count = text.GetLength();
    if (count == 0) return;
    const int size = static_cast<int>(buffer.size());
    if (count > INT_MAX - size) return;
    const int at = index < 0 ? 0 : (index > size ? size : index);
    try {
        const char* bytes = text.view().data();
        buffer.insert(buffer.begin() + at, bytes, bytes + count);
    } catch (const std::bad_alloc&) {
        return;
    }
    const int before = length < 0 ? 0 : (length > size ? size : length);
    length = before + count;
    // The end has moved: text spliced in at the end is still to be read.
    eof = 0;
}
