// The machine's side of a host's run control: when to look next, and whether
// a look ends the run. For a step budget the loop counts steps exactly and
// asks when the count reaches NextCheck(), at backward jumps and calls; any
// other control is asked when an interrupt (see Interrupts) is taken there.
// Without a control the loop neither counts nor asks.
#pragma once

#include <chrono>
#include <cstdint>

#include "qelkern/runcontrol.h"

namespace qelkern {

class RunWatch {
public:
    // Starts the watch of a run: clears the control's cancel flag and results.
    explicit RunWatch(CRunControl* control);

    static constexpr int64_t never = INT64_MAX;
    // Whether the steps must be counted exactly: for a step budget, or when
    // the host asks for the count.
    bool CountsSteps() const;
    // The step count at which a counting machine must call Check next.
    int64_t NextCheck() const { return nextCheck; }
    // The run has taken `steps` steps, at least NextCheck(). Calls the host's
    // poll when due; returns the cause that ends the run, or None.
    StopCause Check(int64_t steps);
    // A cancel from a callback ends the run right behind the callback.
    StopCause CheckCancel() const;
    // The run ends for `cause`.
    void Stop(StopCause cause) { stopCause = cause; }
    // Records the end of the run in the control.
    void Finish(int64_t steps);

private:
    using Clock = std::chrono::steady_clock;

    void PlanNextCheck(int64_t steps, Clock::time_point now);

    CRunControl* control;
    StopCause stopCause = StopCause::None;
    int64_t nextCheck = never;
    // Steps between two looks, tuned so that a look comes about every
    // millisecond whatever the steps cost.
    int64_t interval = 4096;
    int64_t lastCheckSteps = 0;
    Clock::time_point start;
    Clock::time_point lastCheck;
    Clock::time_point lastPoll;
};

// The German text that tells the user why the run ended.
const char* StopMessage(StopCause cause);

}  // namespace qelkern
