// Counts the allocations of the whole test program that are alive, so that
// a test can see memory that a run keeps for good. Only this program
// replaces the global operators.
#include "leaks/live_allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<long> live{0};

void* Allocate(std::size_t size) {
    void* memory = std::malloc(size == 0 ? 1 : size);
    if (!memory) throw std::bad_alloc();
    live.fetch_add(1, std::memory_order_relaxed);
    return memory;
}

void Release(void* memory) noexcept {
    if (!memory) return;
    live.fetch_sub(1, std::memory_order_relaxed);
    std::free(memory);
}
}  // namespace

long LiveAllocations() { return live.load(std::memory_order_relaxed); }

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return Allocate(size);
    } catch (...) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* memory) noexcept { Release(memory); }
void operator delete[](void* memory) noexcept { Release(memory); }
void operator delete(void* memory, std::size_t) noexcept { Release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { Release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { Release(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { Release(memory); }
