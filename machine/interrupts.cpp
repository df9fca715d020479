// The watch thread that interrupts the fast loop for a run control.
#include "machine/interrupts.h"

namespace qelkern {

namespace {

// As often as the run watch looks without interrupts; a run's look costs a
// few microseconds.
constexpr auto lookPeriod = std::chrono::milliseconds(1);

// The steps where a run can come back to itself: backward jumps, calls, and
// the fused loop ends that contain a backward jump.
bool IsCheckpoint(Op op) {
    switch (op) {
        case Op::Call:
        case Op::JumpBack:
        case Op::JumpBackIfZero:
        case Op::CountUp:
        case Op::CountDown:
        case Op::CountUpToBound:
        case Op::CountDownToBound: return true;
        default: return false;
    }
}

}  // namespace

Interrupts::Interrupts(std::vector<Step>& steps, const void* leaveHandler, const CRunControl& control)
    : leave(leaveHandler) {
    for (Step& step : steps)
        if (IsCheckpoint(step.op)) checkpoints.emplace_back(&step, step.handler);
    watch = std::thread([this, &control] { Watch(control); });
}

Interrupts::~Interrupts() {
    {
        std::lock_guard<std::mutex> lock(mutex);
        stopping = true;
    }
    wake.notify_one();
    watch.join();
    Restore();
}

void Interrupts::Take() {
    std::lock_guard<std::mutex> lock(mutex);
    Restore();
    pending.store(false, std::memory_order_release);
}

// A poll wants a look every period; the run watch calls it when it is due.
bool Interrupts::Due(const CRunControl& control, std::chrono::steady_clock::time_point start) const {
    if (control.IsCancelRequested() || control.onPoll) return true;
    return control.timeoutMilliseconds &&
           std::chrono::steady_clock::now() - start >= std::chrono::milliseconds(control.timeoutMilliseconds);
}

void Interrupts::Watch(const CRunControl& control) {
    const auto start = std::chrono::steady_clock::now();
    std::unique_lock<std::mutex> lock(mutex);
    while (!stopping) {
        wake.wait_for(lock, lookPeriod);
        if (!stopping && !Pending() && Due(control, start)) Raise();
    }
}

void Interrupts::Raise() {
    for (const auto& [step, own] : checkpoints) __atomic_store_n(&step->handler, leave, __ATOMIC_RELAXED);
    pending.store(true, std::memory_order_release);
}

void Interrupts::Restore() {
    for (const auto& [step, own] : checkpoints) __atomic_store_n(&step->handler, own, __ATOMIC_RELAXED);
}

}  // namespace qelkern
