// CQtRichEditWidget: changes of the text, with the protected-text notice
// before and the change and selection notices after each, and the undo steps.
#include <QMimeData>

#include "richedit_state.h"

using namespace qt_richedit;

namespace {
void RecordUndo(std::deque<UndoStep>& undo, std::deque<UndoStep>& redo, const QTextCursor& range,
                const FormatModel& formats, int insertedLength, bool newLine, UndoMode mode) {
    const int start = range.selectionStart();
    const int end = range.selectionEnd();
    if (mode == UndoMode::None) {
        if (insertedLength != end - start) {
            undo.clear();
            redo.clear();
        }
        return;
    }
    redo.clear();
    UndoStep* last = undo.empty() ? nullptr : &undo.back();
    const bool joins = mode == UndoMode::Typing && last && last->typing && start == end &&
                       last->start + last->insertedLength == start;
    if (joins) {
        last->insertedLength += insertedLength;
    } else {
        UndoStep step;
        step.start = start;
        step.removed = range.selectedText();
        step.removedFormats = formats.Slice(start, end);
        step.removedLength = end - start;
        step.insertedLength = insertedLength;
        step.typing = mode == UndoMode::Typing;
        undo.push_back(std::move(step));
        if (undo.size() > undoLimit) undo.pop_front();
    }
    // A new line ends the typing step, so that undo goes line by line.
    if (mode == UndoMode::Typing && newLine) undo.back().typing = false;
}
}  // namespace

bool CQtRichEditWidget::AskProtected(UINT message, WPARAM wParam, int start, int end) {
    return !state->RangeIsProtected(start, end) ||
           OwnerAllowsProtectedChange(message, wParam, start, end);
}

// The owner colours the change as it hears of it; what is painted follows.
void CQtRichEditWidget::NotifyChanged() {
    NMHDR change;
    NotifyOwner(EN_CHANGE, &change);
    state->Paint();
    NotifySelection(true);
}

bool CQtRichEditWidget::ReplaceRange(int start, int end, const QString& inserted, UINT message,
                                     WPARAM wParam, int undoMode) {
    State& s = *state;
    if (!s.view) return false;
    start = std::clamp(start, 0, s.Length());
    end = std::clamp(end, start, s.Length());
    if (!AskProtected(message, wParam, start, end) || !s.view) return false;
    // The handler of the notice may have changed the text.
    start = std::clamp(start, 0, s.Length());
    end = std::clamp(end, start, s.Length());
    {
        OwnChange own(s);
        const FormatId format = s.InsertionFormat(start, end);
        QTextCursor range = s.Range(start, end);
        RecordUndo(s.undo, s.redo, range, s.formats, static_cast<int>(inserted.size()), inserted.startsWith(u'\n'),
                   static_cast<UndoMode>(undoMode));
        range.insertText(inserted);
        s.formats.Replace(start, end - start, static_cast<int>(inserted.size()), format);
        s.TextReplaced(start, end - start, static_cast<int>(inserted.size()));
        QTextCursor caret(s.Document());
        caret.setPosition(std::min(start + static_cast<int>(inserted.size()), s.Length()));
        s.pendingFormat.reset();
        s.SetCursor(caret);
    }
    NotifyChanged();
    return true;
}

void CQtRichEditWidget::SetText(const char* text) {
    State& s = *state;
    if (!s.view) return;
    {
        OwnChange own(s);
        // The whole text goes: an edit block of a lock may not span that.
        if (s.updateLocks > 0) s.batch.endEditBlock();
        s.Document()->setPlainText(ToQt(text));
        s.formats.Reset(s.DocumentLength());
        s.painter.MarkAll();
        ++s.textRevision;
        if (s.updateLocks > 0) {
            s.batch = QTextCursor(s.Document());
            s.batch.beginEditBlock();
        }
        s.undo.clear();
        s.redo.clear();
        s.pendingFormat.reset();
        s.SetCursor(QTextCursor(s.Document()));
    }
    NotifyChanged();
}

void CQtRichEditWidget::ReplaceSel(const char* text, bool canUndo) {
    int start = 0;
    int end = 0;
    GetSel(start, end);
    ReplaceRange(start, end, ToQt(text), EM_REPLACESEL, canUndo ? TRUE : FALSE,
                 static_cast<int>(canUndo ? UndoMode::Record : UndoMode::None));
}

void CQtRichEditWidget::Copy() {
    int start = 0;
    int end = 0;
    GetSel(start, end);
    if (start < end) GetClipboard().SetText(WithCrLf(GetTextRange(start, end)));
}

void CQtRichEditWidget::Cut() {
    int start = 0;
    int end = 0;
    GetSel(start, end);
    if (state->readOnly || start >= end) return;
    Copy();
    ReplaceRange(start, end, QString(), WM_CUT, 0, static_cast<int>(UndoMode::Record));
}

void CQtRichEditWidget::Paste() {
    if (state->readOnly) return;
    const QString text = ToQt(GetClipboard().GetText());
    if (text.isEmpty()) return;
    int start = 0;
    int end = 0;
    GetSel(start, end);
    ReplaceRange(start, end, text, WM_PASTE, 0, static_cast<int>(UndoMode::Record));
}

void CQtRichEditWidget::Clear() {
    int start = 0;
    int end = 0;
    GetSel(start, end);
    if (state->readOnly || start >= end) return;
    ReplaceRange(start, end, QString(), WM_CLEAR, 0, static_cast<int>(UndoMode::Record));
}

// A drop or a middle-click paste: plain text only, as a paste.
void CQtRichEditWidget::TextDropped(const QMimeData* source) {
    if (state->readOnly || !source || !source->hasText()) return;
    const QString text = ToQt(FromQt(source->text()));
    if (text.isEmpty()) return;
    int start = 0;
    int end = 0;
    GetSel(start, end);
    ReplaceRange(start, end, text, WM_PASTE, 0, static_cast<int>(UndoMode::Record));
}

void CQtRichEditWidget::DeleteByKey(UINT key, bool wholeWord) {
    State& s = *state;
    if (s.readOnly || !s.view) return;
    int start = 0;
    int end = 0;
    GetSel(start, end);
    if (start == end) {
        QTextCursor cursor = s.Range(start, start);
        const bool forward = key == VK_DELETE;
        if (wholeWord)
            cursor.movePosition(forward ? QTextCursor::NextWord : QTextCursor::PreviousWord,
                                QTextCursor::KeepAnchor);
        else
            cursor.movePosition(forward ? QTextCursor::NextCharacter : QTextCursor::PreviousCharacter,
                                QTextCursor::KeepAnchor);
        start = cursor.selectionStart();
        end = cursor.selectionEnd();
    }
    if (start == end) return;
    ReplaceRange(start, end, QString(), WM_KEYDOWN, key, static_cast<int>(UndoMode::Record));
}

bool CQtRichEditWidget::CanUndo() const { return !state->undo.empty(); }

bool CQtRichEditWidget::Undo() { return TakeBack(state->undo, state->redo); }

bool CQtRichEditWidget::CanRedo() const { return !state->redo.empty() && !state->readOnly; }

bool CQtRichEditWidget::Redo() { return TakeBack(state->redo, state->undo); }

// Puts back the text of the last step of `from`; the step that would undo
// that goes to `to`.
bool CQtRichEditWidget::TakeBack(std::deque<UndoStep>& from, std::deque<UndoStep>& to) {
    State& s = *state;
    if (s.readOnly || from.empty() || !s.view) return false;
    UndoStep step = std::move(from.back());
    from.pop_back();
    {
        OwnChange own(s);
        const int start = std::clamp(step.start, 0, s.Length());
        const int end = std::clamp(start + step.insertedLength, start, s.Length());
        QTextCursor range = s.Range(start, end);
        UndoStep inverse;
        inverse.start = start;
        inverse.removed = range.selectedText();
        inverse.removedFormats = s.formats.Slice(start, end);
        inverse.removedLength = end - start;
        inverse.insertedLength = step.removedLength;
        range.insertText(step.removed);
        s.formats.Replace(start, end - start, step.removedFormats);
        s.TextReplaced(start, end - start, step.removedLength);
        to.push_back(std::move(inverse));
        if (to.size() > undoLimit) to.pop_front();
        s.pendingFormat.reset();
        s.SetCursor(s.Range(start, start + step.removedLength));
    }
    NotifyChanged();
    return true;
}

void CQtRichEditWidget::EmptyUndoBuffer() {
    state->undo.clear();
    state->redo.clear();
}

void CQtRichEditWidget::FollowOutsideChange(int position, int removed, int added) {
    State& s = *state;
    position = std::clamp(position, 0, s.formats.Length());
    removed = std::clamp(removed, 0, s.formats.Length() - position);
    s.formats.Replace(position, removed, std::max(added, 0), FormatModel::plainId);
    if (s.formats.Length() != s.DocumentLength()) s.formats.Reset(s.DocumentLength());  // never out of step with the text
    s.TextReplaced(position, removed, std::max(added, 0));
    s.Paint();
}

// The steps no longer fit a text that Qt changed by itself.
void CQtRichEditWidget::TextChangedOutside() {
    state->undo.clear();
    state->redo.clear();
    state->pendingFormat.reset();
    NotifyChanged();
}

unsigned CQtRichEditWidget::TextRevision() const { return state->textRevision; }
