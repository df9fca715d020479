// The cells of the machine's stack in one reservation of address space:
// growing constructs new cells behind the old ones, so no cell ever moves and
// memory is taken only as the stack really grows.
#pragma once

#include <cstddef>

#include "qelkern/value.h"

namespace qelkern {

class StackCells {
public:
    // Reserves room for `reserved` cells; Cells() is null if that failed.
    explicit StackCells(size_t reserved);
    ~StackCells();
    StackCells(const StackCells&) = delete;
    StackCells& operator=(const StackCells&) = delete;

    VALUE* Cells() const { return cells; }
    size_t Constructed() const { return constructed; }
    size_t Reserved() const { return reserved; }
    // Constructs default cells up to `count`; false if that passes the reservation.
    bool GrowTo(size_t count);

private:
    VALUE* cells = nullptr;
    size_t constructed = 0;
    size_t reserved = 0;
    size_t mappedBytes = 0;
};

}  // namespace qelkern
