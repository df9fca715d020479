// A debugger for the run fuzzer: it steps by a pattern the input chooses,
// reads every frame's variables at the first pauses, and lets the run go
// after a few dozen, so that a debugged run ends like any other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "qelkern/debugger.h"

namespace fuzz {

class FuzzDebugger : public CDebugger {
public:
    explicit FuzzDebugger(uint8_t stepPattern) : pattern(stepPattern) {
        startCommand = (pattern & 1) != 0 ? DebugCommand::StepInto : DebugCommand::Continue;
        SetBreakpoint(DebugFile::Script, 1 + pattern % 8);
    }

    DebugCommand OnPause(const CDebugPause& pause) override {
        ++pauses;
        if (pause.frames.empty() || !pause.frames.back().isMainBlock) broken = "a pause without the main block";
        if (pause.reason == DebugReason::RuntimeError && pause.message.IsEmpty()) broken = "an error pause without a message";
        // Large arrays make reading costly; the first pauses show enough.
        if (pauses <= 8)
            for (size_t frame = 0; frame < pause.frames.size(); ++frame) pause.Variables(frame);
        if (pauses > 48) {
            ClearAllBreakpoints();
            return DebugCommand::Continue;
        }
        static constexpr DebugCommand commands[] = {DebugCommand::StepInto, DebugCommand::StepOver,
                                                    DebugCommand::StepOut, DebugCommand::Continue};
        return commands[(pattern / 8 + static_cast<unsigned>(pauses)) % 4];
    }

    int pauses = 0;
    std::string broken;

private:
    uint8_t pattern;
};

// Puts a debugger in place for its life, or none.
class DebuggerScope {
public:
    explicit DebuggerScope(CDebugger* debugger) : previous(pDebugger) { pDebugger = debugger; }
    ~DebuggerScope() { pDebugger = previous; }
    DebuggerScope(const DebuggerScope&) = delete;
    DebuggerScope& operator=(const DebuggerScope&) = delete;

private:
    CDebugger* previous;
};

}  // namespace fuzz
