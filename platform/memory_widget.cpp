#include <algorithm>
#include <cstring>

#include "platform/memory_widget_state.h"

using namespace memory_widget;

namespace {
// Paragraph ends of the widget: "\r\n" and a lone "\n" become "\r".
std::string WithParagraphEnds(const char* text) {
    std::string out;
    if (!text) return out;
    for (const char* p = text; *p; ++p) {
        if (*p == '\r' && p[1] == '\n') continue;
        out += *p == '\n' ? '\r' : *p;
    }
    return out;
}

}  // namespace

// --- state helpers -----------------------------------------------------------

const std::vector<int>& CMemoryRichEdit::State::Lines() const {
    if (!linesValid) {
        lineStarts.assign(1, 0);
        for (size_t at = text.find('\r'); at != std::string::npos; at = text.find('\r', at + 1))
            lineStarts.push_back(static_cast<int>(at) + 1);
        linesValid = true;
    }
    return lineStarts;
}

// The format that inserted text takes: the one set for it, else that of the
// first selected character, else of the character before the caret.
uint32_t CMemoryRichEdit::State::InsertionFormat() const {
    if (pendingFormat >= 0) return static_cast<uint32_t>(pendingFormat);
    const int start = SelStart();
    if (start < SelEnd()) return formats[static_cast<size_t>(start)];
    if (start > 0) return formats[static_cast<size_t>(start) - 1];
    if (!formats.empty()) return formats[0];
    return defaultFormat;
}

bool CMemoryRichEdit::State::RangeIsProtected(int start, int end) const {
    if (start >= end) return palette.IsProtected(InsertionFormat());
    for (int i = start; i < end; ++i)
        if (palette.IsProtected(formats[static_cast<size_t>(i)])) return true;
    return false;
}

// --- construction ------------------------------------------------------------

CMemoryRichEdit::CMemoryRichEdit() : state(std::make_unique<State>()) {
    Style initial;
    const char face[] = "Arial";
    std::memcpy(initial.face.data(), face, sizeof face);
    state->defaultFormat = state->palette.Intern(initial);
}

CMemoryRichEdit::~CMemoryRichEdit() = default;

// --- text and lines ----------------------------------------------------------

int CMemoryRichEdit::GetTextLength() const { return state->Length(); }

CString CMemoryRichEdit::GetTextRange(int start, int end) const {
    start = std::clamp(start, 0, state->Length());
    end = std::clamp(end, 0, state->Length());
    if (start >= end) return CString();
    return CString(state->text.substr(static_cast<size_t>(start), static_cast<size_t>(end - start)));
}

void CMemoryRichEdit::SetText(const char* text) {
    State& s = *state;
    const int oldLength = s.Length();
    s.text = WithParagraphEnds(text);
    s.formats.assign(s.text.size(), s.defaultFormat);
    s.linesValid = false;
    s.pendingFormat = -1;
    s.anchor = s.active = 0;
    s.undo.clear();
    OnTextReplaced(0, oldLength, s.Length());
    NotifyChanged();
}

int CMemoryRichEdit::GetLineCount() const { return static_cast<int>(state->Lines().size()); }

int CMemoryRichEdit::LineFromChar(int position) const {
    const std::vector<int>& lines = state->Lines();
    position = std::clamp(position, 0, state->Length());
    return static_cast<int>(std::upper_bound(lines.begin(), lines.end(), position) - lines.begin()) - 1;
}

int CMemoryRichEdit::LineIndex(int line) const {
    const std::vector<int>& lines = state->Lines();
    if (line < 0 || line >= static_cast<int>(lines.size())) return -1;
    return lines[static_cast<size_t>(line)];
}

// --- selection ---------------------------------------------------------------

void CMemoryRichEdit::GetSel(int& start, int& end) const {
    start = state->SelStart();
    end = state->SelEnd();
}

void CMemoryRichEdit::SetSel(int start, int end) {
    start = std::clamp(start, 0, state->Length());
    end = std::clamp(end, 0, state->Length());
    Select(std::min(start, end), std::max(start, end));
}

void CMemoryRichEdit::Select(int anchor, int active) {
    State& s = *state;
    if (s.anchor == anchor && s.active == active) return;
    s.anchor = anchor;
    s.active = active;
    s.pendingFormat = -1;
    OnSelectionChanged(s.SelStart(), s.SelEnd());
    SELCHANGE info;
    info.chrg.cpMin = s.SelStart();
    info.chrg.cpMax = s.SelEnd();
    info.seltyp = s.SelStart() < s.SelEnd() ? SEL_TEXT : SEL_EMPTY;
    NotifyOwner(EN_SELCHANGE, &info.nmhdr);
}

void CMemoryRichEdit::HideSelection(bool hide, bool) { state->selectionHidden = hide; }

// --- editing -----------------------------------------------------------------

bool CMemoryRichEdit::AskProtected(UINT message, WPARAM wParam, int start, int end) {
    return !state->RangeIsProtected(start, end) ||
           OwnerAllowsProtectedChange(message, wParam, start, end);
}

void CMemoryRichEdit::NotifyChanged() {
    NMHDR change;
    NotifyOwner(EN_CHANGE, &change);
    SELCHANGE selection;
    selection.chrg.cpMin = state->SelStart();
    selection.chrg.cpMax = state->SelEnd();
    selection.seltyp = selection.chrg.cpMin < selection.chrg.cpMax ? SEL_TEXT : SEL_EMPTY;
    NotifyOwner(EN_SELCHANGE, &selection.nmhdr);
}

void CMemoryRichEdit::ReplaceRaw(int start, int end, const std::string& inserted,
                                 const std::vector<uint32_t>& insertedFormats) {
    State& s = *state;
    const size_t from = static_cast<size_t>(start);
    const size_t count = static_cast<size_t>(end - start);
    const bool movesLines = count != inserted.size() || inserted.find('\r') != std::string::npos ||
                            std::memchr(s.text.data() + from, '\r', count) != nullptr;
    s.text.replace(from, count, inserted);
    if (count == inserted.size() && insertedFormats.size() == count) {
        std::copy(insertedFormats.begin(), insertedFormats.end(), s.formats.begin() + start);
    } else {
        s.formats.erase(s.formats.begin() + start, s.formats.begin() + end);
        s.formats.insert(s.formats.begin() + start, insertedFormats.begin(), insertedFormats.end());
    }
    if (movesLines) s.linesValid = false;
    s.pendingFormat = -1;
    OnTextReplaced(start, end - start, static_cast<int>(inserted.size()));
}

bool CMemoryRichEdit::ReplaceRange(int start, int end, const std::string& inserted, UINT message,
                                   WPARAM wParam, int undoMode) {
    State& s = *state;
    start = std::clamp(start, 0, s.Length());
    end = std::clamp(end, start, s.Length());
    if (!AskProtected(message, wParam, start, end)) return false;
    // The handler of the notice may have changed the text.
    start = std::clamp(start, 0, s.Length());
    end = std::clamp(end, start, s.Length());

    const uint32_t format = s.InsertionFormat();
    const int insertedLength = static_cast<int>(inserted.size());
    const UndoMode mode = static_cast<UndoMode>(undoMode);
    if (mode == UndoMode::None) {
        if (insertedLength != end - start) s.undo.clear();
    } else {
        UndoStep* last = s.undo.empty() ? nullptr : &s.undo.back();
        const bool joins = mode == UndoMode::Typing && last && last->typing && start == end &&
                           last->start + last->insertedLength == start;
        if (joins) {
            last->insertedLength += insertedLength;
        } else {
            UndoStep step;
            step.start = start;
            step.removed = s.text.substr(static_cast<size_t>(start), static_cast<size_t>(end - start));
            step.removedFormats.assign(s.formats.begin() + start, s.formats.begin() + end);
            step.insertedLength = insertedLength;
            step.typing = mode == UndoMode::Typing;
            s.undo.push_back(std::move(step));
            if (s.undo.size() > undoLimit) s.undo.pop_front();
        }
        // A new line ends the typing step, so that undo goes line by line.
        if (mode == UndoMode::Typing && inserted == "\r") s.undo.back().typing = false;
    }

    ReplaceRaw(start, end, inserted, std::vector<uint32_t>(inserted.size(), format));
    s.anchor = s.active = start + insertedLength;
    OnSelectionChanged(s.anchor, s.active);
    NotifyChanged();
    return true;
}

void CMemoryRichEdit::ReplaceSel(const char* text, bool canUndo) {
    ReplaceRange(state->SelStart(), state->SelEnd(), WithParagraphEnds(text), EM_REPLACESEL,
                 canUndo ? TRUE : FALSE,
                 static_cast<int>(canUndo ? UndoMode::Record : UndoMode::None));
}

void CMemoryRichEdit::Copy() {
    const State& s = *state;
    if (s.SelStart() >= s.SelEnd()) return;
    GetClipboard().SetText(WithCrLf(GetTextRange(s.SelStart(), s.SelEnd())));
}

void CMemoryRichEdit::Cut() {
    const State& s = *state;
    if (s.readOnly || s.SelStart() >= s.SelEnd()) return;
    Copy();
    ReplaceRange(s.SelStart(), s.SelEnd(), std::string(), WM_CUT, 0, static_cast<int>(UndoMode::Record));
}

void CMemoryRichEdit::Paste() {
    if (state->readOnly) return;
    const std::string text = WithParagraphEnds(GetClipboard().GetText());
    if (text.empty()) return;
    ReplaceRange(state->SelStart(), state->SelEnd(), text, WM_PASTE, 0, static_cast<int>(UndoMode::Record));
}

void CMemoryRichEdit::Clear() {
    const State& s = *state;
    if (s.readOnly || s.SelStart() >= s.SelEnd()) return;
    ReplaceRange(s.SelStart(), s.SelEnd(), std::string(), WM_CLEAR, 0, static_cast<int>(UndoMode::Record));
}

// --- undo --------------------------------------------------------------------

bool CMemoryRichEdit::CanUndo() const { return !state->undo.empty(); }

bool CMemoryRichEdit::Undo() {
    State& s = *state;
    if (s.readOnly || s.undo.empty()) return false;
    UndoStep step = std::move(s.undo.back());
    s.undo.pop_back();
    const int start = std::clamp(step.start, 0, s.Length());
    const int end = std::clamp(start + step.insertedLength, start, s.Length());
    ReplaceRaw(start, end, step.removed, step.removedFormats);
    s.anchor = start;
    s.active = start + static_cast<int>(step.removed.size());
    OnSelectionChanged(s.SelStart(), s.SelEnd());
    NotifyChanged();
    return true;
}

void CMemoryRichEdit::EmptyUndoBuffer() { state->undo.clear(); }

// --- window side and inspection ------------------------------------------------

void CMemoryRichEdit::LockUpdate(bool lock) {
    if (lock)
        ++state->updateLocks;
    else if (state->updateLocks > 0)
        --state->updateLocks;
}

void CMemoryRichEdit::Show(bool visible) { state->visible = visible; }
void CMemoryRichEdit::Focus() { state->focused = true; }
void CMemoryRichEdit::SetReadOnly(bool readOnly) { state->readOnly = readOnly; }
bool CMemoryRichEdit::IsReadOnly() const { return state->readOnly; }

const std::string& CMemoryRichEdit::Text() const { return state->text; }
int CMemoryRichEdit::UndoStepCount() const { return static_cast<int>(state->undo.size()); }
bool CMemoryRichEdit::IsUpdateLocked() const { return state->updateLocks > 0; }
bool CMemoryRichEdit::IsSelectionHidden() const { return state->selectionHidden; }
bool CMemoryRichEdit::IsVisible() const { return state->visible; }
bool CMemoryRichEdit::HasFocus() const { return state->focused; }
const PARAFORMAT& CMemoryRichEdit::GetParaFormat() const { return state->para; }

void CMemoryRichEdit::OnTextReplaced(int, int, int) {}
void CMemoryRichEdit::OnFormatChanged(int, int) {}
void CMemoryRichEdit::OnSelectionChanged(int, int) {}
