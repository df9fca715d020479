// An editor on the in-memory widget, set up with a small language, and a
// way to read back what the user sees: one letter per character.
#pragma once

#include <cstring>
#include <string>

#include "qelkern/editor.h"
#include "support/test_support.h"

// Opens the protected members to the tests.
class TestEdit : public CTWScriptEdit {
public:
    using CTWScriptEdit::ChangeCase;
    using CTWScriptEdit::FormatTextLines;
    using CTWScriptEdit::FormatTextRange;
    using CTWScriptEdit::IsConstant;
    using CTWScriptEdit::IsKeyword;
    using CTWScriptEdit::IsStringQuote;
    using CTWScriptEdit::SetFormatRange;
};

struct Editor {
    TestEdit edit;
    CMemoryRichEdit* widget = nullptr;

    explicit Editor(bool withLanguage = true) {
        edit.Create();
        widget = dynamic_cast<CMemoryRichEdit*>(edit.GetWidget());
        edit.Initialize();
        if (withLanguage) {
            edit.AddKeywords(" BEGIN  END  IF  THEN  ELSE  WHILE  DO  VAR  INTEGER  CONST ");
            edit.AddConstants(" WriteLn  Pi ");
            edit.SetSLComment("(*", "*)");
        }
    }

    void SetText(const char* text) { edit.SetWindowText(text); }
    const std::string& Text() const { return widget->Text(); }
    std::pair<long, long> Sel() const {
        long s = 0, e = 0;
        edit.GetSel(s, e);
        return {s, e};
    }

    // k keyword, c constant, # comment, n number, s string, ! error line,
    // . plain, ? never formatted by the editor, x anything else.
    char LetterAt(int position) const {
        const CHARFORMAT cf = widget->CharFormatAt(position);
        if (std::strcmp(cf.szFaceName, "Courier New") != 0 || cf.yHeight != TWScriptEditHoehe) return '?';
        const bool bold = (cf.dwEffects & CFE_BOLD) != 0;
        const SymbolStyle seen{cf.crTextColor, bold ? 1 : 0};
        auto is = [&](const SymbolStyle& style) {
            return style.colour == seen.colour && (style.bold != 0) == bold;
        };
        if (is(edit.keywordStyle)) return 'k';
        if (is(edit.constantStyle)) return 'c';
        if (is(edit.commentStyle)) return '#';
        if (is(edit.numberStyle)) return 'n';
        if (is(edit.stringStyle)) return 's';
        if (is(edit.errorStyle)) return '!';
        if (cf.crTextColor == 0 && !bold) return '.';
        return 'x';
    }

    std::string Letters() const {
        std::string letters;
        for (int i = 0; i < static_cast<int>(Text().size()); ++i) letters += LetterAt(i);
        return letters;
    }

    // The letters of one line of the text.
    std::string LineLetters(int line) const {
        const int start = edit.LineIndex(line);
        const int length = edit.LineLength(start);
        return Letters().substr(static_cast<size_t>(start), static_cast<size_t>(length));
    }

    // Marks every character with a colour the editor never uses, so that a
    // later colouring shows which text it reached.
    void Paint(COLORREF colour = RGB(1, 2, 3), bool protect = false) {
        const auto [s, e] = Sel();
        edit.SetSel(0, -1);
        CHARFORMAT cf;
        cf.dwMask = CFM_COLOR | (protect ? static_cast<DWORD>(CFM_PROTECTED) : 0u);
        cf.crTextColor = colour;
        cf.dwEffects = protect ? static_cast<DWORD>(CFE_PROTECTED) : 0u;
        edit.SetSelectionCharFormat(cf);
        edit.SetSel(s, e);
    }

    bool Reached(int position) const { return widget->CharFormatAt(position).crTextColor != RGB(1, 2, 3); }
};

// A text of `lines` lines "BEGIN", for tests of which lines a change colours.
inline std::string BeginLines(int lines) {
    std::string text;
    for (int i = 0; i < lines; ++i) text += i ? "\rBEGIN" : "BEGIN";
    return text;
}
