// The instructions of the code store in one reservation of address space:
// growing within it constructs default instructions behind the others, so
// no instruction moves, and a page is touched first when the code reaches it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "qelkern/machine.h"

namespace qelkern {

class CodeStore {
public:
    // Reserves room for `reserved` instructions, or at least for `needed` if
    // that much address space is not to be had; throws std::bad_alloc.
    CodeStore(size_t reserved, size_t needed);
    ~CodeStore();
    CodeStore(const CodeStore&) = delete;
    CodeStore& operator=(const CodeStore&) = delete;

    Instruction* Code() const { return code; }
    size_t Constructed() const { return constructed; }
    size_t Reserved() const { return reserved; }
    // Constructs default instructions up to `count`, which is at most Reserved().
    void GrowTo(size_t count);
    // Takes the first `used` instructions of `from`, leaving default ones there.
    void MoveFrom(CodeStore& from, size_t used);
    // The instruction at `address` may own a text (a string value or a
    // comment): only such are destroyed one by one. The generator, which
    // alone fills the store, tells each one it writes.
    void NoteTextAt(size_t address) { ownsText[address / 64] |= uint64_t{1} << (address % 64); }

private:
    bool Map(size_t count);

    Instruction* code = nullptr;
    size_t constructed = 0;
    size_t reserved = 0;
    size_t mappedBytes = 0;
    std::vector<uint64_t> ownsText;  // a bit for each constructed instruction
};

}  // namespace qelkern
