// A script debugger for hosts: breakpoints, stepping, and a look at the call
// stack and the variables of a paused run. A host derives from CDebugger and
// sets pDebugger; with none set (the default) scripts run at full speed.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

#include "qelkern/platform.h"
#include "qelkern/value.h"

/// The two texts a run joins: the prelude "extern.qel" and the script behind it.
enum class DebugFile : int { Script = 0, Prelude = 1 };

/// A line of one of the two texts, counted from 1; line 0: no such place.
struct QELKERN_API CDebugLocation {
    DebugFile file = DebugFile::Script;
    int line = 0;
};

inline bool operator==(const CDebugLocation& a, const CDebugLocation& b) {
    return a.file == b.file && a.line == b.line;
}

/// What the run does after the hook returns. Steps go from line to line:
/// the rest of the line a step starts on runs on, unless it calls a routine
/// that StepInto enters.
enum class DebugCommand : int {
    Continue,  ///< run on to the next breakpoint
    StepInto,  ///< pause at the next line, also inside a called routine
    StepOver,  ///< pause at the next line of this routine or of a caller
    StepOut,   ///< pause at the next line of a caller
    Stop,      ///< end the run now, as a cancel but without a message: RunScript gives 0
};

/// Why the run paused.
enum class DebugReason : int {
    Breakpoint,    ///< a statement on a line with a breakpoint
    Step,          ///< the statement a step command asked for
    PauseRequest,  ///< RequestPause()
    RuntimeError,  ///< a run-time error; its message box follows the hook
};

/// One cell as the debugger shows it.
struct QELKERN_API CDebugValue {
    VALUE value;       ///< a copy of the cell
    CString typeName;  ///< of the value held: "integer", "double", "string", a TYPEDEF type's name
    CString text;      ///< the number as written in a script, a string's own text (Latin-1)
};

enum class DebugVariableKind : int { Local, Parameter, VarParameter, Result };

/// A variable or parameter of one frame, read through the frame's layout.
struct QELKERN_API CDebugVariable {
    CString name;      ///< as declared; a function's result carries the function's name
    /// As declared: "integer", "double", "string", a TYPEDEF type's name, or
    /// "array [N] of integer" (double, string).
    CString typeName;
    DebugVariableKind kind = DebugVariableKind::Local;
    bool isArray = false;
    /// False when the frame's cells were not reserved yet (a run-time error
    /// while a routine was being entered); value and elements are then empty.
    bool available = true;
    CDebugValue value;                  ///< scalars
    std::vector<CDebugValue> elements;  ///< arrays, from index 0
};

/// One activation on the call stack.
struct QELKERN_API CDebugFrame {
    CString routine;  ///< the routine's name as declared; "main" for the main block
    bool isMainBlock = false;
    CDebugLocation location;  ///< the statement the frame is at (a caller: the calling one)
    int base = 0;             ///< the frame's base cell b in the machine's stack
    /// Index in CDebugPause::frames of the activation of the enclosing block,
    /// whose variables this routine reaches by name; -1 for the main block.
    int outerFrame = -1;
};

namespace qelkern {
class DebugRun;
}

/// The state of a paused run, valid during the hook's call only.
class QELKERN_API CDebugPause {
public:
    DebugReason reason = DebugReason::Step;
    CDebugLocation location;  ///< the statement about to run (the failing one at an error)
    CString message;          ///< the run-time error's text; empty otherwise
    /// The call stack, innermost first; the last one is the main block.
    std::vector<CDebugFrame> frames;

    /// The variables and parameters of frames[frame] in declaration order:
    /// parameters, a function's result, then the block's variables. Reads the
    /// cells and changes nothing. An index out of range gives none.
    std::vector<CDebugVariable> Variables(size_t frame) const;

    CDebugPause(const CDebugPause&) = delete;
    CDebugPause& operator=(const CDebugPause&) = delete;

private:
    friend class qelkern::DebugRun;
    explicit CDebugPause(const qelkern::DebugRun& owner) : run(owner) {}
    const qelkern::DebugRun& run;
    std::vector<int> frameRoutines;  ///< per frame, the routine in the run's records
};

/// A breakpoint as the host set it, and where the last compile put it.
struct QELKERN_API CDebugBreakpoint {
    CDebugLocation requested;
    /// The first line at or below the requested one that has a statement, in
    /// the same file; line 0 if no line has one, -1 until a run has placed it.
    CDebugLocation placed{requested.file, -1};
};

class QELKERN_API CDebugger {
public:
    virtual ~CDebugger();

    /// Called on the script's thread when the run pauses; the run waits until
    /// it returns (and a run control's time limit goes on counting). At a
    /// run-time error the command is not looked at: the run ends with the
    /// error's message box.
    virtual DebugCommand OnPause(const CDebugPause& pause) = 0;
    /// Called on the script's thread when a breakpoint is placed on another
    /// line than the one asked for (placed.line 0: no statement there or below).
    virtual void OnBreakpointMoved(const CDebugBreakpoint& breakpoint) {}

    /// Breakpoints stay from run to run. They may be changed from any thread
    /// at any time; a running script takes them over at its next statement.
    void SetBreakpoint(DebugFile file, int line);
    void ClearBreakpoint(DebugFile file, int line);
    void ClearAllBreakpoints();
    std::vector<CDebugBreakpoint> Breakpoints() const;

    /// From any thread: pause, or stop, the running script at its next
    /// statement. Each run starts with both requests cleared.
    void RequestPause() noexcept { pauseRequested.store(true, std::memory_order_relaxed); }
    void RequestStop() noexcept { stopRequested.store(true, std::memory_order_relaxed); }

    /// How each run starts: Continue runs to the first breakpoint, StepInto
    /// pauses at the first statement.
    DebugCommand startCommand = DebugCommand::Continue;

private:
    friend class qelkern::DebugRun;
    mutable std::mutex breakpointLock;
    std::vector<CDebugBreakpoint> breakpoints;
    std::atomic<uint64_t> breakpointRevision{1};
    std::atomic<bool> pauseRequested{false};
    std::atomic<bool> stopRequested{false};
};

/// The debugger of the next runs; null (the default): no debugging, no cost.
QELKERN_API extern CDebugger* pDebugger;
