#include <QAbstractTextDocumentLayout>
#include <QPrinter>
#include <QTextDocument>
#include <QTextFrame>

#include "qelkern-qt/qtuserinterface.h"
#include "richedit_state.h"

namespace {
constexpr double twipsPerPoint = 20.0;
constexpr double tabStopInches = 0.2;  // the editor's tab stops: 288 twips
}

bool PrintPlainText(QPrinter& printer, const CString& title, const CString& text, int leftMargin,
                    int topMargin, int rightMargin, int bottomMargin) {
    printer.setDocName(Latin1Text(title));
    printer.setFullPage(false);
    const QMarginsF margins(leftMargin / twipsPerPoint, topMargin / twipsPerPoint,
                            rightMargin / twipsPerPoint, bottomMargin / twipsPerPoint);
    if (!printer.setPageMargins(margins, QPageLayout::Point)) return false;

    QTextDocument document;
    document.documentLayout()->setPaintDevice(&printer);
    QFont font(QStringLiteral("Courier New"), 10);
    font.setStyleHint(QFont::TypeWriter);
    document.setDefaultFont(font);
    QTextOption option = document.defaultTextOption();
    option.setTabStopDistance(tabStopInches * printer.resolution());
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document.setDefaultTextOption(option);
    QTextFrameFormat frame = document.rootFrame()->frameFormat();
    frame.setMargin(0);
    document.rootFrame()->setFrameFormat(frame);
    document.setPlainText(qt_richedit::ToQt(text));
    // The page is the printable rectangle inside the margins.
    document.setPageSize(printer.pageRect(QPrinter::DevicePixel).size());
    document.print(&printer);
    return printer.printerState() != QPrinter::Error;
}
