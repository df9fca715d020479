// The QPlainTextEdit that stands behind CQtRichEditWidget: it hands every input
// of the user to the widget object, which turns it into the framework's
// messages for the control's message map.
#pragma once

#include <QPlainTextEdit>
#include <QTextBlock>

class CQtRichEditWidget;
class CQtLineGutter;

class CQtTextEditView : public QPlainTextEdit {
public:
    explicit CQtTextEditView(CQtRichEditWidget* owner);
    // The widget object is going away; input goes nowhere from now on.
    void DetachOwner() { owner = nullptr; }
    // Qt's own handling of a key, for the keys that only move the caret.
    void MoveByKey(QKeyEvent* event) { QPlainTextEdit::keyPressEvent(event); }

    void ShowGutter(bool show);
    CQtLineGutter* Gutter() const { return gutter; }
    // Where the visible blocks lie, for the gutter.
    QTextBlock FirstVisibleBlock() const { return firstVisibleBlock(); }
    QRectF BlockGeometry(const QTextBlock& block) const {
        return blockBoundingGeometry(block).translated(contentOffset());
    }

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void PlaceGutter();

    CQtRichEditWidget* owner;
    CQtLineGutter* gutter = nullptr;
};
