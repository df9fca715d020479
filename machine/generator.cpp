#include <algorithm>
#include <cstdint>
#include <new>
#include <utility>

#include "platform/memory_budget.h"
#include "qelkern/machine.h"
#include "qelkern/runcontrol.h"
#include "pipeline/script_error.h"

// Name of the listing file; empty switches the listing off.
CString DebugListingFile;
// The listing shows the source place of each statement's code.
bool DebugListingLines = false;

namespace {

constexpr int codeReserve = 100;
constexpr int codeSpare = 10;

// Moves without copying texts; `from` is about to be deleted.
void MoveInstruction(Instruction& to, Instruction& from) {
    to.f = from.f;
    to.l = from.l;
    to.a = from.a;
    to.value.MoveFrom(from.value);
    std::swap(to.comment, from.comment);
}

}  // namespace

CGenerator::CGenerator(CInterpreter* machine) : interpreter(machine) {}

CGenerator::~CGenerator() = default;

void CGenerator::Gen(int f, int l, intptr_t a, CString comment) {
    TesteCode(codeReserve);
    Instruction& slot = interpreter->code[cx];
    slot.f = static_cast<uint8_t>(f);
    slot.l = l;
    slot.a = a;
    slot.comment = comment;
    ++cx;
}

void CGenerator::Gen(int f, int l, VALUE value, CString comment) {
    TesteCode(codeReserve);
    Instruction& slot = interpreter->code[cx];
    slot.f = static_cast<uint8_t>(f);
    slot.l = l;
    slot.value = value;
    slot.comment = comment;
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

// The store grows geometrically, so that filling it costs a constant per
// instruction: it doubles, and under a host's memory limit, which charges
// the whole store, by an eighth, so that little more is charged than used.
void CGenerator::TesteCode(int n) {
    const int64_t needed = static_cast<int64_t>(cx) + n;
    const int64_t capacity = interpreter->codeCapacity;
    if (needed <= capacity) return;
    if (needed + codeSpare > INT32_MAX) throw std::bad_alloc();
    const CRunControl* control = interpreter->control;
    const bool limited = control != nullptr && control->maxMemoryBytes > 0;
    ReserveCode(std::max(limited ? capacity + capacity / 8 : 2 * capacity, needed + codeSpare));
}

// Beyond what an int counts, the store stays as it is; TesteCode tells when
// that is too small.
void CGenerator::ReserveCode(int64_t capacity) {
    CInterpreter& machine = *interpreter;
    capacity = std::min<int64_t>(capacity, INT32_MAX);
    if (capacity <= machine.codeCapacity) return;
    qelkern::ChargeMemory(static_cast<size_t>(capacity - machine.codeCapacity) * sizeof(Instruction));
    Instruction* grown = new Instruction[static_cast<size_t>(capacity)];
    for (int i = 0; i < cx; ++i) MoveInstruction(grown[i], machine.code[i]);
    delete[] machine.code;
    machine.code = grown;
    machine.codeCapacity = static_cast<int>(capacity);
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
