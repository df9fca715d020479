// The debug loop: one instruction at a time, a look at each statement start
// for breakpoints, step commands and the host's requests.
#include "machine/debug_run.h"

#include <algorithm>
#include <mutex>

#include "machine/run_watch.h"
#include "machine/stepper.h"

namespace qelkern {

namespace {

constexpr uint8_t statementStart = 1;
constexpr uint8_t breakpoint = 2;

// Runs are not reentrant, so one attached run at a time is all there is.
DebugRun* attached = nullptr;

}  // namespace

DebugRun* DebugRunOf(const CInterpreter& machine) {
    return attached && attached->IsFor(machine) ? attached : nullptr;
}

ScriptDebugging::ScriptDebugging(CParser& parser, int preludeLines) : debugger(pDebugger) {
    if (!debugger) return;
    info = std::make_unique<DebugInfo>(preludeLines);
    parser.debugInfo = info.get();
}

ScriptDebugging::~ScriptDebugging() = default;

void ScriptDebugging::Attach(CInterpreter& machine) {
    if (debugger) run = std::make_unique<DebugRun>(machine, *info, *debugger);
}

DebugRun::DebugRun(CInterpreter& m, const DebugInfo& debugInfo, CDebugger& host)
    : machine(m), info(debugInfo), debugger(host) {
    int length = 0;
    for (const DebugRoutine& routine : info.Routines()) length = std::max(length, routine.codeEnd);
    marks.assign(static_cast<size_t>(length), 0);
    lines.assign(static_cast<size_t>(length), -1);
    for (const StatementStart& start : info.Statements()) {
        if (start.address >= length) continue;  // a compile that never finished its main block
        marks[static_cast<size_t>(start.address)] |= statementStart;
        lines[static_cast<size_t>(start.address)] = start.line;
    }
    attached = this;
}

DebugRun::~DebugRun() {
    if (attached == this) attached = nullptr;
}

void DebugRun::Run(RunWatch& watch) {
    debugger.pauseRequested.store(false, std::memory_order_relaxed);
    debugger.stopRequested.store(false, std::memory_order_relaxed);
    SyncBreakpoints();
    mode = debugger.startCommand;
    modeFrame = machine.b;
    modeLine = -1;
    running = true;
    MachineStepper stepper(machine, watch);
    do {
        if (!AtStatement(machine.p)) {
            // A stop as by a cancel, but without a message: the user asked for it.
            watch.Stop(StopCause::Cancelled);
            machine.failed = 1;
            stoppedByHost = true;
            break;
        }
    } while (stepper.Step());
    running = false;
}

// false: the host has stopped the run.
bool DebugRun::AtStatement(int address) {
    if (address < 0 || static_cast<size_t>(address) >= marks.size()) return true;
    const uint8_t mark = marks[static_cast<size_t>(address)];
    if (!(mark & statementStart)) return true;
    if (debugger.breakpointRevision.load(std::memory_order_acquire) != seenRevision) {
        SyncBreakpoints();
        return AtStatement(address);
    }
    if (debugger.stopRequested.load(std::memory_order_relaxed)) {
        debugger.stopRequested.store(false, std::memory_order_relaxed);
        return false;
    }
    if (debugger.pauseRequested.load(std::memory_order_relaxed)) {
        debugger.pauseRequested.store(false, std::memory_order_relaxed);
        return Pause(DebugReason::PauseRequest, address, CString());
    }
    if (mark & breakpoint) return Pause(DebugReason::Breakpoint, address, CString());
    if (StepWanted(address)) return Pause(DebugReason::Step, address, CString());
    return true;
}

// Frames lie on the stack in call order, so a frame base tells the depth.
// Steps go from line to line: the other statements of the line a step
// starts on run on in that frame.
bool DebugRun::StepWanted(int address) const {
    const bool sameLine = machine.b == modeFrame && lines[static_cast<size_t>(address)] == modeLine;
    switch (mode) {
        case DebugCommand::StepInto: return !sameLine;
        case DebugCommand::StepOver: return machine.b <= modeFrame && !sameLine;
        case DebugCommand::StepOut: return machine.b < modeFrame;
        default: return false;
    }
}

bool DebugRun::Pause(DebugReason reason, int address, const CString& message) {
    DebugCommand command;
    {
        CDebugPause pause(*this);
        pause.reason = reason;
        pause.message = message;
        FillFrames(pause, address);
        pause.location = pause.frames.empty() ? CDebugLocation{} : pause.frames.front().location;
        command = debugger.OnPause(pause);
    }
    if (command == DebugCommand::Stop) return false;
    mode = command;
    modeFrame = machine.b;
    modeLine = address >= 0 && static_cast<size_t>(address) < lines.size()
                   ? lines[static_cast<size_t>(address)]
                   : -1;
    return true;
}

void DebugRun::ReportError(const CString& text) {
    // p stands behind the failing instruction.
    if (running) Pause(DebugReason::RuntimeError, machine.p - 1, text);
}

void DebugRun::SyncBreakpoints() {
    std::vector<CDebugBreakpoint> moved;
    {
        std::lock_guard<std::mutex> lock(debugger.breakpointLock);
        seenRevision = debugger.breakpointRevision.load(std::memory_order_acquire);
        for (uint8_t& mark : marks) mark &= static_cast<uint8_t>(~breakpoint);
        for (CDebugBreakpoint& entry : debugger.breakpoints) {
            int address = -1;
            const CDebugLocation placed = info.Place(entry.requested, address);
            if (address >= 0) marks[static_cast<size_t>(address)] |= breakpoint;
            const bool changed = !(placed == entry.placed);
            entry.placed = placed;
            if (changed && !(placed == entry.requested)) moved.push_back(entry);
        }
    }
    // The host may set breakpoints from this call: not under the lock.
    for (const CDebugBreakpoint& entry : moved) debugger.OnBreakpointMoved(entry);
}

}  // namespace qelkern
