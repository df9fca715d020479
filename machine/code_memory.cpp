// Memory of code stores. A store of a long script holds millions of
// instructions, each constructed when the store is made; in small pages
// most of that time goes into page faults.
#include <sys/mman.h>

#include <cstdlib>
#include <new>

#include "qelkern/machine.h"

namespace {

constexpr size_t hugePage = size_t{2} << 20;

}  // namespace

void* Instruction::operator new[](size_t bytes) {
    void* memory = nullptr;
    if (bytes >= 4 * hugePage) {
        const size_t rounded = (bytes + hugePage - 1) / hugePage * hugePage;
        memory = std::aligned_alloc(hugePage, rounded);
        if (memory) madvise(memory, rounded, MADV_HUGEPAGE);  // a hint; refused is fine
    } else {
        memory = std::malloc(bytes ? bytes : 1);
    }
    if (!memory) throw std::bad_alloc();
    return memory;
}

void Instruction::operator delete[](void* memory) noexcept { std::free(memory); }
