#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

#include "machine/cell_ops.h"
#include "machine/code_store.h"
#include "platform/memory_budget.h"
#include "qelkern/machine.h"
#include "pipeline/script_error.h"

// Name of the listing file; empty switches the listing off.
CString DebugListingFile;
// The listing shows the source place of each statement's code.
bool DebugListingLines = false;

namespace {

constexpr int codeReserve = 100;
constexpr int codeSpare = 10;
constexpr int64_t codeStep = 10000;

}  // namespace

CGenerator::CGenerator(CInterpreter* machine) : interpreter(machine) {}

CGenerator::~CGenerator() = default;

// The value is taken by value, so it moves into the slot; a comment is
// mostly empty, which the inline copy passes over.
void CGenerator::Gen(int f, int l, intptr_t a, CString comment) {
    if (cx + codeReserve > interpreter->codeCapacity) TesteCode(codeReserve);
    Instruction& slot = interpreter->code[cx];
    slot.f = static_cast<uint8_t>(f);
    slot.l = l;
    slot.a = a;
    slot.comment = comment;
    if (!comment.IsEmpty()) interpreter->codeStore->NoteTextAt(static_cast<size_t>(cx));
    ++cx;
}

void CGenerator::Gen(int f, int l, VALUE value, CString comment) {
    if (cx + codeReserve > interpreter->codeCapacity) TesteCode(codeReserve);
    Instruction& slot = interpreter->code[cx];
    slot.f = static_cast<uint8_t>(f);
    slot.l = l;
    slot.value.MoveFrom(value);
    slot.comment = comment;
    if (slot.value.type == qelkern::tagString || !comment.IsEmpty())
        interpreter->codeStore->NoteTextAt(static_cast<size_t>(cx));
    ++cx;
}

// A jump to the very next instruction is dropped. A conditional jump stays,
// because it also pops its condition, and so does a jump that some earlier
// fixup already jumps past: removing it would move that target by one.
void CGenerator::fixup(int at) {
    if (at < 0 || at >= cx) return;
    if (at == cx - 1 && interpreter->code[at].f == JMP && highestPatchedTarget < cx) {
        --cx;
        return;
    }
    interpreter->code[at].a = cx;
    if (cx > highestPatchedTarget) highestPatchedTarget = cx;
}

void CGenerator::fixup(CUIntArray* list, int target) {
    if (!list) return;
    for (unsigned entry : *list) {
        if (entry >= static_cast<unsigned>(cx)) continue;
        interpreter->code[entry].a = target;
    }
    if (target > highestPatchedTarget) highestPatchedTarget = target;
}

// The store grows in steps of 10000 within its reservation, where nothing
// moves, so that a step costs only its own new instructions, and a host's
// memory limit is charged little more than the code uses.
void CGenerator::TesteCode(int n) {
    const int64_t needed = static_cast<int64_t>(cx) + n;
    const int64_t capacity = interpreter->codeCapacity;
    if (needed <= capacity) return;
    if (needed + codeSpare > INT32_MAX) throw std::bad_alloc();
    const int64_t steps = (needed + codeSpare - capacity + codeStep - 1) / codeStep;
    ReserveCode(capacity + steps * codeStep);
}

// Beyond what an int counts, the store stays as it is; TesteCode tells when
// that is too small. Past its reservation the store moves once into one
// twice as large, so that moving costs a constant per instruction.
void CGenerator::ReserveCode(int64_t capacity) {
    CInterpreter& machine = *interpreter;
    capacity = std::min<int64_t>(capacity, INT32_MAX);
    if (capacity <= machine.codeCapacity) return;
    qelkern::ChargeMemory(static_cast<size_t>(capacity - machine.codeCapacity) * sizeof(Instruction));
    const auto wanted = static_cast<size_t>(capacity);
    if (wanted > machine.codeStore->Reserved())
        MoveCodeStore(std::max(wanted, 2 * machine.codeStore->Reserved()), wanted);
    machine.codeStore->GrowTo(wanted);
    machine.code = machine.codeStore->Code();
    machine.codeCapacity = static_cast<int>(capacity);
}

void CGenerator::ForeseeCode(int64_t capacity) {
    CInterpreter& machine = *interpreter;
    capacity = std::min<int64_t>(capacity, INT32_MAX);
    if (capacity <= static_cast<int64_t>(machine.codeStore->Reserved())) return;
    try {
        MoveCodeStore(static_cast<size_t>(capacity), static_cast<size_t>(capacity));
    } catch (const std::bad_alloc&) {
        // The store grows as for any text when it is full.
    }
}

int64_t CGenerator::CodeRoom() const { return static_cast<int64_t>(interpreter->codeStore->Reserved()); }

void CGenerator::MoveCodeStore(size_t wanted, size_t needed) {
    CInterpreter& machine = *interpreter;
    auto moved = std::make_unique<qelkern::CodeStore>(wanted, needed);
    moved->GrowTo(static_cast<size_t>(machine.codeCapacity));
    moved->MoveFrom(*machine.codeStore, static_cast<size_t>(cx));
    delete machine.codeStore;
    machine.codeStore = moved.release();
    machine.code = machine.codeStore->Code();
}

void CGenerator::err(CString) { failed = 1; }

// A mark at an address that a dropped jump has given back, or that an empty
// statement left without code, gives way to the newer one.
void CGenerator::MarkSource(int line, int position) {
    while (!sourceMarks.empty() && sourceMarks.back().address >= cx) sourceMarks.pop_back();
    sourceMarks.push_back({cx, line, position});
}

bool CGenerator::SourceOf(int address, int& line, int& position) const {
    auto after = std::upper_bound(sourceMarks.begin(), sourceMarks.end(), address,
                                  [](int at, const SourceMark& mark) { return at < mark.address; });
    if (address < 0 || address >= cx || after == sourceMarks.begin()) return false;
    --after;
    line = after->line;
    position = after->position;
    return true;
}

void CGenerator::WritePlaceLines(int address, size_t& nextMark) {
    for (; nextMark < sourceMarks.size() && sourceMarks[nextMark].address <= address; ++nextMark) {
        const SourceMark& mark = sourceMarks[nextMark];
        const CString place = qelkern::DescribePlace(mark.line, mark.position);
        if (!place.IsEmpty()) listFile.WriteString("; " + place + "\n");
    }
}

void CGenerator::DebugFlushToFile() {
    if (DebugListingFile.IsEmpty()) return;
    if (!listFile.Open(DebugListingFile, CStdioFile::modeCreate | CStdioFile::modeWrite |
                                             CStdioFile::typeText))
        return;
    size_t nextMark = 0;
    for (int address = 0; address < cx; ++address) {
        if (DebugListingLines) WritePlaceLines(address, nextMark);
        listFile.WriteString(interpreter->code[address].GetText(address));
    }
    listFile.Close();
}
