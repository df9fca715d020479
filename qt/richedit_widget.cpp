// CQtRichEditWidget: construction, text, lines, selection and the window
// side. Formats are in richedit_widget_formats.cpp, editing and undo in
// richedit_editing.cpp, input in richedit_input.cpp.
#include <QScrollBar>
#include <QTimer>
#include <cstring>

#include "richedit_state.h"

using namespace qt_richedit;


namespace {
CHARFORMAT InitialDefaultFormat() {
    CHARFORMAT cf;
    cf.dwMask = CFM_ALL;
    cf.dwEffects = CFE_AUTOCOLOR;
    cf.yHeight = 200;
    const char face[] = "Courier New";
    std::memcpy(cf.szFaceName, face, sizeof face);
    return cf;
}
}  // namespace

// --- state helpers -------------------------------------------------------------

QTextDocument* CQtRichEditWidget::State::Document() const { return view ? view->document() : nullptr; }

// The format model has one entry per character of the document; asking it
// spares a walk through the document's fragments for every token.
int CQtRichEditWidget::State::Length() const { return view ? formats.Length() : 0; }

int CQtRichEditWidget::State::DocumentLength() const {
    const QTextDocument* document = Document();
    return document ? document->characterCount() - 1 : 0;
}

QTextCursor CQtRichEditWidget::State::Cursor() const {
    if (!view) return QTextCursor();
    return updateLocks > 0 ? CursorAt(lockAnchor, lockPosition) : view->textCursor();
}

QTextCursor CQtRichEditWidget::State::CursorAt(int anchor, int position) const {
    QTextCursor cursor(Document());
    cursor.setPosition(std::clamp(anchor, 0, Length()));
    cursor.setPosition(std::clamp(position, 0, Length()), QTextCursor::KeepAnchor);
    return cursor;
}

void CQtRichEditWidget::State::SetCursor(const QTextCursor& cursor) {
    if (!view) return;
    if (updateLocks > 0) {
        lockAnchor = cursor.anchor();
        lockPosition = cursor.position();
        return;
    }
    view->setTextCursor(cursor);
}

QTextCursor CQtRichEditWidget::State::Range(int start, int end) const {
    QTextCursor cursor(Document());
    cursor.setPosition(std::clamp(start, 0, Length()));
    cursor.setPosition(std::clamp(end, 0, Length()), QTextCursor::KeepAnchor);
    return cursor;
}

// The format that inserted text takes: the one set for it, else that of the
// first replaced character, else of the character before the caret (at the
// start of a line, of the line's first character).
FormatId CQtRichEditWidget::State::InsertionFormat(int start, int end) const {
    if (pendingFormat) return *pendingFormat;
    const int length = formats.Length();
    if (length == 0) return FormatModel::plainId;
    if (start < end) return formats.At(std::clamp(start, 0, length - 1));
    const QTextDocument* document = Document();
    const bool lineStart = start == 0 || (document && document->characterAt(start - 1) == QChar::ParagraphSeparator);
    if (lineStart && start < length && document->characterAt(start) != QChar::ParagraphSeparator)
        return formats.At(start);
    return formats.At(std::clamp(start - 1, 0, length - 1));
}

bool CQtRichEditWidget::State::RangeIsProtected(int start, int end) const {
    if (start >= end) return formats.IsProtected(InsertionFormat(start, end));
    for (int i = start; i < end; ++i)
        if (formats.IsProtected(formats.At(i))) return true;
    return false;
}

void CQtRichEditWidget::State::Paint() {
    if (updateLocks > 0 || !view) return;
    OwnChange own(*this);
    painter.Apply(Document(), formats);
}

// --- construction ----------------------------------------------------------------

CQtRichEditWidget::CQtRichEditWidget() : state(std::make_unique<State>()) {
    State& s = *state;
    s.view = new CQtTextEditView(this);
    s.defaultFormat = InitialDefaultFormat();
    QTextDocument* document = s.Document();
    // The widget keeps its own undo steps; the document's would record every
    // colouring as a step.
    document->setUndoRedoEnabled(false);
    ApplyDefaultFormat();

    // Qt changes the document itself only when text is dragged out of it;
    // the formats follow the text at once.
    QObject::connect(document, &QTextDocument::contentsChange, s.view, [this](int position, int removed, int added) {
        if (state->ownChanges > 0) return;
        FollowOutsideChange(position, removed, added);
        QTimer::singleShot(0, state->view, [this] { TextChangedOutside(); });
    });
    QObject::connect(s.view, &QPlainTextEdit::cursorPositionChanged, s.view, [this] { SelectionMovedByUser(); });
    QObject::connect(s.view, &QPlainTextEdit::selectionChanged, s.view, [this] { SelectionMovedByUser(); });
}

CQtRichEditWidget::~CQtRichEditWidget() {
    if (CQtTextEditView* view = state->view) {
        view->DetachOwner();
        QObject::disconnect(view, nullptr, nullptr, nullptr);
        QObject::disconnect(view->document(), nullptr, view, nullptr);
        delete view;
    }
}

QPlainTextEdit* CQtRichEditWidget::GetTextEdit() const { return state->view; }

std::unique_ptr<CRichEditWidget> CreateQtRichEditWidget(CWnd*, int) {
    return std::make_unique<CQtRichEditWidget>();
}

// --- text and lines --------------------------------------------------------------

int CQtRichEditWidget::GetTextLength() const { return state->Length(); }

CString CQtRichEditWidget::GetTextRange(int start, int end) const {
    if (!state->view) return CString();
    const int length = state->Length();
    start = std::clamp(start, 0, length);
    end = std::clamp(end, 0, length);
    if (start >= end) return CString();
    return FromQt(state->Range(start, end).selectedText());
}

int CQtRichEditWidget::GetLineCount() const {
    const QTextDocument* document = state->Document();
    return document ? document->blockCount() : 1;
}

int CQtRichEditWidget::LineFromChar(int position) const {
    const QTextDocument* document = state->Document();
    if (!document) return 0;
    return document->findBlock(std::clamp(position, 0, state->Length())).blockNumber();
}

int CQtRichEditWidget::LineIndex(int line) const {
    const QTextDocument* document = state->Document();
    if (!document || line < 0 || line >= document->blockCount()) return line == 0 ? 0 : -1;
    return document->findBlockByNumber(line).position();
}

// --- selection -------------------------------------------------------------------

void CQtRichEditWidget::GetSel(int& start, int& end) const {
    const State& s = *state;
    if (s.updateLocks > 0) {
        start = std::min(s.lockAnchor, s.lockPosition);
        end = std::max(s.lockAnchor, s.lockPosition);
        return;
    }
    const QTextCursor cursor = s.Cursor();
    start = cursor.selectionStart();
    end = cursor.selectionEnd();
}

void CQtRichEditWidget::SetSel(int start, int end) {
    State& s = *state;
    if (!s.view) return;
    if (s.updateLocks > 0) {
        const int length = s.Length();
        const int anchor = std::clamp(std::min(start, end), 0, length);
        const int position = std::clamp(std::max(start, end), 0, length);
        if (anchor != s.lockAnchor || position != s.lockPosition) s.pendingFormat.reset();
        s.lockAnchor = anchor;
        s.lockPosition = position;
        NotifySelection(false);
        return;
    }
    const QTextCursor before = s.Cursor();
    {
        OwnChange own(s);
        const QTextCursor range = s.Range(std::min(start, end), std::max(start, end));
        if (range.anchor() != before.anchor() || range.position() != before.position()) {
            s.pendingFormat.reset();
            s.SetCursor(range);
        }
    }
    NotifySelection(false);
}

void CQtRichEditWidget::NotifySelection(bool always) {
    int start = 0;
    int end = 0;
    GetSel(start, end);
    if (!always && start == state->notifiedStart && end == state->notifiedEnd) return;
    state->notifiedStart = start;
    state->notifiedEnd = end;
    SELCHANGE info;
    info.chrg.cpMin = start;
    info.chrg.cpMax = end;
    info.seltyp = start < end ? SEL_TEXT : SEL_EMPTY;
    NotifyOwner(EN_SELCHANGE, &info.nmhdr);
}

void CQtRichEditWidget::SelectionMovedByUser() {
    if (state->ownChanges > 0 || state->updateLocks > 0) return;
    state->pendingFormat.reset();
    NotifySelection(false);
}

// Hidden, the selection keeps its place but shows no highlight.
void CQtRichEditWidget::HideSelection(bool hide, bool) {
    State& s = *state;
    if (!s.view || hide == s.selectionHidden) return;
    s.selectionHidden = hide;
    QPalette palette = s.view->palette();
    if (hide) {
        s.shownHighlight = palette.brush(QPalette::Highlight);
        s.shownHighlightedText = palette.brush(QPalette::HighlightedText);
        palette.setBrush(QPalette::Highlight, Qt::transparent);
        palette.setBrush(QPalette::HighlightedText, palette.brush(QPalette::Text));
    } else {
        palette.setBrush(QPalette::Highlight, s.shownHighlight);
        palette.setBrush(QPalette::HighlightedText, s.shownHighlightedText);
    }
    s.view->setPalette(palette);
}

// --- window side -----------------------------------------------------------------

// While locked the widget paints nothing, and the selection that the engine
// moves about lives apart from the view's, so the view neither scrolls nor
// flickers; it gets the final selection at the release. An edit block is
// open meanwhile: the document is laid out once at the release, not once for
// every token that changes its format.
void CQtRichEditWidget::LockUpdate(bool lock) {
    State& s = *state;
    if (!s.view) return;
    if (lock) {
        if (s.updateLocks++ > 0) return;
        const QTextCursor shown = s.view->textCursor();
        s.lockAnchor = shown.anchor();
        s.lockPosition = shown.position();
        s.lockScrollX = s.view->horizontalScrollBar()->value();
        s.lockScrollY = s.view->verticalScrollBar()->value();
        s.view->setUpdatesEnabled(false);
        s.batch = QTextCursor(s.Document());
        s.batch.beginEditBlock();
        return;
    }
    if (s.updateLocks == 0 || --s.updateLocks > 0) return;
    {
        OwnChange own(s);
        s.batch.endEditBlock();
        s.batch = QTextCursor();
    }
    s.Paint();
    const QTextCursor shown = s.view->textCursor();
    {
        OwnChange own(s);
        if (shown.anchor() != s.lockAnchor || shown.position() != s.lockPosition) {
            s.view->setTextCursor(s.CursorAt(s.lockAnchor, s.lockPosition));
        } else {
            s.view->horizontalScrollBar()->setValue(s.lockScrollX);
            s.view->verticalScrollBar()->setValue(s.lockScrollY);
        }
    }
    s.view->setUpdatesEnabled(true);
    s.view->viewport()->update();
}

// A widget without a parent window is never shown on its own: it is the
// hidden view's, or waits to be put into a window.
void CQtRichEditWidget::Show(bool visible) {
    state->shown = visible;
    if (state->view && state->view->parentWidget()) state->view->setVisible(visible);
}

void CQtRichEditWidget::Focus() {
    if (state->view && !state->view->hasFocus()) state->view->setFocus(Qt::OtherFocusReason);
}

// Read-only text can still be walked with the caret and selected by keys.
void CQtRichEditWidget::SetReadOnly(bool readOnly) {
    State& s = *state;
    s.readOnly = readOnly;
    if (!s.view) return;
    s.view->setReadOnly(readOnly);
    if (readOnly) s.view->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

bool CQtRichEditWidget::IsReadOnly() const { return state->readOnly; }

int CQtRichEditWidget::UndoStepCount() const { return static_cast<int>(state->undo.size()); }
bool CQtRichEditWidget::IsUpdateLocked() const { return state->updateLocks > 0; }
bool CQtRichEditWidget::IsSelectionHidden() const { return state->selectionHidden; }
bool CQtRichEditWidget::IsShown() const { return state->shown; }
