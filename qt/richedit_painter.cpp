#include "richedit_painter.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <algorithm>

namespace qt_richedit {

void FormatPainter::SetDisplayColours(const QHash<QRgb, QColor>& colours) {
    displayColours = colours;
    paintFormatMade.clear();
    MarkAll();
}

void FormatPainter::SetZoom(double factor) {
    zoom = factor;
    paintFormatMade.clear();
    MarkAll();
}

QColor FormatPainter::DisplayColour(const QColor& stored) const {
    return displayColours.value(stored.rgb() | 0xFF000000u, stored);
}

void FormatPainter::Mark(int start, int end) {
    dirtyStart = std::min(dirtyStart, std::max(start, 0));
    dirtyEnd = std::max(dirtyEnd, end);
}

void FormatPainter::Shift(int start, int removed, int inserted) {
    if (!HasWork()) return;
    const auto moved = [&](int position) {
        if (position <= start) return position;
        if (position >= start + removed) return position - removed + inserted;
        return start + inserted;
    };
    dirtyStart = moved(dirtyStart);
    dirtyEnd = dirtyEnd >= INT_MAX - 1 ? dirtyEnd : moved(dirtyEnd);
}

// Stored colours are what the control reports; the shown ones may differ,
// and sizes follow the zoom.
const QTextCharFormat& FormatPainter::PaintFormat(const FormatModel& model, FormatId id) {
    if (paintFormatMade.size() < static_cast<size_t>(model.FormatCount())) {
        paintFormatMade.resize(static_cast<size_t>(model.FormatCount()), false);
        paintFormats.resize(paintFormatMade.size());
    }
    if (!paintFormatMade[id]) {
        QTextCharFormat format = model.Format(id);
        if (format.hasProperty(QTextFormat::ForegroundBrush))
            format.setForeground(DisplayColour(format.foreground().color()));
        if (format.hasProperty(QTextFormat::FontPointSize))
            format.setFontPointSize(format.fontPointSize() * zoom);
        paintFormats[id] = format;
        paintFormatMade[id] = true;
    }
    return paintFormats[id];
}

void FormatPainter::Apply(QTextDocument* document, const FormatModel& model) {
    if (!HasWork() || !document) return;
    const int length = std::min(model.Length(), document->characterCount() - 1);
    const int start = std::min(dirtyStart, length);
    const int end = std::min(dirtyEnd, length);
    dirtyStart = INT_MAX;
    dirtyEnd = -1;
    int changedStart = INT_MAX;
    int changedEnd = -1;
    QList<QTextLayout::FormatRange> ranges;
    for (QTextBlock block = document->findBlock(start); block.isValid(); block = block.next()) {
        const int blockStart = block.position();
        if (blockStart > end) break;
        const int blockEnd = std::min(blockStart + block.length() - 1, length);
        ranges.clear();
        model.ForEachRun(blockStart, blockEnd, [&](FormatId id, int from, int to) {
            if (id != FormatModel::plainId) ranges.append({from - blockStart, to - from, PaintFormat(model, id)});
        });
        QTextLayout* layout = block.layout();
        if (layout->formats() == ranges) continue;
        layout->setFormats(ranges);
        // A block that Qt has not laid out yet takes its formats when it is.
        if (layout->lineCount() == 0) continue;
        changedStart = std::min(changedStart, blockStart);
        changedEnd = blockStart + block.length();
    }
    // One relayout for the whole pass.
    if (changedStart <= changedEnd) document->markContentsDirty(changedStart, changedEnd - changedStart);
}

}  // namespace qt_richedit
