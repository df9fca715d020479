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
};

// The first byte: bit 0 shows errors, bit 1 tightens the step budget, bit 2
// the memory budget, so that the stops land in many places of a script; bit
// 3 runs under the debugger, the upper bits choose its steps. The rest is
// the script; there is no prelude.
inline RunOutcome RunOne(const uint8_t* data, size_t size) {
    RunOutcome outcome;
    if (size == 0) return outcome;
    CRunControl control;
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

// What a run must always keep to, whatever the script: empty when it did.
// A failed run names its cause with a message and shows it when asked to;
// a run that succeeded records no error; only the step budget may stop it.
inline std::string BrokenPromise(const RunOutcome& run) {
    const ScriptErrorKind kind = run.error.kind;
    if (!run.debuggerBroken.empty()) return "debugger saw " + run.debuggerBroken;
    if (run.result != 0 && run.result != 1) return "result neither 0 nor 1";
    if (run.result == 1) return kind == ScriptErrorKind::None ? "" : "success with an error recorded";
    if (kind == ScriptErrorKind::None || kind == ScriptErrorKind::Warning) return "failure without an error recorded";
    if (run.error.message.IsEmpty()) return "failure without a message";
    if (run.showErrors && run.shown == 0) return "failure shown to nobody";
    if (kind == ScriptErrorKind::Stopped && run.error.cause != StopCause::StepLimit) return "stopped by an unset limit";
    if (run.error.cause != run.stopCause) return "recorded cause differs from the control's";
    return "";
}

}  // namespace fuzz
