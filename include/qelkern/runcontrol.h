// Limits and control a host gives a script run: a step budget, a wall-clock
// limit, a memory limit, cancellation from any thread, and a callback that
// the running script calls now and then on its own thread. Everything is off
// by default, so a run without a control behaves exactly as before. A time
// limit, cancel and poll cost the running machine nothing: a watch thread
// of the run interrupts it when one is due. Set the fields before the run;
// while it runs, other threads may only call Cancel().
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>

#include "qelkern/export.h"

// Why a run was ended from outside the script.
enum class StopCause : int {
    None = 0,
    StepLimit,    // "Skript abgebrochen: Schrittgrenze erreicht."
    TimeLimit,    // "Skript abgebrochen: Zeitgrenze erreicht."
    Cancelled,    // "Skript abgebrochen."
    MemoryLimit,  // "Nicht genügend Speicher für das Skript."
};

class QELKERN_API CRunControl {
public:
    // Machine steps a run may take; 0: no limit. Counted exactly (the
    // instructions carried out), but checked only where control flows
    // backwards or into a routine, so the run ends at the first such place
    // once the budget is used up.
    uint64_t maxSteps = 0;
    // Wall-clock time the machine may run, in milliseconds, from the start of
    // the run after the compile; 0: no limit. Looked at about every
    // millisecond, not while a callback or dialog holds the thread.
    uint64_t timeoutMilliseconds = 0;
    // Bytes of memory a script may hold in code, stack and texts; 0: no limit.
    // Counted are the growth of the code store and of the stack beyond their
    // first 10,000 entries, and every text made on the run's thread while
    // the script compiles and runs, callbacks included; a text shared by
    // copies counts once. A script that would pass the limit ends at once
    // with the box "Nicht genügend Speicher für das Skript." (error icon),
    // result 0 and `stopCause` MemoryLimit, as does any script that runs out
    // of real memory, or whose text would reach 2 GiB, without a limit.
    size_t maxMemoryBytes = 0;
    // Called on the script's thread about every `pollMilliseconds` while the
    // machine runs (not while a callback or dialog holds the thread). A host
    // can pump its events here or call Cancel(). Empty: never called.
    std::function<void(CRunControl&)> onPoll;
    uint32_t pollMilliseconds = 50;

    // Ends the current run at its next check; safe from any thread and from
    // callbacks (the run ends right behind the callback). The flag stays set
    // until Reset() or until the machine starts the next run; that start
    // comes after the compile, so a cancel during a compile is cleared too.
    void Cancel() noexcept { cancelRequested.store(true, std::memory_order_relaxed); }
    bool IsCancelRequested() const noexcept {
        return cancelRequested.load(std::memory_order_relaxed);
    }
    void Reset() noexcept { cancelRequested.store(false, std::memory_order_relaxed); }

    // Count the steps for `stepsTaken` even without a step budget. Counting
    // costs a run a few per cent; without it a time limit, cancel or poll
    // reaches the machine through interrupts, which cost it nothing.
    bool countSteps = false;

    // Filled by the run: the cause that ended it (None for an end by the
    // script itself or by a run-time error) and the steps it took, when they
    // were counted (maxSteps or countSteps set), else 0.
    StopCause stopCause = StopCause::None;
    uint64_t stepsTaken = 0;

private:
    std::atomic<bool> cancelRequested{false};
};

// The control for the next runs of RunScript; null (the default): no limits.
QELKERN_API extern CRunControl* pRunControl;
