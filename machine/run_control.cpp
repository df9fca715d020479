// The host's run control, and how the machine watches a run for it.
#include "qelkern/runcontrol.h"

#include <algorithm>

#include "machine/run_watch.h"

CRunControl* pRunControl = nullptr;

namespace qelkern {

namespace {

constexpr auto checkPeriod = std::chrono::microseconds(1000);
constexpr int64_t fewestSteps = 16;
constexpr int64_t mostSteps = int64_t(1) << 22;

// The step budget as a count the loop compares with; a budget past that is none.
int64_t StepBudget(const CRunControl& control) {
    return control.maxSteps > static_cast<uint64_t>(RunWatch::never) ? 0
                                                                      : static_cast<int64_t>(control.maxSteps);
}

}  // namespace

RunWatch::RunWatch(CRunControl* runControl) : control(runControl) {
    if (!control) return;
    control->Reset();
    control->stopCause = StopCause::None;
    control->stepsTaken = 0;
    start = lastCheck = lastPoll = Clock::now();
    nextCheck = StepBudget(*control) ? std::min(interval, StepBudget(*control)) : interval;
}

bool RunWatch::CountsSteps() const {
    return control && (StepBudget(*control) || control->countSteps);
}

StopCause RunWatch::Check(int64_t steps) {
    if (!control) return StopCause::None;
    if (StepBudget(*control) && steps >= StepBudget(*control)) return StopCause::StepLimit;
    if (control->IsCancelRequested()) return StopCause::Cancelled;
    Clock::time_point now = Clock::now();
    if (control->timeoutMilliseconds &&
        now - start >= std::chrono::milliseconds(control->timeoutMilliseconds))
        return StopCause::TimeLimit;
    if (control->onPoll && now - lastPoll >= std::chrono::milliseconds(control->pollMilliseconds)) {
        control->onPoll(*control);
        if (control->IsCancelRequested()) return StopCause::Cancelled;
        now = lastPoll = Clock::now();
    }
    PlanNextCheck(steps, now);
    return StopCause::None;
}

// Halves or doubles the interval towards one look per period; a callback that
// holds the thread a long time shortens it at once.
void RunWatch::PlanNextCheck(int64_t steps, Clock::time_point now) {
    const auto elapsed = now - lastCheck;
    if (steps - lastCheckSteps >= interval) {
        if (elapsed < checkPeriod / 2) interval = std::min(interval * 2, mostSteps);
        else if (elapsed > checkPeriod * 2) interval = std::max(interval / 4, fewestSteps);
    }
    lastCheck = now;
    lastCheckSteps = steps;
    nextCheck = steps + interval;
    if (StepBudget(*control)) nextCheck = std::min(nextCheck, StepBudget(*control));
}

StopCause RunWatch::CheckCancel() const {
    return control && control->IsCancelRequested() ? StopCause::Cancelled : StopCause::None;
}

void RunWatch::Finish(int64_t steps) {
    if (!control) return;
    control->stepsTaken = CountsSteps() ? static_cast<uint64_t>(steps) : 0;
    control->stopCause = stopCause;
}

const char* StopMessage(StopCause cause) {
    switch (cause) {
        case StopCause::StepLimit: return "Skript abgebrochen: Schrittgrenze erreicht.";
        case StopCause::TimeLimit: return "Skript abgebrochen: Zeitgrenze erreicht.";
        case StopCause::MemoryLimit: return "Nicht genügend Speicher für das Skript.";
        default: return "Skript abgebrochen.";
    }
}

}  // namespace qelkern
