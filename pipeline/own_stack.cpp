// The compiler's own stack: reserved address space, committed by the system
// only as the recursion touches it, entered by setcontext and left through
// uc_link on the calling thread, so that dialogs and host calls still happen
// on that thread. (swapcontext would do the same, but the address sanitizer
// writes a warning to stderr on its first call.)
#include "pipeline/own_stack.h"

#include <sys/mman.h>
#include <ucontext.h>

#include <cstdint>
#include <exception>

#if defined(__SANITIZE_ADDRESS__)
#define QEL_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QEL_ADDRESS_SANITIZER 1
#endif
#endif
#ifdef QEL_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#include <sanitizer/common_interface_defs.h>
#include <unistd.h>
#endif

namespace {

constexpr size_t stackSize = size_t{256} << 20;
constexpr size_t guardSize = size_t{64} << 10;
// Below the floor: what the deepest level may still need, a dialog among it.
constexpr size_t floorReserve = size_t{4} << 20;

struct Switch {
    ucontext_t caller{};
    ucontext_t own{};
    const std::function<void(const char*)>* work = nullptr;
    const char* floor = nullptr;
    std::exception_ptr thrown;
    // The address sanitizer is told of each change of stack.
    void* fakeStack = nullptr;
    const void* callerBottom = nullptr;
    size_t callerSize = 0;
};

// makecontext passes ints only.
thread_local Switch* entering = nullptr;

void Enter() {
    Switch& s = *entering;
#ifdef QEL_ADDRESS_SANITIZER
    __sanitizer_finish_switch_fiber(nullptr, &s.callerBottom, &s.callerSize);
#endif
    try {
        (*s.work)(s.floor);
    } catch (...) {
        s.thrown = std::current_exception();
    }
#ifdef QEL_ADDRESS_SANITIZER
    __sanitizer_start_switch_fiber(nullptr, s.callerBottom, s.callerSize);
#endif
}  // on to s.caller by uc_link

#ifdef QEL_ADDRESS_SANITIZER
// Clears what an earlier stack at this address left in the sanitizer's
// shadow. Writing zeros over the shadow of the whole stack would cost more
// than the compile of a short script; shadow pages given back to the system
// come back as zeros, which means "unpoisoned". Only the partial pages at
// the edges are written.
void UnpoisonStack(char* lowest, size_t size) {
    size_t scale = 0;
    size_t offset = 0;
    __asan_get_shadow_mapping(&scale, &offset);
    const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto low = reinterpret_cast<uintptr_t>(lowest);
    const uintptr_t inner = ((low >> scale) + offset + page - 1) & ~(page - 1);
    const uintptr_t innerEnd = (((low + size) >> scale) + offset) & ~(page - 1);
    if (inner >= innerEnd || madvise(reinterpret_cast<void*>(inner), innerEnd - inner, MADV_DONTNEED) != 0) {
        __asan_unpoison_memory_region(lowest, size);
        return;
    }
    const uintptr_t innerLow = (inner - offset) << scale;
    const uintptr_t innerHigh = (innerEnd - offset) << scale;
    __asan_unpoison_memory_region(lowest, innerLow - low);
    __asan_unpoison_memory_region(reinterpret_cast<void*>(innerHigh), low + size - innerHigh);
}
#endif

}  // namespace

bool RunOnOwnStack(const std::function<void(const char* floor)>& work) {
    void* memory = mmap(nullptr, stackSize, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
    if (memory == MAP_FAILED) return false;
    char* const lowest = static_cast<char*>(memory);
    mprotect(lowest, guardSize, PROT_NONE);

    Switch s;
    s.work = &work;
    s.floor = lowest + floorReserve;
    if (getcontext(&s.own) != 0) {
        munmap(memory, stackSize);
        return false;
    }
    s.own.uc_stack.ss_sp = lowest;
    s.own.uc_stack.ss_size = stackSize;
    s.own.uc_link = &s.caller;
    makecontext(&s.own, Enter, 0);

    Switch* const outer = entering;
    entering = &s;
#ifdef QEL_ADDRESS_SANITIZER
    UnpoisonStack(lowest, stackSize);
#endif
    volatile bool entered = false;
    getcontext(&s.caller);  // the end of Enter comes back here
    if (!entered) {
        entered = true;
#ifdef QEL_ADDRESS_SANITIZER
        __sanitizer_start_switch_fiber(&s.fakeStack, lowest, stackSize);
#endif
        setcontext(&s.own);
    }
#ifdef QEL_ADDRESS_SANITIZER
    __sanitizer_finish_switch_fiber(s.fakeStack, nullptr, nullptr);
#endif
    entering = outer;
    munmap(memory, stackSize);
    if (s.thrown) std::rethrow_exception(s.thrown);
    return true;
}
