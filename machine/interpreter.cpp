#include <cstdint>
#include <new>

#include "machine/cell_ops.h"
#include "machine/host_calls.h"
#include "machine/name_tables.h"
#include "qelkern/machine.h"
#include "qelkern/userinterface.h"

using namespace qelkern;

namespace {

constexpr int initialCapacity = 10000;
constexpr int stackGrowthStep = 10000;
// Room above t for what one instruction writes there (CALL: three cells).
constexpr int stackReserve = 10;

// Follows `levels` static links from `frame`. Each link must point below the
// frame that holds it, which every CALL guarantees; anything else is code
// that was not made by the compiler. -1: a link leaves that rule or the stack.
inline int FollowLinks(const VALUE* stack, int capacity, int frame, int levels) {
    for (int i = 0; i < levels; ++i) {
        if (frame < 0 || frame >= capacity) return -1;
        int link = stack[frame].intValue;
        if (link < 0 || link >= frame) return -1;
        frame = link;
    }
    return frame;
}

inline bool IsCell(int64_t index, int capacity) { return index >= 0 && index < capacity; }

// Jump targets beyond int still end the run or fail the address test.
inline int ToAddress(intptr_t a) {
    if (a < INT32_MIN) return INT32_MIN;
    if (a > INT32_MAX) return INT32_MAX;
    return static_cast<int>(a);
}

CString CellMessage(int64_t index) {
    CString text;
    text.Format("Zugriff auf Stackzelle %lld außerhalb des Stacks.", static_cast<long long>(index));
    return text;
}

CString AddressMessage(int address) {
    CString text;
    text.Format("Sprung auf ungültige Codeadresse %d.", address);
    return text;
}

CString ArrayIndexMessage(int index, int size) {
    CString text;
    text.Format("Array-Index %d außerhalb der Grenzen 0 bis %d.", index, WrapSub(size, 1));
    return text;
}

const char* const underflowMessage = "Stackunterlauf.";
const char* const linkMessage = "Ungültiger statischer Verweis.";

// The dispatch loop. p, b and t live in locals and are written back to the
// interpreter before anything that can observe them: err, callbacks, dialogs,
// stack growth, and the end of the run.
class Machine {
public:
    explicit Machine(CInterpreter& interpreter) : m(interpreter) {}
    void Run();

private:
    void Sync() {
        m.p = p;
        m.b = b;
        m.t = t;
    }
    void Fail(const CString& text) {
        Sync();
        m.err(text);
    }
    // Makes room for n cells above t; false: the run has failed.
    bool Grow(int64_t n) {
        Sync();
        int clamped = n > m.stackLimit ? m.stackLimit : static_cast<int>(n);
        if (!m.TesteStack(clamped)) return false;
        s = m.stack;
        capacity = m.stackCapacity;
        return true;
    }
    // Cell base(l) + a, or -1 after a reported error.
    int64_t DataCell(int l, intptr_t a) {
        int frame = l == 0 ? b : FollowLinks(s, capacity, b, l);
        if (frame < 0) {
            Fail(linkMessage);
            return -1;
        }
        int64_t index = static_cast<int64_t>(frame) + a;
        if (!IsCell(index, capacity)) {
            Fail(CellMessage(index));
            return -1;
        }
        return index;
    }
    // Element cell of the array at base(l) + a, or -1 after a reported error.
    int64_t ElementCell(int l, intptr_t a, const VALUE& indexCell);
    bool Operation(const Instruction& ins);
    bool Binary(const Instruction& ins);
    bool Call(const Instruction& ins);
    bool Reserve(intptr_t count);
    bool Return();

    CInterpreter& m;
    const Instruction* code = m.code;
    const int codeCapacity = m.codeCapacity;
    VALUE* s = m.stack;
    int capacity = m.stackCapacity;
    int p = 0;
    int b = 1;
    int t = 0;
};

void Machine::Run() {
    for (;;) {
        if (static_cast<unsigned>(t) > static_cast<unsigned>(capacity - stackReserve)) {
            if (t < 0) return Fail(underflowMessage);
            if (!Grow(0)) return;
        }
        if (static_cast<unsigned>(p) >= static_cast<unsigned>(codeCapacity))
            return Fail(AddressMessage(p));
        const Instruction& ins = code[p++];
        switch (ins.f) {
            case LIT: Assign(s[++t], ins.value); break;
            case OPR:
                if (!Operation(ins)) return;
                break;
            case LOD: {
                int64_t cell = DataCell(ins.l, ins.a);
                if (cell < 0) return;
                Assign(s[++t], s[cell]);
                break;
            }
            case STO: {
                int64_t cell = DataCell(ins.l, ins.a);
                if (cell < 0) return;
                Assign(s[cell], s[t]);
                --t;
                break;
            }
            case CALL:
                if (!Call(ins)) return;
                break;
            case INT:
                if (!Reserve(ins.a)) return;
                break;
            case JMP: p = ToAddress(ins.a); break;
            case JPC:
                if (IsZero(s[t])) p = ToAddress(ins.a);
                --t;
                break;
            case LODI: {
                int64_t cell = ElementCell(ins.l, ins.a, s[t]);
                if (cell < 0) return;
                Assign(s[t], s[cell]);
                break;
            }
            case STOI: {
                if (t < 1) return Fail(underflowMessage);
                int64_t cell = ElementCell(ins.l, ins.a, s[t - 1]);
                if (cell < 0) return;
                Assign(s[cell], s[t]);
                t -= 2;
                break;
            }
            case SWAP: {
                if (t < 1) return Fail(underflowMessage);
                VALUE held;
                held.MoveFrom(s[t]);
                s[t].MoveFrom(s[t - 1]);
                s[t - 1].MoveFrom(held);
                break;
            }
            case EXTCALL:
                Sync();
                if (!CallExternalRoutine(m, ins)) return;
                break;
            default: break;
        }
        if (p <= 0) return Sync();
    }
}

bool Machine::Call(const Instruction& ins) {
    int frame = ins.l == 0 ? b : FollowLinks(s, capacity, b, ins.l);
    if (frame < 0) {
        Fail(linkMessage);
        return false;
    }
    SetInt(s[t + 1], frame);
    SetInt(s[t + 2], b);
    SetInt(s[t + 3], p);
    b = t + 1;
    p = ToAddress(ins.a);
    return true;
}

bool Machine::Reserve(intptr_t count) {
    if (count > 0 && count > capacity - stackReserve - t && !Grow(count)) return false;
    int64_t top = static_cast<int64_t>(t) + count;
    if (top < 0) {
        Fail(underflowMessage);
        return false;
    }
    t = static_cast<int>(top);
    return true;
}

bool Machine::Return() {
    if (b < 1) {
        Fail(underflowMessage);
        return false;
    }
    if (static_cast<int64_t>(b) + 2 >= capacity) {
        Fail(CellMessage(static_cast<int64_t>(b) + 2));
        return false;
    }
    t = b - 1;
    p = s[t + 3].intValue;
    b = s[t + 2].intValue;
    return true;
}

int64_t Machine::ElementCell(int l, intptr_t a, const VALUE& indexCell) {
    int64_t sizeCell = DataCell(l, a);
    if (sizeCell < 0) return -1;
    const VALUE& sizeValue = s[sizeCell];
    int size = sizeValue.type == tagInteger ? sizeValue.intValue : 0;
    int index = indexCell.type == tagInteger ? indexCell.intValue : static_cast<int>(indexCell);
    if (index < 0 || index >= size) {
        Fail(ArrayIndexMessage(index, size));
        return -1;
    }
    int64_t cell = sizeCell + 1 + index;
    if (!IsCell(cell, capacity)) {
        Fail(CellMessage(cell));
        return -1;
    }
    return cell;
}

bool Machine::Operation(const Instruction& ins) {
    VALUE& top = s[t];
    switch (ins.a) {
        case oprRet: return Return();
        case oprNegate: Negate(top); break;
        case oprReadInt:
            Sync();
            SetInt(s[t + 1], AskForNumber(ins, true));
            ++t;
            break;
        case oprReadDouble:
            Sync();
            SetDouble(s[t + 1], AskForNumber(ins, false));
            ++t;
            break;
        case oprWrite:
            Sync();
            ShowNumber(ins, top);
            --t;
            break;
        case oprDecrement: --top; break;
        case oprIncrement: ++top; break;
        case oprIntCast: SetInt(top, static_cast<int>(top)); break;
        case oprDoubleCast: SetDouble(top, static_cast<double>(top)); break;
        case oprBitNot: SetInt(top, ~top.intValue); break;
        case oprNot: SetInt(top, IsZero(top) ? 1 : 0); break;
        default: return Binary(ins);
    }
    return true;
}

bool Machine::Binary(const Instruction& ins) {
    if (ins.a < oprPlus || ins.a > oprNot) return true;  // no such operation: nothing happens
    if (t < 1) {
        Fail(underflowMessage);
        return false;
    }
    VALUE& right = s[t];
    VALUE& left = s[--t];
    switch (ins.a) {
        case oprPlus: Add(left, right); break;
        case oprMinus: Subtract(left, right); break;
        case oprTimes: Multiply(left, right); break;
        case oprDivide:
            if (IsZero(right)) {
                Fail("Division durch Null");
                return false;
            }
            Divide(left, right);
            break;
        case oprEqual: Equal(left, right, false); break;
        case oprNotEqual: Equal(left, right, true); break;
        case oprLess: Less(left, right); break;
        case oprGreaterEqual: GreaterEqual(left, right); break;
        case oprGreater: Greater(left, right); break;
        case oprLessEqual: LessEqual(left, right); break;
        case oprBitOr: SetInt(left, left.intValue | right.intValue); break;
        case oprBitAnd: SetInt(left, left.intValue & right.intValue); break;
        case oprOr: SetInt(left, (IsPositive(left) || IsPositive(right)) ? 1 : 0); break;
        case oprAnd: SetInt(left, (IsPositive(left) && IsPositive(right)) ? 1 : 0); break;
        default: break;
    }
    return true;
}

}  // namespace

CInterpreter::CInterpreter()
    : code(new Instruction[initialCapacity]), stack(new VALUE[initialCapacity]) {
    FillNameTables();
}

CInterpreter::~CInterpreter() {
    delete[] code;
    delete[] stack;
}

void CInterpreter::Interpret() {
    t = 0;
    b = 1;
    p = 0;
    // Cell 3 too: it holds the main block's return address, 0, which ends
    // the run at its RET, also when an interpreter is run a second time.
    for (int i = 0; i <= 3; ++i) stack[i] = VALUE();
    Machine(*this).Run();
}

int CInterpreter::base(int l) { return FollowLinks(stack, stackCapacity, b, l); }

// All cells of the old array move over, also those above t: CALL has just
// written the links of the new frame there.
int CInterpreter::TesteStack(int n) {
    int64_t needed = static_cast<int64_t>(t) + n + stackReserve;
    if (needed <= stackCapacity) return 1;
    int64_t grown = stackCapacity;
    while (grown < needed) grown += stackGrowthStep;
    if (grown > stackLimit) {
        err("Stacküberlauf.");
        return 0;
    }
    VALUE* cells = new (std::nothrow) VALUE[static_cast<size_t>(grown)];
    if (!cells) {
        err("Stacküberlauf.");
        return 0;
    }
    for (int i = 0; i < stackCapacity; ++i) cells[i].MoveFrom(stack[i]);
    delete[] stack;
    stack = cells;
    stackCapacity = static_cast<int>(grown);
    return 1;
}

void CInterpreter::err(CString text) {
    CString shown;
    shown.Format("%s", static_cast<const char*>(text));
    GetUserInterface().ShowMessage(shown, CString(), CUserInterface::IconError);
    failed = 1;
}
