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
    text.Format("Ungültige Codeadresse %d.", address);
    return text;
}

CString ArrayIndexMessage(int index, int size) {
    CString text;
    text.Format("Array-Index %d außerhalb der Grenzen 0 bis %d.", index, WrapSub(size, 1));
    return text;
}

const char* const underflowMessage = "Stackunterlauf.";
const char* const linkMessage = "Ungültiger statischer Verweis.";

// Marks a cell index whose static links could not be followed.
constexpr int64_t badLink = INT64_MIN;

// Cell base(l) + a, seen from frame b; badLink or an index outside the stack
// when the code is not what the compiler makes.
inline int64_t DataCell(const VALUE* s, int capacity, int b, int l, intptr_t a) {
    int frame = l == 0 ? b : FollowLinks(s, capacity, b, l);
    if (frame < 0) return badLink;
    return static_cast<int64_t>(frame) + a;
}

CString CellError(int64_t index) { return index == badLink ? CString(linkMessage) : CellMessage(index); }

// Element cell of the array whose size cell is `sizeCell`, or -1 when the
// index lies outside 0 to N - 1.
inline int64_t ElementCell(const VALUE* s, int64_t sizeCell, const VALUE& indexCell, int& index,
                           int& size) {
    const VALUE& sizeValue = s[sizeCell];
    size = sizeValue.type == tagInteger ? sizeValue.intValue : 0;
    index = indexCell.type == tagInteger ? indexCell.intValue : static_cast<int>(indexCell);
    if (index < 0 || index >= size) return -1;
    return sizeCell + 1 + index;
}

// The error paths take the registers by value, so that the hot loop never
// lets their addresses escape and can keep them in registers.
void Fail(CInterpreter& m, int p, int b, int t, const CString& text) {
    m.p = p;
    m.b = b;
    m.t = t;
    m.err(text);
}

// Makes room for n cells above t; false: the run has failed.
bool Grow(CInterpreter& m, int p, int b, int t, int64_t n) {
    m.p = p;
    m.b = b;
    m.t = t;
    return m.TesteStack(n > m.stackLimit ? m.stackLimit : static_cast<int>(n)) != 0;
}

// Binary OPR on cells t - 1 and t; the result goes to t - 1. Returns the
// message of a run-time error, or null.
[[gnu::always_inline]] inline const char* Binary(intptr_t operation, VALUE* s, int& t) {
    if (t < 1) return underflowMessage;
    VALUE& right = s[t];
    VALUE& left = s[--t];
    switch (operation) {
        case oprPlus: Add(left, right); break;
        case oprMinus: Subtract(left, right); break;
        case oprTimes: Multiply(left, right); break;
        case oprDivide:
            if (IsZero(right)) return "Division durch Null";
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
    return nullptr;
}

// OPR sub-operations on cell t alone. false: not one of them.
[[gnu::always_inline]] inline bool Unary(intptr_t operation, VALUE& top) {
    switch (operation) {
        case oprNegate: Negate(top); return true;
        case oprDecrement:
            if (top.type == tagInteger) top.intValue = WrapSub(top.intValue, 1);
            else --top;
            return true;
        case oprIncrement:
            if (top.type == tagInteger) top.intValue = WrapAdd(top.intValue, 1);
            else ++top;
            return true;
        case oprIntCast:
            if (top.type != tagInteger) SetInt(top, static_cast<int>(top));
            return true;
        case oprDoubleCast:
            if (top.type != tagDouble) SetDouble(top, static_cast<double>(top));
            return true;
        case oprBitNot: SetInt(top, ~top.intValue); return true;
        case oprNot: SetInt(top, IsZero(top) ? 1 : 0); return true;
        default: return false;
    }
}

// The dispatch loop. p, b, t, the stack pointer and its capacity live in
// locals; they are written back to the interpreter before anything that can
// observe them: err, callbacks, dialogs, stack growth and the end of the run.
void Run(CInterpreter& m) {
    const Instruction* const code = m.code;
    const unsigned codeCapacity = static_cast<unsigned>(m.codeCapacity);
    VALUE* s = m.stack;
    int capacity = m.stackCapacity;
    int p = 0, b = 1, t = 0;
#define QEL_FAIL(text)              \
    do {                            \
        Fail(m, p, b, t, (text));   \
        return;                     \
    } while (0)
#define QEL_SYNC() (m.p = p, m.b = b, m.t = t)

    for (;;) {
        if (static_cast<unsigned>(t) > static_cast<unsigned>(capacity - stackReserve)) {
            if (t < 0) QEL_FAIL(underflowMessage);
            if (!Grow(m, p, b, t, 0)) return;
            s = m.stack;
            capacity = m.stackCapacity;
        }
        if (static_cast<unsigned>(p) >= codeCapacity) QEL_FAIL(AddressMessage(p));
        const Instruction& ins = code[p++];
        switch (ins.f) {
            case LIT: Assign(s[++t], ins.value); break;
            case OPR: {
                const intptr_t operation = ins.a;
                if (Unary(operation, s[t])) break;
                if (operation >= oprPlus && operation <= oprAnd && operation != oprReadInt &&
                    operation != oprWrite && operation != oprReadDouble) {
                    if (const char* error = Binary(operation, s, t)) QEL_FAIL(error);
                    break;
                }
                switch (operation) {
                    case oprRet:
                        if (b < 1) QEL_FAIL(underflowMessage);
                        if (static_cast<int64_t>(b) + 2 >= capacity)
                            QEL_FAIL(CellMessage(static_cast<int64_t>(b) + 2));
                        t = b - 1;
                        p = s[t + 3].intValue;
                        b = s[t + 2].intValue;
                        break;
                    case oprReadInt:
                        QEL_SYNC();
                        SetInt(s[t + 1], AskForNumber(ins, true));
                        ++t;
                        break;
                    case oprReadDouble:
                        QEL_SYNC();
                        SetDouble(s[t + 1], AskForNumber(ins, false));
                        ++t;
                        break;
                    case oprWrite:
                        QEL_SYNC();
                        ShowNumber(ins, s[t]);
                        --t;
                        break;
                    default: break;  // no such operation: nothing happens
                }
                break;
            }
            case LOD: {
                int64_t cell = DataCell(s, capacity, b, ins.l, ins.a);
                if (!IsCell(cell, capacity)) QEL_FAIL(CellError(cell));
                Assign(s[++t], s[cell]);
                break;
            }
            case STO: {
                int64_t cell = DataCell(s, capacity, b, ins.l, ins.a);
                if (!IsCell(cell, capacity)) QEL_FAIL(CellError(cell));
                Assign(s[cell], s[t]);
                --t;
                break;
            }
            case CALL: {
                int frame = ins.l == 0 ? b : FollowLinks(s, capacity, b, ins.l);
                if (frame < 0) QEL_FAIL(linkMessage);
                SetInt(s[t + 1], frame);
                SetInt(s[t + 2], b);
                SetInt(s[t + 3], p);
                b = t + 1;
                p = ToAddress(ins.a);
                break;
            }
            case INT: {
                const intptr_t count = ins.a;
                if (count > 0 && count > capacity - stackReserve - t) {
                    if (!Grow(m, p, b, t, count)) return;
                    s = m.stack;
                    capacity = m.stackCapacity;
                }
                int64_t top = static_cast<int64_t>(t) + count;
                if (top < 0) QEL_FAIL(underflowMessage);
                t = static_cast<int>(top);
                break;
            }
            case JMP: p = ToAddress(ins.a); break;
            case JPC:
                if (IsZero(s[t])) p = ToAddress(ins.a);
                --t;
                break;
            case LODI:
            case STOI: {
                const bool store = ins.f == STOI;
                if (store && t < 1) QEL_FAIL(underflowMessage);
                int64_t sizeCell = DataCell(s, capacity, b, ins.l, ins.a);
                if (!IsCell(sizeCell, capacity)) QEL_FAIL(CellError(sizeCell));
                int index, size;
                int64_t cell = ElementCell(s, sizeCell, s[store ? t - 1 : t], index, size);
                if (cell < 0) QEL_FAIL(ArrayIndexMessage(index, size));
                if (!IsCell(cell, capacity)) QEL_FAIL(CellMessage(cell));
                if (store) {
                    Assign(s[cell], s[t]);
                    t -= 2;
                } else {
                    Assign(s[t], s[cell]);
                }
                break;
            }
            case SWAP: {
                if (t < 1) QEL_FAIL(underflowMessage);
                VALUE held;
                held.MoveFrom(s[t]);
                s[t].MoveFrom(s[t - 1]);
                s[t - 1].MoveFrom(held);
                break;
            }
            case EXTCALL:
                QEL_SYNC();
                if (!CallExternalRoutine(m, ins)) return;
                break;
            default: break;  // no such opcode: nothing happens
        }
        if (p <= 0) break;
    }
    QEL_SYNC();
#undef QEL_FAIL
#undef QEL_SYNC
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
    Run(*this);
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
