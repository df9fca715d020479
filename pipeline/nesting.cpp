// The bound on the depth of the recursive productions: a count of levels,
// and the room left on the calling thread's stack, which a host may have
// made small.
#include "pipeline/nesting.h"

#include <pthread.h>

#include <algorithm>
#include <cstddef>

namespace {

// What the deepest level may still need beyond the floor: its own frames,
// a warning box, and unwinding.
constexpr size_t wantedReserve = 256 * 1024;

const char* ThreadStackFloor() {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) return nullptr;
    void* lowest = nullptr;
    size_t size = 0;
    const int failed = pthread_attr_getstack(&attributes, &lowest, &size);
    pthread_attr_destroy(&attributes);
    if (failed || lowest == nullptr) return nullptr;
    return static_cast<const char*>(lowest) + std::min(wantedReserve, size / 4);
}

}  // namespace

const char* StackFloor() {
    thread_local const char* const floor = ThreadStackFloor();
    return floor;
}

CParser::NestingGuard::NestingGuard(CParser& owner) : parser(owner) {
    const char* here = static_cast<const char*>(__builtin_frame_address(0));
    if (parser.nesting >= maxNesting || here < parser.stackFloor) throw NestingTooDeep();
    ++parser.nesting;
}
