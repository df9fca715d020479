// The native widget of the rich edit control on a Qt QPlainTextEdit.
//
// The control (CRichEditCtrl and its derived CTWScriptEdit) talks to this
// widget only through CRichEditWidget; the user's keys, clicks, drops and
// menu commands come back to the control's message map as the messages of
// the desktop framework, so that a control written for that framework runs
// unchanged on a real desktop.
//
// Text crosses the boundary as Latin-1 with '\r' paragraph ends. The formats
// live beside the document, one small id per character, and reach the screen
// through each block's layout, so that colouring a long script never touches
// the document. The undo history is the widget's own (the document's is off):
// format changes are never undo steps, a replacement without undo adds none,
// and one that changes the length drops the older steps, which would no longer
// fit the text.
#pragma once

#include <QColor>
#include <QHash>
#include <deque>
#include <functional>
#include <memory>

#include "qelkern/richedit.h"

class QPlainTextEdit;
class QKeyEvent;
class QMimeData;
class QInputMethodEvent;
class QPoint;
class QWidget;

// Marks a line can carry in the line-number gutter.
enum LineMark : unsigned {
    LineMarkError = 1,       // the line of the last compile error
    LineMarkBreakpoint = 2,
    LineMarkCurrent = 4,     // where a stopped script stands
};

namespace qt_richedit {
struct UndoStep;
}

class CQtRichEditWidget : public CRichEditWidget {
public:
    CQtRichEditWidget();
    ~CQtRichEditWidget() override;
    CQtRichEditWidget(const CQtRichEditWidget&) = delete;
    CQtRichEditWidget& operator=(const CQtRichEditWidget&) = delete;

    // The Qt widget, to be put into a window's layout. The widget object owns
    // it; if Qt deletes it first (with its parent window), this gives null and
    // every operation below becomes a harmless no-op.
    QPlainTextEdit* GetTextEdit() const;

    int GetTextLength() const override;
    CString GetTextRange(int start, int end) const override;
    void SetText(const char* text) override;
    int GetLineCount() const override;
    int LineFromChar(int position) const override;
    int LineIndex(int line) const override;
    void GetSel(int& start, int& end) const override;
    void SetSel(int start, int end) override;
    void HideSelection(bool hide, bool permanent) override;
    void ReplaceSel(const char* text, bool canUndo) override;
    void Cut() override;
    void Copy() override;
    void Paste() override;
    void Clear() override;
    bool CanUndo() const override;
    bool Undo() override;
    void EmptyUndoBuffer() override;
    DWORD GetSelectionCharFormat(CHARFORMAT& cf) const override;
    bool SetSelectionCharFormat(const CHARFORMAT& cf) override;
    DWORD GetDefaultCharFormat(CHARFORMAT& cf) const override;
    bool SetDefaultCharFormat(const CHARFORMAT& cf) override;
    bool SetParaFormat(const PARAFORMAT& pf) override;
    void DefaultKeyDown(UINT key) override;
    void DefaultChar(UINT character) override;
    short GetKeyState(int key) const override;
    void LockUpdate(bool lock) override;
    void Show(bool visible) override;
    void Focus() override;
    void SetReadOnly(bool readOnly) override;
    bool IsReadOnly() const override;

    // How the text is shown, apart from its formats: the stored colours
    // stay what GetSelectionCharFormat reports; a colour in `colours` is
    // painted as its value instead (a dark palette's set). The zoom scales
    // every font size of the text.
    void SetDisplayColours(const QHash<QRgb, QColor>& colours);
    void SetZoom(double factor);
    double Zoom() const;
    // The colour that a stored colour is painted in.
    QColor DisplayColour(COLORREF stored) const;

    // The line-number gutter at the left of the text, off at first. Marks
    // stay with their line while text is inserted or removed above it; a
    // line that is removed takes its marks along.
    void ShowLineNumbers(bool show);
    QWidget* LineNumberGutter() const;
    void SetLineMark(int line, LineMark mark, bool on);
    bool HasLineMark(int line, LineMark mark) const;
    void ClearLineMarks(LineMark mark);
    // Called with the line (from 0) of a click into the gutter.
    void SetGutterClickHandler(std::function<void(int line)> handler);

    // Redo of what Undo took back; any new edit drops these steps.
    bool CanRedo() const;
    bool Redo();
    // Return keeps the indent (blanks and tabs) of the line it splits; off
    // at first.
    void SetAutoIndent(bool on);
    // Called, instead of nothing, when the user types a character that the
    // text cannot hold (beyond Latin-1); off at first.
    void SetRejectedCharacterHandler(std::function<void(QChar)> handler);

    // Counts the changes of the text (not of its formats): a host can tell
    // whether the text changed since it last looked without reading it.
    unsigned TextRevision() const;

    // Inspection, for hosts and tests.
    int UndoStepCount() const;
    bool IsUpdateLocked() const;
    bool IsSelectionHidden() const;
    bool IsShown() const;

    // Input of the Qt widget, translated into the framework's messages.
    void KeyPressed(QKeyEvent* event);
    void KeyReleased(QKeyEvent* event);
    bool WantsTabKey();
    void FocusGained();
    void TextDropped(const QMimeData* source);
    void TextComposed(const QString& text);
    void ContextMenuRequested(const QPoint& globalPosition);
    // A change that Qt made behind the widget's back (a drag out of it).
    void FollowOutsideChange(int position, int removed, int added);
    void TextChangedOutside();
    // The user moved the caret or the selection with mouse or keys.
    void SelectionMovedByUser();

    struct State;

private:
    bool ReplaceRange(int start, int end, const QString& inserted, UINT message, WPARAM wParam,
                      int undoMode);
    bool AskProtected(UINT message, WPARAM wParam, int start, int end);
    void NotifyChanged();
    void NotifySelection(bool always);
    void DeleteByKey(UINT key, bool wholeWord);
    bool HandleShortcut(QKeyEvent* event);
    bool PassesToWindow(const QKeyEvent* event) const;
    void MoveCaret(UINT key, bool extend);
    bool TakeBack(std::deque<qt_richedit::UndoStep>& from, std::deque<qt_richedit::UndoStep>& to);
    void TypeCharacters(const QString& text);
    QString IndentBefore(int position) const;
    void ApplyDefaultFormat();
    void ApplyTabStops();

    std::unique_ptr<State> state;
};

// The factory to install with SetRichEditWidgetFactory: every control and
// dialog item made after it gets a Qt widget.
std::unique_ptr<CRichEditWidget> CreateQtRichEditWidget(CWnd* parent, int id);
