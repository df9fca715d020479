#include "edit_debugger.h"

#include <utility>

void CEditDebugger::StartRun(DebugCommand first) {
    startCommand = first;
    stopped = false;
}

DebugCommand CEditDebugger::OnPause(const CDebugPause& shown) {
    if (waiting) return DebugCommand::Continue;  // a pause inside a pause cannot wait again
    QEventLoop loop;
    waiting = &loop;
    pause = &shown;
    next = DebugCommand::Continue;
    if (onPaused) onPaused(shown);
    loop.exec();
    waiting = nullptr;
    pause = nullptr;
    if (onResumed) onResumed();
    if (next == DebugCommand::Stop) stopped = true;
    return next;
}

void CEditDebugger::OnBreakpointMoved(const CDebugBreakpoint& breakpoint) {
    if (onMoved) onMoved(breakpoint);
}

void CEditDebugger::Resume(DebugCommand command) {
    if (!waiting) return;
    next = command;
    waiting->quit();
}
