// CQtRichEditWidget: the line-number gutter and the marks of the lines.
#include <QTextBlock>

#include "line_gutter.h"
#include "richedit_state.h"

void CQtRichEditWidget::ShowLineNumbers(bool show) {
    if (!state->view) return;
    state->view->ShowGutter(show);
    if (CQtLineGutter* gutter = state->view->Gutter()) gutter->onClicked = state->gutterClicked;
}

QWidget* CQtRichEditWidget::LineNumberGutter() const { return state->view ? state->view->Gutter() : nullptr; }

void CQtRichEditWidget::SetLineMark(int line, LineMark mark, bool on) {
    const QTextDocument* document = state->Document();
    if (!document) return;
    QTextBlock block = document->findBlockByNumber(line);
    if (!block.isValid()) return;
    const unsigned marks = CQtLineGutter::MarksOf(block);
    CQtLineGutter::SetMarks(block, on ? (marks | mark) : (marks & ~static_cast<unsigned>(mark)));
    if (QWidget* gutter = LineNumberGutter()) gutter->update();
}

bool CQtRichEditWidget::HasLineMark(int line, LineMark mark) const {
    const QTextDocument* document = state->Document();
    return document && (CQtLineGutter::MarksOf(document->findBlockByNumber(line)) & mark) != 0;
}

void CQtRichEditWidget::ClearLineMarks(LineMark mark) {
    const QTextDocument* document = state->Document();
    if (!document) return;
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next())
        if (CQtLineGutter::MarksOf(block) & mark)
            CQtLineGutter::SetMarks(block, CQtLineGutter::MarksOf(block) & ~static_cast<unsigned>(mark));
    if (QWidget* gutter = LineNumberGutter()) gutter->update();
}

void CQtRichEditWidget::SetGutterClickHandler(std::function<void(int line)> handler) {
    state->gutterClicked = std::move(handler);
    if (CQtLineGutter* gutter = state->view ? state->view->Gutter() : nullptr) gutter->onClicked = state->gutterClicked;
}
