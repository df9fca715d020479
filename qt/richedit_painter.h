// What Qt paints of the format model: each block's formats go to its layout,
// as a syntax highlighter's do, so the document itself carries no formats.
// Only blocks marked since the last pass are looked at, and only those whose
// formats differ are laid out again.
#pragma once

#include <QColor>
#include <QHash>
#include <QTextCharFormat>
#include <climits>
#include <vector>

#include "richedit_format_model.h"

class QTextDocument;

namespace qt_richedit {

class FormatPainter {
public:
    // Colours shown in place of stored ones (a dark palette's), and the zoom.
    void SetDisplayColours(const QHash<QRgb, QColor>& colours);
    void SetZoom(double factor);
    double Zoom() const { return zoom; }
    QColor DisplayColour(const QColor& stored) const;

    void Mark(int start, int end);
    void MarkAll() { Mark(0, INT_MAX - 1); }
    // Keeps the marks on their text across a change of it.
    void Shift(int start, int removed, int inserted);
    bool HasWork() const { return dirtyStart <= dirtyEnd; }
    void Apply(QTextDocument* document, const FormatModel& model);

private:
    const QTextCharFormat& PaintFormat(const FormatModel& model, FormatId id);

    int dirtyStart = INT_MAX;
    int dirtyEnd = -1;
    QHash<QRgb, QColor> displayColours;
    double zoom = 1.0;
    std::vector<QTextCharFormat> paintFormats;  // by id; empty: not made yet
    std::vector<bool> paintFormatMade;
};

}  // namespace qt_richedit
