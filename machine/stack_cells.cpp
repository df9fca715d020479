#include "machine/stack_cells.h"

#include <sys/mman.h>

#include <new>

#include "machine/address_space.h"

namespace qelkern {

// Untouched pages of the reservation cost nothing; the kernel hands them out
// on first write, which is the construction of their cells.
StackCells::StackCells(size_t reservedCells) {
    cells = static_cast<VALUE*>(ReserveAddressSpace(reservedCells, sizeof(VALUE)));
    if (!cells) return;
    reserved = reservedCells;
    mappedBytes = reservedCells * sizeof(VALUE);
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
