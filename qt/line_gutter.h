// The line-number gutter at the left of the text: numbers in the text's font
// (so it follows the zoom), kept in step with the scrolling, and the marks of
// each line, which ride on the line's block and so move with it as text is
// inserted or removed above.
#pragma once

#include <QWidget>
#include <functional>

class CQtTextEditView;
class QTextBlock;

class CQtLineGutter : public QWidget {
public:
    explicit CQtLineGutter(CQtTextEditView* view);

    int WidthForText() const;
    static unsigned MarksOf(const QTextBlock& block);
    static void SetMarks(QTextBlock& block, unsigned marks);

    std::function<void(int line)> onClicked;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    int LineAt(int y) const;
    void PaintMarks(QPainter& painter, unsigned marks, const QRect& row) const;

    CQtTextEditView* view;
};
