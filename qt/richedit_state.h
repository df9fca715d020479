// Inside of CQtRichEditWidget: the Qt view, the selection while window
// updates are locked, the undo steps and the formats.
#pragma once

#include <QPointer>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextCharFormat>
#include <QTextCursor>
#include <algorithm>
#include <deque>
#include <functional>
#include <optional>

#include "qelkern-qt/qtrichedit.h"
#include "richedit_format_model.h"
#include "richedit_painter.h"
#include "text_edit_view.h"

namespace qt_richedit {

struct UndoStep {
    int start = 0;
    QString removed;  // text and formats, put back by Undo
    std::vector<FormatId> removedFormats;
    int removedLength = 0;
    int insertedLength = 0;
    bool typing = false;  // later typing at its end may join it
};

enum class UndoMode { Record, Typing, None };
constexpr size_t undoLimit = 100;

// Latin-1 with '\r' paragraph ends on the engine's side, QString with
// '\n' (QTextDocument makes paragraphs of them) on Qt's side.
QString ToQt(const char* latin1);
CString FromQt(const QString& text);

// Character formats: the items of a CHARFORMAT as QTextCharFormat
// properties, and back; items a format does not carry come from `defaults`.
QTextCharFormat MaskedFormat(const CHARFORMAT& cf);
void FillCharFormat(const QTextCharFormat& format, const CHARFORMAT& defaults, CHARFORMAT& cf);
DWORD SameItems(const CHARFORMAT& a, const CHARFORMAT& b);
QFont FontOf(const CHARFORMAT& cf);
bool IsProtected(const QTextCharFormat& format);

}  // namespace qt_richedit

struct CQtRichEditWidget::State {
    QPointer<CQtTextEditView> view;
    CHARFORMAT defaultFormat;
    std::optional<qt_richedit::FormatId> pendingFormat;  // for the next insertion at the caret
    qt_richedit::FormatModel formats;
    std::function<void(int line)> gutterClicked;
    std::function<void(QChar)> rejectedCharacter;
    bool autoIndent = false;
    unsigned textRevision = 0;
    qt_richedit::FormatPainter painter;
    std::deque<qt_richedit::UndoStep> undo;
    std::deque<qt_richedit::UndoStep> redo;  // steps taken back, newest last
    PARAFORMAT para;
    bool readOnly = false;
    bool shown = false;

    int updateLocks = 0;
    // The selection while updates are locked, as plain positions: the
    // colouring moves it for every token, and a cursor of the document
    // would look up its block and line each time.
    int lockAnchor = 0;
    int lockPosition = 0;
    QTextCursor batch;       // holds an edit block open while updates are locked
    int lockScrollX = 0;
    int lockScrollY = 0;
    bool selectionHidden = false;
    QBrush shownHighlight;
    QBrush shownHighlightedText;

    // Above 0 while the widget itself changes the document: Qt's signals
    // about it are not the user's doing.
    int ownChanges = 0;
    int notifiedStart = 0;
    int notifiedEnd = 0;

    QKeyEvent* currentKey = nullptr;  // the key event being dispatched
    Qt::KeyboardModifiers currentModifiers;
    bool inKeyEvent = false;

    QTextDocument* Document() const;
    int Length() const;
    int DocumentLength() const;
    QTextCursor Cursor() const;
    QTextCursor CursorAt(int anchor, int position) const;
    void SetCursor(const QTextCursor& cursor);
    QTextCursor Range(int start, int end) const;
    qt_richedit::FormatId InsertionFormat(int start, int end) const;
    // The format of an id as the framework's, with the default's items
    // where it has none; kept until the default changes.
    void FillFormat(qt_richedit::FormatId id, CHARFORMAT& cf) const;
    mutable std::vector<CHARFORMAT> filledFormats;
    mutable std::vector<bool> filledMade;
    bool RangeIsProtected(int start, int end) const;
    // Shows what changed in the formats, unless updates are locked.
    void Paint();
    // The text of [start, start + removed) became `inserted` characters long.
    void TextReplaced(int start, int removed, int inserted) {
        ++textRevision;
        painter.Shift(start, removed, inserted);
        painter.Mark(start, start + inserted);
    }
};

// Marks a change of the document as the widget's own for its duration.
class OwnChange {
public:
    explicit OwnChange(CQtRichEditWidget::State& s) : state(s) { ++state.ownChanges; }
    ~OwnChange() { --state.ownChanges; }
    OwnChange(const OwnChange&) = delete;
    OwnChange& operator=(const OwnChange&) = delete;

private:
    CQtRichEditWidget::State& state;
};
