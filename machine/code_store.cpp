#include "machine/code_store.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <utility>

#include "machine/address_space.h"
#include "machine/cell_ops.h"

namespace qelkern {

CodeStore::CodeStore(size_t wanted, size_t needed) {
    if (!Map(wanted) && !Map(needed)) throw std::bad_alloc();
}

// An instruction without a text owns nothing, and its storage may go
// without its destructor: ten million of them are cheaper to leave so than
// to read once more.
CodeStore::~CodeStore() {
    if (!code) return;
    for (size_t word = 0; word < ownsText.size(); ++word) {
        for (uint64_t bits = ownsText[word]; bits != 0; bits &= bits - 1) {
            const size_t address = word * 64 + static_cast<size_t>(__builtin_ctzll(bits));
            if (address < constructed) code[address].~Instruction();
        }
    }
    munmap(code, mappedBytes);
}

bool CodeStore::Map(size_t count) {
    code = static_cast<Instruction*>(ReserveAddressSpace(count, sizeof(Instruction)));
    if (!code) return false;
    reserved = count;
    mappedBytes = count * sizeof(Instruction);
    return true;
}

void CodeStore::GrowTo(size_t count) {
    if (count > reserved) count = reserved;
    // The pages of a step are taken in one call rather than fault by fault.
    if (count > constructed) {
        const uintptr_t page = 4096;
        const uintptr_t from = reinterpret_cast<uintptr_t>(code + constructed) & ~(page - 1);
        const uintptr_t to = reinterpret_cast<uintptr_t>(code + count);
        madvise(reinterpret_cast<void*>(from), to - from, MADV_POPULATE_WRITE);
    }
    if (count > constructed) ownsText.resize((count + 63) / 64);
    for (; constructed < count; ++constructed) new (code + constructed) Instruction();
}

void CodeStore::MoveFrom(CodeStore& from, size_t used) {
    if (used > from.constructed) used = from.constructed;
    GrowTo(used);
    for (size_t i = 0; i < used; ++i) {
        Instruction& to = code[i];
        Instruction& old = from.code[i];
        to.f = old.f;
        to.l = old.l;
        to.a = old.a;
        to.value.MoveFrom(old.value);
        std::swap(to.comment, old.comment);
    }
    std::copy(from.ownsText.begin(), from.ownsText.begin() + static_cast<std::ptrdiff_t>((used + 63) / 64),
              ownsText.begin());
}

}  // namespace qelkern
