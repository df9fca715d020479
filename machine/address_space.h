// Address space for the machine's arrays that grow in place (the stack's
// cells, the code store): reserved at once, backed by the kernel page by
// page as it is first written.
#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>

namespace qelkern {

// Room for `count` elements of `size` bytes; null if there is none to be had.
inline void* ReserveAddressSpace(size_t count, size_t size) {
    if (count == 0 || count > SIZE_MAX / size) return nullptr;
    void* memory = mmap(nullptr, count * size, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return memory == MAP_FAILED ? nullptr : memory;
}

}  // namespace qelkern
