// The memory a script run holds in texts, stack and code, counted against
// the host's limit. A budget is active on the thread of the run while it
// lives; what is allocated on that thread for the script is charged to it,
// and a charge past the limit throws MemoryLimitExceeded, a std::bad_alloc,
// so that a script over its limit ends like one that ran out of memory.
#pragma once

#include <cstddef>
#include <new>
#include <optional>

class CRunControl;

namespace qelkern {

class MemoryLimitExceeded : public std::bad_alloc {
public:
    const char* what() const noexcept override;
};

class MemoryBudget {
public:
    // Active on this thread from here to the destructor, in front of the
    // budget that was active before.
    explicit MemoryBudget(size_t limitBytes);
    ~MemoryBudget();
    MemoryBudget(const MemoryBudget&) = delete;
    MemoryBudget& operator=(const MemoryBudget&) = delete;

    size_t Used() const { return used; }
    bool Exceeded() const { return exceeded; }
    size_t Room() const { return limit - used; }
    unsigned Serial() const { return serial; }

    void Charge(size_t bytes);
    void Refund(size_t bytes) { used = bytes < used ? used - bytes : 0; }

private:
    size_t limit;
    size_t used = 0;
    bool exceeded = false;
    unsigned serial;
    MemoryBudget* previous;
};

// Charges the budget active on this thread and returns its serial, which
// the refund takes back; 0 when none is active. Throws MemoryLimitExceeded.
unsigned ChargeMemory(size_t bytes);
// A refund counts only with the budget that was charged, if still active.
void RefundMemory(unsigned serial, size_t bytes) noexcept;
// Whether a charge of `bytes` would stay within the active budget: for
// allocations that are only worth making while there is room, and must not
// mark the budget exceeded when there is none.
bool MemoryRoomFor(size_t bytes) noexcept;

// The budget of one script run as the host's run control asks for it; none
// without a control or a limit. A run it ends gets the stop cause MemoryLimit.
class ScriptMemoryScope {
public:
    explicit ScriptMemoryScope(CRunControl* control);
    ~ScriptMemoryScope();
    ScriptMemoryScope(const ScriptMemoryScope&) = delete;
    ScriptMemoryScope& operator=(const ScriptMemoryScope&) = delete;

private:
    CRunControl* control;
    std::optional<MemoryBudget> budget;
};

}  // namespace qelkern
