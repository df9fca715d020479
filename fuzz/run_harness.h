// One input of the run fuzzer: the script is compiled and run under a step
// and a memory budget small enough that every input ends in milliseconds.
// Shared by the fuzzer and by the test that replays the kept inputs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/fuzz_debugger.h"
#include "fuzz/fuzz_host.h"
#include "qelkern/diagnostics.h"
#include "qelkern/runcontrol.h"

namespace fuzz {

struct RunOutcome {
    int result = 0;
    CScriptError error;
    StopCause stopCause = StopCause::None;
    long shown = 0;
    bool showErrors = false;
    int debuggerPauses = 0;
    std::string debuggerBroken;  // what the debugger saw go wrong, if debugged
    bool timed = false;          // bounded by time and polls instead of steps
};

// A first byte with bits 6 and 7 set and bit 3 clear bounds the run by
// time instead of a step budget, with a poll every millisecond, so that the
// watch thread interrupts the machine wherever it happens to be: a time
// limit of 5 ms, or with bit 1 a poll that cancels the run at its third call.
inline bool TimedRun(uint8_t first) { return (first & 0xC8) == 0xC0; }

inline void SetTimedControl(CRunControl& control, bool cancelFromPoll) {
    control.timeoutMilliseconds = cancelFromPoll ? 0 : 5;
    control.pollMilliseconds = 1;
    control.onPoll = [cancelFromPoll, polls = 0](CRunControl& self) mutable {
        if (cancelFromPoll && ++polls == 3) self.Cancel();
    };
}

// The first byte: bit 0 shows errors, bit 1 tightens the step budget, bit 2
// the memory budget, so that the stops land in many places of a script; bit
// 3 runs under the debugger, the upper bits choose its steps; without it,
// bits 6 and 7 make a timed run (TimedRun). The rest is the script; there
// is no prelude.
inline RunOutcome RunOne(const uint8_t* data, size_t size) {
    RunOutcome outcome;
    if (size == 0) return outcome;
    CRunControl control;
    outcome.timed = TimedRun(data[0]);
    if (outcome.timed)
        SetTimedControl(control, (data[0] & 2) != 0);
    else
        control.maxSteps = (data[0] & 2) != 0 ? 1000 : 100000;
    control.maxMemoryBytes = (data[0] & 4) != 0 ? size_t{256} << 10 : size_t{4} << 20;
    HostScope host(&control);
    FuzzDebugger debugger(static_cast<uint8_t>(data[0] >> 4));
    DebuggerScope debugging((data[0] & 8) != 0 ? &debugger : nullptr);
    outcome.showErrors = (data[0] & 1) != 0;
    std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    outcome.result = RunScript("/nonexistent-qel-prelude/", text.data(), static_cast<int>(text.size()),
                               outcome.showErrors, true);
    outcome.error = GetLastScriptError();
    outcome.stopCause = control.stopCause;
    outcome.shown = HostScope::ui.shown;
    outcome.debuggerPauses = debugger.pauses;
    outcome.debuggerBroken = debugger.broken;
    return outcome;
}

inline bool StoppedBySetLimit(const RunOutcome& run) {
    const StopCause cause = run.error.cause;
    if (run.timed) return cause == StopCause::TimeLimit || cause == StopCause::Cancelled;
    return cause == StopCause::StepLimit;
}

// What a run must always keep to, whatever the script: empty when it did.
// A failed run names its cause with a message and shows it when asked to;
// a run that succeeded records no error; only the limits set may stop it.
inline std::string BrokenPromise(const RunOutcome& run) {
    const ScriptErrorKind kind = run.error.kind;
    if (!run.debuggerBroken.empty()) return "debugger saw " + run.debuggerBroken;
    if (run.result != 0 && run.result != 1) return "result neither 0 nor 1";
    if (run.result == 1) return kind == ScriptErrorKind::None ? "" : "success with an error recorded";
    if (kind == ScriptErrorKind::None || kind == ScriptErrorKind::Warning) return "failure without an error recorded";
    if (run.error.message.IsEmpty()) return "failure without a message";
    if (run.showErrors && run.shown == 0) return "failure shown to nobody";
    if (kind == ScriptErrorKind::Stopped && !StoppedBySetLimit(run)) return "stopped by an unset limit";
    if (run.error.cause != run.stopCause) return "recorded cause differs from the control's";
    return "";
}

}  // namespace fuzz
