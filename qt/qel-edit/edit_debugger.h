// qel-edit's debugger: the engine pauses the script on the GUI thread, so a
// pause runs a nested event loop until the user gives the next command. The
// window keeps answering meanwhile; what it must not do then it guards by
// IsPaused() as it does a run by IsRunning().
#pragma once

#include <QEventLoop>
#include <functional>

#include "qelkern/debugger.h"

class CEditDebugger : public CDebugger {
public:
    DebugCommand OnPause(const CDebugPause& pause) override;
    void OnBreakpointMoved(const CDebugBreakpoint& breakpoint) override;

    // Ends the pause with this command; nothing if no pause is on.
    void Resume(DebugCommand command);
    bool IsPaused() const { return waiting != nullptr; }
    // The pause on, for a look at other frames; null while the script runs.
    const CDebugPause* Pause() const { return pause; }
    // Whether the user stopped the current or last run.
    bool WasStopped() const { return stopped; }
    void StartRun(DebugCommand first);

    std::function<void(const CDebugPause&)> onPaused;
    std::function<void()> onResumed;
    std::function<void(const CDebugBreakpoint&)> onMoved;

private:
    QEventLoop* waiting = nullptr;
    const CDebugPause* pause = nullptr;
    DebugCommand next = DebugCommand::Continue;
    bool stopped = false;
};
