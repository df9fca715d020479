#include "line_gutter.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <QPlainTextEdit>
#include <algorithm>

#include "qelkern-qt/qtrichedit.h"
#include "text_edit_view.h"

namespace {
constexpr int padding = 4;
constexpr int minimumDigits = 3;

}  // namespace

CQtLineGutter::CQtLineGutter(CQtTextEditView* textView) : QWidget(textView), view(textView) {
    setAutoFillBackground(false);
    setCursor(Qt::ArrowCursor);
}

unsigned CQtLineGutter::MarksOf(const QTextBlock& block) {
    return block.isValid() && block.userState() > 0 ? static_cast<unsigned>(block.userState()) : 0;
}

void CQtLineGutter::SetMarks(QTextBlock& block, unsigned marks) {
    if (block.isValid()) block.setUserState(marks == 0 ? -1 : static_cast<int>(marks));
}

int CQtLineGutter::WidthForText() const {
    int digits = 1;
    for (int lines = std::max(1, view->document()->blockCount()); lines >= 10; lines /= 10) ++digits;
    const QFontMetrics metrics(view->font());
    const int markSpace = metrics.height();
    return padding + markSpace + metrics.horizontalAdvance(u'9') * std::max(digits, minimumDigits) + 2 * padding;
}

void CQtLineGutter::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const QPalette& colours = view->palette();
    painter.fillRect(event->rect(), colours.color(QPalette::AlternateBase));
    painter.setFont(view->font());
    const QColor number = colours.color(QPalette::PlaceholderText);
    const QColor current = colours.color(QPalette::Text);
    const int caretLine = view->textCursor().blockNumber();
    const int offset = view->viewport()->y() - y();
    const int textWidth = width() - padding;
    for (QTextBlock block = view->FirstVisibleBlock(); block.isValid(); block = block.next()) {
        const QRectF geometry = view->BlockGeometry(block);
        const QTextLayout* layout = block.layout();
        const qreal height = layout && layout->lineCount() > 0 ? layout->lineAt(0).height() : geometry.height();
        const QRect row(0, qRound(geometry.top()) + offset, width(), qRound(height));
        if (row.top() > event->rect().bottom()) break;
        if (row.bottom() < event->rect().top()) continue;
        PaintMarks(painter, MarksOf(block), row);
        painter.setPen(block.blockNumber() == caretLine ? current : number);
        painter.drawText(QRect(0, row.top(), textWidth, row.height()), Qt::AlignRight | Qt::AlignVCenter,
                         QString::number(block.blockNumber() + 1));
    }
}

void CQtLineGutter::PaintMarks(QPainter& painter, unsigned marks, const QRect& row) const {
    if (marks & LineMarkError) painter.fillRect(row, QColor(255, 64, 64, 110));
    const int size = std::max(6, row.height() - 6);
    const QRect spot(padding, row.top() + (row.height() - size) / 2, size, size);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (marks & LineMarkBreakpoint) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(200, 30, 30));
        painter.drawEllipse(spot);
    }
    if (marks & LineMarkCurrent) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(230, 180, 0));
        const QPolygon arrow({spot.topLeft(), QPoint(spot.right(), spot.center().y()), spot.bottomLeft()});
        painter.drawPolygon(arrow);
    }
    if (marks & LineMarkError) {
        painter.setPen(QPen(QColor(200, 0, 0), 2));
        painter.drawLine(spot.topLeft(), spot.bottomRight());
        painter.drawLine(spot.topRight(), spot.bottomLeft());
    }
    painter.restore();
}

int CQtLineGutter::LineAt(int y) const {
    const QPoint inViewport(0, y - (view->viewport()->y() - this->y()));
    return view->cursorForPosition(inViewport).blockNumber();
}

void CQtLineGutter::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && onClicked) onClicked(LineAt(qRound(event->position().y())));
}
