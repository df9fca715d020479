#include "qelkern/editor.h"

namespace {
constexpr UINT keyBracketOpen = 56;   // "8"
constexpr UINT keyBracketClose = 57;  // "9"
constexpr int bracketSearchLimit = 1000;
constexpr short controlDownBit = 0x1000;
}  // namespace

// The widget announces a change of protected text before it makes it; the
// kind decides which text OnChange colours. The change always passes.
void CTWScriptEdit::OnProtected(NMHDR* pNMHDR, LRESULT* pResult) {
    const auto* notice = reinterpret_cast<const ENPROTECTED*>(pNMHDR);
    *pResult = 0;
    if (!notice) return;
    switch (notice->msg) {
    case EM_REPLACESEL:
    case WM_CHAR:
        changeType = ChangeReplace;
        break;
    case WM_KEYDOWN:
        changeType = notice->wParam == VK_BACK     ? ChangeBackspace
                     : notice->wParam == VK_DELETE ? ChangeDelete
                                                   : ChangeOther;
        break;
    case WM_CUT:
        changeType = ChangeCut;
        break;
    case WM_PASTE:
        changeType = changeType == ChangeCut ? ChangeMove : ChangePaste;
        break;
    default:
        changeType = ChangeOther;
        break;
    }
    // During a move the range stays that of the cut.
    if (notice->msg != EM_SETCHARFORMAT && changeType != ChangeMove) {
        changeStart = notice->chrg.cpMin;
        changeEnd = notice->chrg.cpMax;
    }
}

void CTWScriptEdit::OnChange() {
    if (forcedChange == 1) return;
    long selStart = 0, selEnd = 0;
    GetSel(selStart, selEnd);
    const int start = static_cast<int>(selStart);
    const int end = static_cast<int>(selEnd);
    if (changeType == ChangeMove && start == end) changeType = ChangePaste;
    switch (changeType) {
    case ChangeNone:
    case ChangeDelete:
    case ChangeBackspace:
    case ChangeCut:
        FormatTextLines(start, end);
        break;
    case ChangeReplace:
    case ChangePaste:
        FormatTextLines(changeStart, end);
        break;
    case ChangeMove:
        // Where the text arrived, then where it left.
        FormatTextLines(start, end);
        if (start > changeStart)
            FormatTextLines(changeStart, changeStart);
        else
            FormatTextLines(changeEnd, changeEnd);
        break;
    default:
        FormatAll();
        break;
    }
    changeType = ChangeNone;
}

UINT CTWScriptEdit::OnGetDlgCode() { return DLGC_WANTARROWS | DLGC_WANTTAB | DLGC_WANTALLKEYS | DLGC_WANTCHARS; }

// A tab goes into the text instead of moving the focus; a read-only control
// takes none.
void CTWScriptEdit::OnChar(UINT nChar, UINT, UINT) {
    if (nChar != '\t') {
        Default();
        return;
    }
    if (GetWidget() && GetWidget()->IsReadOnly()) return;
    ReplaceSel("\t", FALSE);
}

void CTWScriptEdit::OnKeyUp(UINT nChar, UINT, UINT) {
    const bool bracketKey = nChar == keyBracketOpen || nChar == keyBracketClose;
    if (bracketKey && (GetKeyState(VK_CONTROL) & controlDownBit)) {
        JumpToBracket(nChar == keyBracketOpen ? -1 : 1);
        return;
    }
    Default();
}

// Ctrl+8 goes back to the "(" that is open at the caret, Ctrl+9 forward to
// the ")" that closes it. Comments and strings are not skipped.
void CTWScriptEdit::JumpToBracket(int direction) {
    int depth = 1;
    long selStart = 0, selEnd = 0;
    GetSel(selStart, selEnd);
    const long origin = selStart;
    long pos = selStart;
    while (depth >= 1) {
        if (direction < 0 && pos == 0) break;
        if (direction > 0 && pos >= origin + bracketSearchLimit) break;
        pos += direction;
        SetSel(pos, pos + 1);
        const CString character = GetSelText();
        if (character == "(") depth += direction;
        if (character == ")") depth -= direction;
    }
    if (depth == 0) {
        SetSel(pos, pos);
    } else {
        SetSel(selStart, selEnd);
        MessageBeep(MB_ICONHAND);
    }
}

void CTWScriptEdit::OnSelChange(NMHDR*, LRESULT* pResult) { *pResult = 0; }

void CTWScriptEdit::OnSetFocus(CWnd*) {
    Default();
    long selStart = 0, selEnd = 0;
    GetSel(selStart, selEnd);
    SetSel(selStart, selStart);
}

LRESULT CTWScriptEdit::OnSetText(WPARAM, LPARAM) {
    const LRESULT result = Default();
    FormatAll();
    return result;
}
