// The machine one instruction at a time, for the debugger, which looks at
// the machine between instructions. Runs every instruction through the
// machine's general path, with all its checks and reports.
#pragma once

#include <memory>

#include "qelkern/machine.h"

namespace qelkern {

class RunWatch;

class MachineStepper {
public:
    // Takes the registers as Interpret has set them for the start of a run;
    // the host's run control applies as in the fast loop.
    MachineStepper(CInterpreter& machine, RunWatch& watch);
    // Records the steps taken in the run control.
    ~MachineStepper();
    MachineStepper(const MachineStepper&) = delete;
    MachineStepper& operator=(const MachineStepper&) = delete;

    // Runs the instruction at p. true: p, b and t of the machine are current
    // and the run goes on; false: the run is over, by its end or an error.
    bool Step();

private:
    struct State;
    std::unique_ptr<State> state;
};

}  // namespace qelkern
