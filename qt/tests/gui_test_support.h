// Helpers of the offscreen GUI tests: modal windows answered by a handler,
// typing into a widget, the engine's environment with the examples' prelude.
#pragma once

#include <QPointer>
#include <QTimer>
#include <functional>
#include <vector>

#include "qelkern-qt/qtuserinterface.h"
#include "qelkern/qelkern.h"

class QWidget;
class QPlainTextEdit;
#include <QTextCharFormat>

// Calls `handle` once for each modal window that opens while it lives; the
// handler looks at the window and closes it.
class ModalHandler {
public:
    explicit ModalHandler(std::function<void(QWidget*)> handle);
    int Handled() const { return static_cast<int>(seen.size()); }

private:
    void Poll();
    std::function<void(QWidget*)> handle;
    std::vector<QPointer<QWidget>> seen;
    QTimer timer;
};

// Types text with real key events; '\n' is the return key.
void TypeText(QWidget* widget, const QString& text);

// The Qt user interface that also counts the beeps.
class CountingUserInterface : public CQtUserInterface {
public:
    void Beep() override { ++beeps; }
    int beeps = 0;
};

// The directory of the examples and their prelude.
QString ExamplesDirectory();
CString ExamplesPrelude();

// The environment of the process, set before the first compile.
void UseBaseEnvironment();

// The colour and boldness of one character of a control.
struct CharStyle {
    COLORREF colour;
    bool bold;
};
CharStyle StyleAt(CRichEditCtrl& control, int position);

// The format that Qt paints a character of a view in.
QTextCharFormat PaintedFormat(const QPlainTextEdit* view, int position);
