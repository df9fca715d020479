#include "gui_test_support.h"

#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextLayout>

#include <QApplication>
#include <QTest>
#include <QWidget>
#include <algorithm>

ModalHandler::ModalHandler(std::function<void(QWidget*)> handler) : handle(std::move(handler)) {
    QObject::connect(&timer, &QTimer::timeout, [this] { Poll(); });
    timer.start(10);
}

void ModalHandler::Poll() {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal || !modal->isVisible()) return;
    if (std::find(seen.begin(), seen.end(), modal) != seen.end()) return;
    seen.emplace_back(modal);
    // A timer does not fire again while its handler runs, and a handler may
    // open the next modal window: each window gets a timer of its own.
    QPointer<QWidget> window = modal;
    QTimer::singleShot(0, modal, [this, window] {
        if (window) handle(window);
    });
}

void TypeText(QWidget* widget, const QString& text) {
    for (const QChar ch : text) {
        if (ch == u'\n')
            QTest::keyClick(widget, Qt::Key_Return);
        else if (ch.unicode() < 0x80)
            QTest::keyClicks(widget, QString(ch));
        else  // the test library maps only ASCII to keys
            QTest::sendKeyEvent(QTest::Click, widget, static_cast<Qt::Key>(ch.toUpper().unicode()), QString(ch),
                                Qt::NoModifier);
    }
}

QString ExamplesDirectory() { return QStringLiteral(QEL_SOURCE_DIR "/examples"); }
CString ExamplesPrelude() { return CString(QEL_SOURCE_DIR "/examples/extern.qel"); }

void UseBaseEnvironment() {
    static CBasisPredefinedUmgebung environment;
    pBasisPredefinedUmgebung = &environment;
}

CharStyle StyleAt(CRichEditCtrl& control, int position) {
    control.SetSel(position, position + 1);
    CHARFORMAT cf;
    control.GetSelectionCharFormat(cf);
    return {cf.crTextColor, (cf.dwEffects & CFE_BOLD) != 0};
}

QTextCharFormat PaintedFormat(const QPlainTextEdit* view, int position) {
    const QTextBlock block = view->document()->findBlock(position);
    const int column = position - block.position();
    for (const QTextLayout::FormatRange& range : block.layout()->formats())
        if (column >= range.start && column < range.start + range.length) return range.format;
    return QTextCharFormat();
}
