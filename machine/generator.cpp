#include <cstdint>
#include <new>

#include "platform/memory_budget.h"
#include "qelkern/machine.h"

// Name of the listing file; empty switches the listing off.
CString DebugListingFile;

namespace {

constexpr int codeGrowthStep = 10000;
constexpr int codeReserve = 100;

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

void CGenerator::TesteCode(int n) {
    CInterpreter& machine = *interpreter;
    int64_t needed = static_cast<int64_t>(cx) + n;
    if (needed <= machine.codeCapacity) return;
    int64_t capacity = machine.codeCapacity;
    while (needed + 10 > capacity) capacity += codeGrowthStep;
    if (capacity > INT32_MAX) throw std::bad_alloc();
    qelkern::ChargeMemory(static_cast<size_t>(capacity - machine.codeCapacity) * sizeof(Instruction));
    Instruction* grown = new Instruction[static_cast<size_t>(capacity)];
    for (int i = 0; i < cx; ++i) grown[i] = machine.code[i];
    delete[] machine.code;
    machine.code = grown;
    machine.codeCapacity = static_cast<int>(capacity);
}

void CGenerator::err(CString) { failed = 1; }

void CGenerator::DebugFlushToFile() {
    if (DebugListingFile.IsEmpty()) return;
    if (!listFile.Open(DebugListingFile, CStdioFile::modeCreate | CStdioFile::modeWrite |
                                             CStdioFile::typeText))
        return;
    for (int address = 0; address < cx; ++address)
        listFile.WriteString(interpreter->code[address].GetText(address));
    listFile.Close();
}
