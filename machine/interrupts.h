// How a run control reaches the fast loop without a test in the loop: a
// watch thread points the handlers of the checkpoints (backward jumps,
// calls, loops' ends) at one that leaves the loop, and the run takes the
// interrupt at the next checkpoint it reaches. Used for controls that need a
// look only now and then (time, cancel, poll), not for a step budget, which
// must count. Internal to the machine.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "machine/decode.h"
#include "qelkern/runcontrol.h"

namespace qelkern {

class Interrupts {
public:
    // `steps` carry their handlers; `leave` is the handler that leaves the
    // fast loop. The watch starts at once and looks at `control`'s cancel
    // flag, time limit and poll.
    Interrupts(std::vector<Step>& steps, const void* leave, const CRunControl& control);
    // Stops the watch and gives every checkpoint its handler back.
    ~Interrupts();
    Interrupts(const Interrupts&) = delete;
    Interrupts& operator=(const Interrupts&) = delete;

    // Whether an interrupt waits to be taken.
    bool Pending() const { return pending.load(std::memory_order_acquire); }
    // Takes the waiting interrupt: the checkpoints' handlers are restored.
    void Take();

private:
    void Watch(const CRunControl& control);
    bool Due(const CRunControl& control, std::chrono::steady_clock::time_point start) const;
    // Write the handlers atomically, as the dispatch reads them.
    void Raise();
    void Restore();

    std::vector<std::pair<Step*, const void*>> checkpoints;  // and their own handlers
    const void* leave;
    std::atomic<bool> pending{false};
    std::mutex mutex;  // patching and restoring never overlap
    std::condition_variable wake;
    bool stopping = false;
    std::thread watch;
};

}  // namespace qelkern
