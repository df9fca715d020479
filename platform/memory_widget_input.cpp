#include <algorithm>

#include "platform/memory_widget_state.h"

using namespace memory_widget;

namespace {
constexpr LPARAM keyDownFlags = 1;                                  // repeat count 1
constexpr LPARAM keyUpFlags = 1 | (static_cast<LPARAM>(0xC000) << 16);  // released, was down

// The key that gives a character, as far as the tests need one.
UINT VirtualKeyOf(unsigned char c) {
    if (c >= 'a' && c <= 'z') return c - 'a' + 'A';
    if ((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) return c;
    switch (c) {
    case ' ': return VK_SPACE;
    case '\r': return VK_RETURN;
    case '\t': return VK_TAB;
    default: return VK_OEM_1;
    }
}

// The character of a key on a German keyboard; 0 for none.
UINT CharacterOfKey(UINT key, bool shift) {
    static const char shiftedDigits[] = "=!\"\xA7$%&/()";  // keys 0 to 9 with shift
    if (key >= 'A' && key <= 'Z') return shift ? key : key - 'A' + 'a';
    if (key >= '0' && key <= '9') return shift ? static_cast<unsigned char>(shiftedDigits[key - '0']) : key;
    switch (key) {
    case VK_SPACE: return ' ';
    case VK_RETURN: return '\r';
    case VK_TAB: return '\t';
    case VK_BACK: return 8;
    default: return 0;
    }
}
}  // namespace

short CMemoryRichEdit::GetKeyState(int key) const {
    if (key < 0 || key > 255) return 0;
    return state->keysDown[static_cast<size_t>(key)] ? static_cast<short>(-128) : 0;
}

void CMemoryRichEdit::SendKey(UINT message, UINT key) {
    if (key < 256) state->keysDown[key] = message == WM_KEYDOWN;
    SendToOwner(message, key, message == WM_KEYDOWN ? keyDownFlags : keyUpFlags);
}

// --- the widget's own handling -------------------------------------------------

void CMemoryRichEdit::DefaultKeyDown(UINT key) {
    const bool control = GetKeyState(VK_CONTROL) < 0;
    const bool shift = GetKeyState(VK_SHIFT) < 0;
    if (control) {
        switch (key) {
        case 'X': SendToOwner(WM_CUT, 0, 0); break;
        case 'C': SendToOwner(WM_COPY, 0, 0); break;
        case 'V': SendToOwner(WM_PASTE, 0, 0); break;
        case 'Z': SendToOwner(WM_UNDO, 0, 0); break;
        case 'A': Select(0, state->Length()); break;
        default: break;
        }
        return;
    }
    switch (key) {
    case VK_DELETE:
    case VK_BACK:
        DeleteByKey(key);
        break;
    case VK_LEFT:
    case VK_RIGHT:
    case VK_HOME:
    case VK_END:
    case VK_UP:
    case VK_DOWN:
        MoveCaret(key, shift);
        break;
    default:
        break;
    }
}

void CMemoryRichEdit::DefaultChar(UINT character) {
    if (state->readOnly) return;
    const bool printable = character == '\r' || character == '\t' || (character >= 32 && character != 127);
    if (!printable || character > 255) return;
    const std::string typed(1, static_cast<char>(character));
    ReplaceRange(state->SelStart(), state->SelEnd(), typed, WM_CHAR, character,
                 static_cast<int>(UndoMode::Typing));
}

void CMemoryRichEdit::DeleteByKey(UINT key) {
    const State& s = *state;
    if (s.readOnly) return;
    int start = s.SelStart();
    int end = s.SelEnd();
    if (start == end) {
        if (key == VK_DELETE) end = std::min(end + 1, s.Length());
        else start = std::max(start - 1, 0);
    }
    if (start == end) return;
    ReplaceRange(start, end, std::string(), WM_KEYDOWN, key, static_cast<int>(UndoMode::Record));
}

void CMemoryRichEdit::MoveCaret(UINT key, bool extend) {
    const State& s = *state;
    int caret = s.active;
    const int line = LineFromChar(caret);
    const int column = caret - LineIndex(line);
    auto lineEnd = [this](int l) {
        return l + 1 < GetLineCount() ? LineIndex(l + 1) - 1 : GetTextLength();
    };
    switch (key) {
    case VK_LEFT: caret = !extend && s.SelStart() < s.SelEnd() ? s.SelStart() : caret - 1; break;
    case VK_RIGHT: caret = !extend && s.SelStart() < s.SelEnd() ? s.SelEnd() : caret + 1; break;
    case VK_HOME: caret = LineIndex(line); break;
    case VK_END: caret = lineEnd(line); break;
    case VK_UP:
        if (line > 0) caret = std::min(LineIndex(line - 1) + column, lineEnd(line - 1));
        break;
    case VK_DOWN:
        if (line + 1 < GetLineCount()) caret = std::min(LineIndex(line + 1) + column, lineEnd(line + 1));
        break;
    default: break;
    }
    caret = std::clamp(caret, 0, s.Length());
    Select(extend ? s.anchor : caret, caret);
}

// --- what a user does ----------------------------------------------------------

void CMemoryRichEdit::UserTypes(const char* text) {
    if (!text) return;
    for (const char* p = text; *p; ++p) {
        unsigned char c = static_cast<unsigned char>(*p);
        if (c == '\r' && p[1] == '\n') ++p;
        if (c == '\n') c = '\r';
        const UINT key = VirtualKeyOf(c);
        const bool shift = c >= 'A' && c <= 'Z';
        if (shift) state->keysDown[VK_SHIFT] = true;
        SendKey(WM_KEYDOWN, key);
        SendToOwner(WM_CHAR, c, keyDownFlags);
        SendKey(WM_KEYUP, key);
        if (shift) state->keysDown[VK_SHIFT] = false;
    }
}

void CMemoryRichEdit::UserPressesKey(UINT key, bool control, bool shift) {
    if (control) SendKey(WM_KEYDOWN, VK_CONTROL);
    if (shift) SendKey(WM_KEYDOWN, VK_SHIFT);
    SendKey(WM_KEYDOWN, key);
    const UINT character = control ? 0 : CharacterOfKey(key, shift);
    if (character) SendToOwner(WM_CHAR, character, keyDownFlags);
    SendKey(WM_KEYUP, key);
    if (shift) SendKey(WM_KEYUP, VK_SHIFT);
    if (control) SendKey(WM_KEYUP, VK_CONTROL);
}

void CMemoryRichEdit::UserCuts() { SendToOwner(WM_CUT, 0, 0); }
void CMemoryRichEdit::UserCopies() { SendToOwner(WM_COPY, 0, 0); }
void CMemoryRichEdit::UserPastes() { SendToOwner(WM_PASTE, 0, 0); }
void CMemoryRichEdit::UserUndoes() { SendToOwner(WM_UNDO, 0, 0); }

void CMemoryRichEdit::UserFocuses() {
    if (GetOwner())
        GetOwner()->SetFocus();
    else
        Focus();
}

// A move is one change: both notices come first, then the change notice.
void CMemoryRichEdit::UserDragsSelection(int target) {
    State& s = *state;
    const int start = s.SelStart();
    const int end = s.SelEnd();
    if (s.readOnly || start == end || target < 0 || target > s.Length() || (target >= start && target <= end))
        return;
    if (!AskProtected(WM_CUT, 0, start, end)) return;
    if (s.SelStart() != start || s.SelEnd() != end || end > s.Length()) return;
    s.anchor = s.active = target;  // the drop point decides the format of the paste notice
    const bool dropAllowed = AskProtected(WM_PASTE, 0, target, target);
    s.anchor = start;
    s.active = end;
    if (!dropAllowed || target > s.Length()) return;

    const int spanStart = std::min(start, target);
    const int spanEnd = std::max(end, target);
    const std::string moved = s.text.substr(static_cast<size_t>(start), static_cast<size_t>(end - start));
    const std::vector<uint32_t> movedFormats(s.formats.begin() + start, s.formats.begin() + end);
    std::string span;
    std::vector<uint32_t> spanFormats;
    if (target < start) {
        span = moved + s.text.substr(static_cast<size_t>(target), static_cast<size_t>(start - target));
        spanFormats = movedFormats;
        spanFormats.insert(spanFormats.end(), s.formats.begin() + target, s.formats.begin() + start);
    } else {
        span = s.text.substr(static_cast<size_t>(end), static_cast<size_t>(target - end)) + moved;
        spanFormats.assign(s.formats.begin() + end, s.formats.begin() + target);
        spanFormats.insert(spanFormats.end(), movedFormats.begin(), movedFormats.end());
    }

    UndoStep step;
    step.start = spanStart;
    step.removed = s.text.substr(static_cast<size_t>(spanStart), static_cast<size_t>(spanEnd - spanStart));
    step.removedFormats.assign(s.formats.begin() + spanStart, s.formats.begin() + spanEnd);
    step.insertedLength = spanEnd - spanStart;
    s.undo.push_back(std::move(step));
    if (s.undo.size() > undoLimit) s.undo.pop_front();

    ReplaceRaw(spanStart, spanEnd, span, spanFormats);
    const int newStart = target < start ? target : target - (end - start);
    s.anchor = newStart;
    s.active = newStart + (end - start);
    OnSelectionChanged(s.SelStart(), s.SelEnd());
    NotifyChanged();
}
