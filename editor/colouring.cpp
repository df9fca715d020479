#include <cstring>
#include <vector>

#include "editor/script_scan.h"
#include "qelkern/editor.h"

int TWScriptEditHoehe = 200;

namespace {
const char faceName[] = "Courier New";
constexpr int linesAround = 10;
}  // namespace

void CTWScriptEdit::FormatAll() { FormatTextRange(0, static_cast<int>(GetTextLength())); }

// Only bold, colour, height and face change; other effects of the text stay.
void CTWScriptEdit::SetFormatRange(int start, int end, int bold, unsigned long colour) {
    if (start >= end) return;
    SetSel(start, end);
    CHARFORMAT cf;
    GetSelectionCharFormat(cf);
    cf.dwMask = CFM_BOLD | CFM_COLOR | CFM_SIZE | CFM_FACE;
    cf.dwEffects = (cf.dwEffects & ~static_cast<DWORD>(CFE_BOLD | CFE_AUTOCOLOR)) | (bold ? static_cast<DWORD>(CFE_BOLD) : 0u);
    cf.crTextColor = static_cast<COLORREF>(colour);
    cf.yHeight = TWScriptEditHoehe;
    std::memset(cf.szFaceName, 0, sizeof cf.szFaceName);
    std::memcpy(cf.szFaceName, faceName, sizeof faceName);
    SetSelectionCharFormat(cf);
}

// The rewrite has the length of the range, so positions stay valid; it is no
// undo step. A word already in its spelling is left alone.
void CTWScriptEdit::ChangeCase(int start, int end, const char* text) {
    if (caseSensitive != 0 || changeCase == 0 || !text) return;
    if (static_cast<int>(std::strlen(text)) != end - start) return;
    SetSel(start, end);
    if (GetSelText() == text) return;
    ReplaceSel(text, FALSE);
}

void CTWScriptEdit::FormatTextRange(int start, int end) {
    if (start >= end) return;
    forcedChange = 1;
    long selStart = 0, selEnd = 0;
    GetSel(selStart, selEnd);
    LockWindowUpdate();
    HideSelection(TRUE, FALSE);
    try {
        SetSel(start, end);
        long rangeStart = 0, rangeEnd = 0;
        GetSel(rangeStart, rangeEnd);  // at the end of the text, shorter than asked
        std::vector<char> buffer(static_cast<size_t>(rangeEnd - rangeStart) + 1);
        const long read = GetSelText(buffer.data());
        buffer[static_cast<size_t>(read)] = 0;
        CScriptScan(*this, buffer.data(), static_cast<int>(rangeStart)).Run();
    } catch (...) {
        // The colouring is cosmetic: a failure leaves the rest as it was.
    }
    SetSel(selStart, selEnd);
    HideSelection(FALSE, FALSE);
    UnlockWindowUpdate();
    forcedChange = 0;
    CHARFORMAT cf;
    GetDefaultCharFormat(cf);
    SetDefaultCharFormat(cf);
}

// The end takes the length of the line that holds `last`, not of the last
// line of the range.
void CTWScriptEdit::FormatTextLines(int first, int last) {
    int firstLine = static_cast<int>(LineFromChar(first)) - linesAround;
    if (firstLine < 0) firstLine = 0;
    int lastLine = static_cast<int>(LineFromChar(last)) + linesAround;
    if (lastLine >= GetLineCount()) lastLine = GetLineCount() - 1;
    const int start = LineIndex(firstLine);
    const int end = LineIndex(lastLine) + LineLength(last);
    FormatTextRange(start, end);
}
