// The QTextEdit that stands behind CQtRichEditWidget: it hands every input
// of the user to the widget object, which turns it into the framework's
// messages for the control's message map.
#pragma once

#include <QTextEdit>

class CQtRichEditWidget;

class CQtTextEditView : public QTextEdit {
public:
    explicit CQtTextEditView(CQtRichEditWidget* owner);
    // The widget object is going away; input goes nowhere from now on.
    void DetachOwner() { owner = nullptr; }
    // Qt's own handling of a key, for the keys that only move the caret.
    void MoveByKey(QKeyEvent* event) { QTextEdit::keyPressEvent(event); }

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    CQtRichEditWidget* owner;
};
