// The lexer of the colouring: one pass over a working copy of a range of the
// control's text, setting the format of each token through the control.
#pragma once

#include "qelkern/editor.h"

class CScriptScan {
public:
    // `buffer` is the range's text, ended by a 0; `offset` is the position of
    // its first character in the control.
    CScriptScan(CTWScriptEdit& edit, char* buffer, int offset);
    void Run();

private:
    void Step();
    const SymbolStyle* Lex();
    const SymbolStyle* Word();
    bool StartsWith(const char* marker) const;
    bool LineCommentFits() const;
    void SkipBracketComment();
    void SkipErrorLine();
    void SkipToLineEnd();
    void SkipString();
    void SkipNumber();
    void FormatToken(const char* tokenStart, const SymbolStyle& style);
    void FormatPlainCharacter();
    int Position(const char* at) const { return offset + static_cast<int>(at - buffer); }

    CTWScriptEdit& edit;
    char* buffer;
    int offset;
    char* p;
    char* plain;          // start of the text not yet formatted
    bool rescan = false;  // a comment word became a line comment marker
};
