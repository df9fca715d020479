#include "text_edit_view.h"

#include <QKeyEvent>
#include <QMimeData>

#include "line_gutter.h"

#include "qelkern-qt/qtrichedit.h"

CQtTextEditView::CQtTextEditView(CQtRichEditWidget* widget) : owner(widget) {
    // Lines of the widget are paragraphs: script lines never wrap.
    setLineWrapMode(QPlainTextEdit::NoWrap);
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
    return QPlainTextEdit::event(event);
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
    QPlainTextEdit::focusInEvent(event);
    const Qt::FocusReason reason = event->reason();
    if (owner && reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason) owner->FocusGained();
}

void CQtTextEditView::inputMethodEvent(QInputMethodEvent* event) {
    if (!owner || event->commitString().isEmpty()) {
        QPlainTextEdit::inputMethodEvent(event);
        return;
    }
    QInputMethodEvent composing(event->preeditString(), event->attributes());
    QPlainTextEdit::inputMethodEvent(&composing);
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

// The gutter sits in the view's left margin, beside the viewport.
void CQtTextEditView::ShowGutter(bool show) {
    if (show == (gutter != nullptr)) return;
    if (!show) {
        delete gutter;
        gutter = nullptr;
        setViewportMargins(0, 0, 0, 0);
        return;
    }
    gutter = new CQtLineGutter(this);
    const auto repaint = [this] {
        if (gutter) gutter->update();
    };
    connect(this, &QPlainTextEdit::updateRequest, gutter, repaint);
    connect(this, &QPlainTextEdit::cursorPositionChanged, gutter, repaint);
    connect(document(), &QTextDocument::blockCountChanged, gutter, [this] { PlaceGutter(); });
    PlaceGutter();
    gutter->show();
}

void CQtTextEditView::PlaceGutter() {
    if (!gutter) return;
    const int width = gutter->WidthForText();
    if (viewportMargins().left() != width) setViewportMargins(width, 0, 0, 0);
    const QRect area = contentsRect();
    gutter->setGeometry(area.left(), area.top(), width, area.height());
    gutter->update();
}

void CQtTextEditView::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    PlaceGutter();
}

// A new font (the zoom) needs other room for the numbers.
void CQtTextEditView::changeEvent(QEvent* event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange) PlaceGutter();
}
