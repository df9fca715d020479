// One run under a debugger. While it exists, Interpret runs the machine one
// instruction at a time through it and asks the host's debugger at each
// statement whether to pause; the fast loop is not touched at all.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "machine/debug_info.h"
#include "qelkern/debugger.h"
#include "qelkern/machine.h"
#include "qelkern/parser.h"

namespace qelkern {

class RunWatch;

class DebugRun {
public:
    // Attaches itself to `machine` for its lifetime.
    DebugRun(CInterpreter& machine, const DebugInfo& info, CDebugger& debugger);
    ~DebugRun();
    DebugRun(const DebugRun&) = delete;
    DebugRun& operator=(const DebugRun&) = delete;

    // In place of the fast loop, from the registers Interpret has set.
    void Run(RunWatch& watch);
    // A run-time error, before its message box.
    void ReportError(const CString& text);

    bool IsFor(const CInterpreter& m) const { return &m == &machine; }
    // The host's Stop command ended the run.
    bool StoppedByHost() const { return stoppedByHost; }

    // For CDebugPause: the variables of one frame.
    std::vector<CDebugVariable> Variables(int routine, int base) const;

private:
    bool AtStatement(int address);
    bool Pause(DebugReason reason, int address, const CString& message);
    bool StepWanted(int address) const;
    void FillFrames(CDebugPause& pause, int address) const;
    void SyncBreakpoints();
    CDebugValue ReadCell(int64_t cell) const;
    bool Readable(int64_t first, int64_t last) const;

    CInterpreter& machine;
    const DebugInfo& info;
    CDebugger& debugger;
    // Per code address: statementStart and breakpoint bits, and the line of
    // the statement that starts there.
    std::vector<uint8_t> marks;
    std::vector<int> lines;
    uint64_t seenRevision = 0;
    DebugCommand mode = DebugCommand::Continue;
    int modeFrame = 0;  // b and the line where the step command was given
    int modeLine = -1;
    bool running = false;
    bool stoppedByHost = false;
};

// The debug run attached to `machine`; null: run at full speed.
DebugRun* DebugRunOf(const CInterpreter& machine);

// The debugger's part in one RunScript, with the debugger that was set when
// it began; does nothing when none was.
class ScriptDebugging {
public:
    // Before the compile: the parser records into this run's debug info.
    ScriptDebugging(CParser& parser, int preludeLines);
    ~ScriptDebugging();
    // Before Interpret.
    void Attach(CInterpreter& machine);
    bool StoppedByHost() const { return run && run->StoppedByHost(); }

private:
    CDebugger* const debugger;
    std::unique_ptr<DebugInfo> info;
    std::unique_ptr<DebugRun> run;
};

}  // namespace qelkern
