// qel-edit: breakpoints in the gutter, the debug run, its step commands, and
// what a pause shows (the current line, the call stack, the variables).
#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QStatusBar>
#include <QStyle>
#include <QTextBlock>
#include <QToolBar>
#include <QLabel>

#include "debug_panes.h"
#include "edit_window.h"
#include "qelkern-qt/qtrichedit.h"
#include "script_files.h"

namespace {
QString ReasonText(const CDebugPause& pause) {
    switch (pause.reason) {
    case DebugReason::Breakpoint: return QStringLiteral("Haltepunkt");
    case DebugReason::Step: return QStringLiteral("Schritt");
    case DebugReason::PauseRequest: return QStringLiteral("angehalten");
    case DebugReason::RuntimeError:
        return QStringLiteral("Laufzeitfehler: %1").arg(QString::fromLatin1(pause.message.str().c_str()));
    }
    return QString();
}
}  // namespace

void CQelEditWindow::BuildDebugMenu(QToolBar* tools) {
    QMenu* menu = menuBar()->addMenu(QStringLiteral("De&buggen"));
    QAction* debug = menu->addAction(style()->standardIcon(QStyle::SP_MediaSeekForward),
                                     QStringLiteral("Mit &Debugger ausführen"), this, [this] { DebugText(); });
    idleOnly << debug;
    const auto whilePaused = [&](QStyle::StandardPixmap icon, const QString& text, QKeySequence key, DebugCommand command) {
        QAction* action = menu->addAction(style()->standardIcon(icon), text, key, this, [this, command] { Resume(command); });
        action->setEnabled(false);
        pausedOnly << action;
        return action;
    };
    QAction* resume = whilePaused(QStyle::SP_MediaPlay, QStringLiteral("&Fortsetzen"), QKeySequence(Qt::Key_F5),
                                  DebugCommand::Continue);
    QAction* over = whilePaused(QStyle::SP_ArrowRight, QStringLiteral("Schritt &über"), QKeySequence(Qt::Key_F10),
                                DebugCommand::StepOver);
    QAction* into = whilePaused(QStyle::SP_ArrowDown, QStringLiteral("Schritt &hinein"), QKeySequence(Qt::Key_F11),
                                DebugCommand::StepInto);
    QAction* out = whilePaused(QStyle::SP_ArrowUp, QStringLiteral("Schritt h&eraus"),
                               QKeySequence(Qt::SHIFT | Qt::Key_F11), DebugCommand::StepOut);
    pauseAction = menu->addAction(style()->standardIcon(QStyle::SP_MediaPause), QStringLiteral("&Anhalten"), this,
                                  [this] { debugger.RequestPause(); });
    pauseAction->setEnabled(false);
    menu->addAction(stopAction);
    menu->addSeparator();
    menu->addAction(QStringLiteral("&Haltepunkt ein/aus"), QKeySequence(Qt::Key_F9), this, [this] {
        long start = 0, end = 0;
        editor.GetSel(start, end);
        ToggleBreakpoint(static_cast<int>(editor.LineFromChar(start)) + 1);
    });
    menu->addAction(QStringLiteral("Alle Haltepunkte &löschen"), this, [this] {
        widget->ClearLineMarks(LineMarkBreakpoint);
        debugger.ClearAllBreakpoints();
    });
    tools->addSeparator();
    for (QAction* action : {debug, resume, over, into, out}) tools->addAction(action);

    widget->SetGutterClickHandler([this](int line) { ToggleBreakpoint(line + 1); });
    debugger.onPaused = [this](const CDebugPause& pause) { ShowPause(pause); };
    debugger.onResumed = [this] { LeavePause(); };
    debugger.onMoved = [this](const CDebugBreakpoint& breakpoint) { MoveBreakpoint(breakpoint); };
    panes = std::make_unique<CDebugPanes>(this);
    panes->onFrameChosen = [this](int frame) { ChooseFrame(frame); };
}

// A run that is on takes the change over at its next statement.
void CQelEditWindow::ToggleBreakpoint(int line) {
    if (line < 1 || line > editor.GetLineCount()) return;
    const bool on = !HasBreakpoint(line);
    widget->SetLineMark(line - 1, LineMarkBreakpoint, on);
    if (!debugging) return;
    if (on)
        debugger.SetBreakpoint(DebugFile::Script, line);
    else
        debugger.ClearBreakpoint(DebugFile::Script, line);
}

bool CQelEditWindow::HasBreakpoint(int line) const { return widget->HasLineMark(line - 1, LineMarkBreakpoint); }

// The dots ride on their lines while the text is edited; a run takes their
// lines as they are when it starts.
std::vector<int> CQelEditWindow::BreakpointLines() const {
    std::vector<int> lines;
    const QTextDocument* document = widget->GetTextEdit()->document();
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next())
        if (widget->HasLineMark(block.blockNumber(), LineMarkBreakpoint)) lines.push_back(block.blockNumber() + 1);
    return lines;
}

// Without breakpoints the run pauses at its first statement.
int CQelEditWindow::DebugText() {
    if (session.IsRunning()) return 0;
    debugger.ClearAllBreakpoints();
    const std::vector<int> lines = BreakpointLines();
    for (int line : lines) debugger.SetBreakpoint(DebugFile::Script, line);
    debugger.StartRun(lines.empty() ? DebugCommand::StepInto : DebugCommand::Continue);
    _VarSuccess = 0;
    debugging = true;
    pauseAction->setEnabled(true);
    const int result = RunSession(QStringLiteral("Debuggen"), true, &debugger);
    debugging = false;
    pauseAction->setEnabled(false);
    panes->SetVisible(false);
    return result;
}

void CQelEditWindow::Resume(DebugCommand command) { debugger.Resume(command); }

void CQelEditWindow::ShowPause(const CDebugPause& pause) {
    for (QAction* action : std::as_const(pausedOnly)) action->setEnabled(true);
    pauseAction->setEnabled(false);
    panes->Show(pause);
    const CDebugLocation& at = pause.location;
    QString status = QStringLiteral("Angehalten in Zeile %1").arg(at.line);
    if (at.file == DebugFile::Prelude)
        status = QStringLiteral("Angehalten im Vorspann %1, Zeile %2").arg(PreludePath(preludeDirectory)).arg(at.line);
    runStatus->setText(QStringLiteral("%1 (%2)").arg(status, ReasonText(pause)));
    runStatus->setStyleSheet(pause.reason == DebugReason::RuntimeError ? QStringLiteral("color: #c00000;") : QString());
    if (at.file == DebugFile::Script) MarkCurrentLine(at.line);
    activateWindow();
}

void CQelEditWindow::LeavePause() {
    for (QAction* action : std::as_const(pausedOnly)) action->setEnabled(false);
    pauseAction->setEnabled(debugging);
    MarkCurrentLine(0);
    panes->Clear();
    runStatus->setText(QStringLiteral("Debuggen …"));
    runStatus->setStyleSheet(QString());
}

// The line gets the gutter's arrow and a background of its own; the caret
// goes there and the view follows. 0: no line.
void CQelEditWindow::MarkCurrentLine(int line) {
    widget->ClearLineMarks(LineMarkCurrent);
    QPlainTextEdit* view = widget->GetTextEdit();
    QList<QTextEdit::ExtraSelection> marked;
    if (line > 0) {
        widget->SetLineMark(line - 1, LineMarkCurrent, true);
        GoToLine(line);
        QTextEdit::ExtraSelection current;
        current.cursor = QTextCursor(view->document()->findBlockByNumber(line - 1));
        current.format.setBackground(QColor(255, 230, 120, 150));
        current.format.setProperty(QTextFormat::FullWidthSelection, true);
        marked << current;
        view->ensureCursorVisible();
    }
    view->setExtraSelections(marked);
}

// Another frame: its variables, and its line (the prelude's only named).
void CQelEditWindow::ChooseFrame(int frame) {
    const CDebugPause* pause = debugger.Pause();
    if (!pause || frame < 0 || static_cast<size_t>(frame) >= pause->frames.size()) return;
    panes->ShowFrame(*pause, frame);
    const CDebugLocation& at = pause->frames[static_cast<size_t>(frame)].location;
    if (at.file == DebugFile::Prelude) {
        statusBar()->showMessage(
            QStringLiteral("%1 steht im Vorspann %2, Zeile %3")
                .arg(QString::fromLatin1(pause->frames[static_cast<size_t>(frame)].routine.str().c_str()),
                     PreludePath(preludeDirectory))
                .arg(at.line),
            5000);
        return;
    }
    GoToLine(at.line);
    widget->GetTextEdit()->ensureCursorVisible();
}

void CQelEditWindow::MoveBreakpoint(const CDebugBreakpoint& breakpoint) {
    if (breakpoint.requested.file != DebugFile::Script) return;
    // The engine is told the dot's new line too, so that a click on the dot
    // clears what the engine holds.
    widget->SetLineMark(breakpoint.requested.line - 1, LineMarkBreakpoint, false);
    debugger.ClearBreakpoint(DebugFile::Script, breakpoint.requested.line);
    if (breakpoint.placed.line > 0) {
        widget->SetLineMark(breakpoint.placed.line - 1, LineMarkBreakpoint, true);
        debugger.SetBreakpoint(DebugFile::Script, breakpoint.placed.line);
        return;
    }
    statusBar()->showMessage(QStringLiteral("Haltepunkt in Zeile %1 entfernt: ab dort steht keine Anweisung mehr.")
                                 .arg(breakpoint.requested.line),
                             5000);
}

const CDebugPanes& CQelEditWindow::DebugPanes() const { return *panes; }
