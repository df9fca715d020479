// The free list behind CString's operator new and delete.
#include "qelkern/platform.h"

namespace {

// Enough for the string cells of a busy loop; more goes back to the heap.
constexpr int maxFreeObjects = 4096;

struct FreeObject {
    FreeObject* next;
};

struct FreeList {
    FreeObject* head;
    int count;
    bool drainedAtExit;
};

thread_local FreeList freeList __attribute__((tls_model("initial-exec"))) = {nullptr, 0, false};

void Drain() {
    while (FreeObject* object = freeList.head) {
        freeList.head = object->next;
        ::operator delete(object);
    }
    freeList.count = 0;
}

// Registered on the first object a thread keeps, so that a thread ending
// takes its list along.
void DrainAtThreadExit() {
    struct Drainer {
        ~Drainer() { Drain(); }
    };
    thread_local Drainer drainer;
    (void)drainer;
    freeList.drainedAtExit = true;
}

// Under the sanitizers every object goes to the heap, so that they see
// each use after free.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool pooled = false;
#else
constexpr bool pooled = true;
#endif

}  // namespace

void* CString::operator new(size_t size) {
    FreeObject* object = freeList.head;
    if (pooled && object && size == sizeof(CString)) {
        freeList.head = object->next;
        --freeList.count;
        return object;
    }
    return ::operator new(size);
}

void CString::operator delete(void* object, size_t size) noexcept {
    if (!object) return;
    if (!pooled || size != sizeof(CString) || freeList.count >= maxFreeObjects) {
        ::operator delete(object);
        return;
    }
    if (!freeList.drainedAtExit) DrainAtThreadExit();
    auto* entry = static_cast<FreeObject*>(object);
    entry->next = freeList.head;
    freeList.head = entry;
    ++freeList.count;
}
