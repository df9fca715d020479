// An editor on the in-memory widget, set up with a small language, and a
// way to read back what the user sees: one letter per character.
#pragma once

#include <cstring>
#include <iterator>
#include <string>
#include <utility>

#include "qelkern/editor.h"
#include "support/test_support.h"

// Opens the protected members to the tests.
class TestEdit : public CTWScriptEdit {
public:
    using CTWScriptEdit::FormatTextRange;
    using CTWScriptEdit::SetFormatRange;
};

inline std::pair<long, long> SelOf(const CRichEditCtrl& ctrl) {
    long s = 0, e = 0;
    ctrl.GetSel(s, e);
    return {s, e};
}

// k keyword, c constant, # comment, n number, s string, ! error line,
// . plain, ? never formatted by the editor, x anything else.
inline std::string LettersOf(const CTWScriptEdit& edit, int start, int end) {
    const auto* widget = dynamic_cast<const CMemoryRichEdit*>(edit.GetWidget());
    const std::pair<const SymbolStyle*, char> styles[] = {
        {&edit.keywordStyle, 'k'}, {&edit.constantStyle, 'c'}, {&edit.commentStyle, '#'},
        {&edit.numberStyle, 'n'},  {&edit.stringStyle, 's'},   {&edit.errorStyle, '!'}};
    std::string letters;
    for (int i = start; i < end; ++i) {
        const CHARFORMAT cf = widget->CharFormatAt(i);
        const bool bold = (cf.dwEffects & CFE_BOLD) != 0;
        char letter = cf.crTextColor == 0 && !bold ? '.' : 'x';
        for (auto it = std::rbegin(styles); it != std::rend(styles); ++it)  // the first that fits wins
            if (it->first->colour == cf.crTextColor && (it->first->bold != 0) == bold) letter = it->second;
        const bool formatted = std::strcmp(cf.szFaceName, "Courier New") == 0 && cf.yHeight == TWScriptEditHoehe;
        letters += formatted ? letter : '?';
    }
    return letters;
}

// The letters of one line of the text.
inline std::string LineLettersOf(const CTWScriptEdit& edit, int line) {
    const int start = edit.LineIndex(line);
    return LettersOf(edit, start, start + edit.LineLength(start));
}

struct Editor {
    TestEdit edit;
    CMemoryRichEdit* widget = nullptr;

    Editor() {
        edit.Create();
        widget = dynamic_cast<CMemoryRichEdit*>(edit.GetWidget());
        edit.Initialize();
        edit.AddKeywords(" BEGIN  END  IF  THEN  ELSE  WHILE  DO  VAR  INTEGER  CONST ");
        edit.AddConstants(" WriteLn  Pi ");
        edit.SetSLComment("(*", "*)");
    }

    void SetText(const char* text) { edit.SetWindowText(text); }
    const std::string& Text() const { return widget->Text(); }
    std::pair<long, long> Sel() const { return SelOf(edit); }
    char LetterAt(int position) const { return LettersOf(edit, position, position + 1)[0]; }
    std::string Letters() const { return LettersOf(edit, 0, static_cast<int>(Text().size())); }
    std::string LineLetters(int line) const { return LineLettersOf(edit, line); }

    // Marks the text with a colour the editor never uses, so that a later
    // colouring shows which text it reached.
    void Paint(COLORREF colour = RGB(1, 2, 3), bool protect = false, long from = 0, long to = -1) {
        const auto [s, e] = Sel();
        edit.SetSel(from, to);
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
