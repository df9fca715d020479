#include "platform/memory_budget.h"

#include <atomic>

#include "qelkern/runcontrol.h"

namespace qelkern {

namespace {

// Initial-exec: every text allocation looks here, and the library is linked
// by its hosts, not opened late.
thread_local MemoryBudget* activeBudget __attribute__((tls_model("initial-exec"))) = nullptr;

unsigned NextSerial() {
    static std::atomic<unsigned> last{0};
    unsigned serial;
    do serial = last.fetch_add(1, std::memory_order_relaxed) + 1;
    while (serial == 0);
    return serial;
}

}  // namespace

const char* MemoryLimitExceeded::what() const noexcept { return "script memory limit exceeded"; }

MemoryBudget::MemoryBudget(size_t limitBytes)
    : limit(limitBytes), serial(NextSerial()), previous(activeBudget) {
    activeBudget = this;
}

MemoryBudget::~MemoryBudget() { activeBudget = previous; }

void MemoryBudget::Charge(size_t bytes) {
    if (bytes > limit - used) {
        exceeded = true;
        throw MemoryLimitExceeded();
    }
    used += bytes;
}

unsigned ChargeMemory(size_t bytes) {
    MemoryBudget* budget = activeBudget;
    if (!budget) return 0;
    budget->Charge(bytes);
    return budget->Serial();
}

void RefundMemory(unsigned serial, size_t bytes) noexcept {
    MemoryBudget* budget = activeBudget;
    if (serial != 0 && budget && budget->Serial() == serial) budget->Refund(bytes);
}

bool MemoryRoomFor(size_t bytes) noexcept {
    const MemoryBudget* budget = activeBudget;
    return !budget || budget->Room() >= bytes;
}

ScriptMemoryScope::ScriptMemoryScope(CRunControl* runControl) : control(runControl) {
    if (control && control->maxMemoryBytes > 0) budget.emplace(control->maxMemoryBytes);
}

ScriptMemoryScope::~ScriptMemoryScope() {
    if (budget && budget->Exceeded()) control->stopCause = StopCause::MemoryLimit;
}

}  // namespace qelkern
