// Inside of CQtRichEditWidget: the Qt view, the selection while window
// updates are locked, the undo steps and the formats.
#pragma once

#include <QPointer>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocumentFragment>
#include <algorithm>
#include <deque>
#include <optional>

#include "qelkern-qt/qtrichedit.h"
#include "text_edit_view.h"

namespace qt_richedit {

struct UndoStep {
    int start = 0;
    QTextDocumentFragment removed;  // text and formats, put back by Undo
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

// Calls visit(format, start, end) for each run of one format in [start, end).
// The runs of a block come in one go, so no run asks the document for its
// position.
template <class Visit>
void ForEachRun(const QTextDocument* document, int start, int end, Visit visit) {
    for (QTextBlock block = document->findBlock(start); block.isValid(); block = block.next()) {
        const int blockStart = block.position();
        if (blockStart >= end) break;
        for (const QTextLayout::FormatRange& run : block.textFormats()) {
            const int from = std::max(start, blockStart + run.start);
            const int to = std::min(end, blockStart + run.start + run.length);
            if (from < to) visit(run.format, from, to);
        }
    }
}

}  // namespace qt_richedit

struct CQtRichEditWidget::State {
    QPointer<CQtTextEditView> view;
    CHARFORMAT defaultFormat;
    std::optional<QTextCharFormat> pendingFormat;  // for the next insertion at the caret
    std::deque<qt_richedit::UndoStep> undo;
    PARAFORMAT para;
    bool readOnly = false;
    bool shown = false;

    int updateLocks = 0;
    QTextCursor lockCursor;  // the selection while updates are locked
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
    QTextCursor Cursor() const;
    void SetCursor(const QTextCursor& cursor);
    QTextCursor Range(int start, int end) const;
    QTextCharFormat InsertionFormat(int start, int end) const;
    bool RangeIsProtected(int start, int end) const;
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
