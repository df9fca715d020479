#include "machine/stack_cells.h"

#include <sys/mman.h>

#include <new>

namespace qelkern {

// Untouched pages of the reservation cost nothing; the kernel hands them out
// on first write, which is the construction of their cells.
StackCells::StackCells(size_t reservedCells) {
    const size_t bytes = reservedCells * sizeof(VALUE);
    if (reservedCells == 0 || bytes / sizeof(VALUE) != reservedCells) return;
    void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) return;
    cells = static_cast<VALUE*>(memory);
    reserved = reservedCells;
    mappedBytes = bytes;
}

StackCells::~StackCells() {
    if (!cells) return;
    for (size_t i = 0; i < constructed; ++i) cells[i].~VALUE();
    munmap(cells, mappedBytes);
}

bool StackCells::GrowTo(size_t count) {
    if (count > reserved) return false;
    for (; constructed < count; ++constructed) new (cells + constructed) VALUE();
    return true;
}

}  // namespace qelkern
