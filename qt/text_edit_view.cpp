#include "text_edit_view.h"

#include <QKeyEvent>
#include <QMimeData>

#include "qelkern-qt/qtrichedit.h"

CQtTextEditView::CQtTextEditView(CQtRichEditWidget* widget) : owner(widget) {
    setAcceptRichText(false);
    // Lines of the widget are paragraphs: script lines never wrap.
    setLineWrapMode(QTextEdit::NoWrap);
    setTabChangesFocus(false);
}

// The tab key goes to the control when its dialog code asks for it, and
// moves the focus otherwise.
bool CQtTextEditView::event(QEvent* event) {
    if (owner && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        const bool tab = key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab;
        if (tab && !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
            if (owner->WantsTabKey())
                keyPressEvent(key);
            else
                focusNextPrevChild(key->key() == Qt::Key_Tab && !(key->modifiers() & Qt::ShiftModifier));
            return true;
        }
    }
    return QTextEdit::event(event);
}

void CQtTextEditView::keyPressEvent(QKeyEvent* event) {
    if (owner)
        owner->KeyPressed(event);
    else
        event->ignore();
}

void CQtTextEditView::keyReleaseEvent(QKeyEvent* event) {
    if (owner)
        owner->KeyReleased(event);
    else
        event->ignore();
}

// Coming back from a menu or from another window is no new focus for the
// control: its selection stays.
void CQtTextEditView::focusInEvent(QFocusEvent* event) {
    QTextEdit::focusInEvent(event);
    const Qt::FocusReason reason = event->reason();
    if (owner && reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason) owner->FocusGained();
}

void CQtTextEditView::inputMethodEvent(QInputMethodEvent* event) {
    if (!owner || event->commitString().isEmpty()) {
        QTextEdit::inputMethodEvent(event);
        return;
    }
    QInputMethodEvent composing(event->preeditString(), event->attributes());
    QTextEdit::inputMethodEvent(&composing);
    owner->TextComposed(event->commitString());
}

bool CQtTextEditView::canInsertFromMimeData(const QMimeData* source) const {
    return source && source->hasText() && !isReadOnly();
}

void CQtTextEditView::insertFromMimeData(const QMimeData* source) {
    if (owner) owner->TextDropped(source);
}

void CQtTextEditView::contextMenuEvent(QContextMenuEvent* event) {
    if (owner) owner->ContextMenuRequested(event->globalPos());
}
