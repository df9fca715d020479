#include <algorithm>
#include <cstdint>
#include <new>
#include <vector>

#include "machine/cell_ops.h"
#include "machine/decode.h"
#include "machine/host_calls.h"
#include "machine/name_tables.h"
#include "machine/run_watch.h"
#include "machine/stack_cells.h"
#include "platform/memory_budget.h"
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

// A capacity is never negative, so one unsigned comparison does.
inline bool IsCell(int64_t index, int capacity) {
    return static_cast<uint64_t>(index) < static_cast<uint64_t>(capacity);
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

// Carries on at an address outside the decoded code, as the machine does
// there: 0 or below ends the run; the untagged LITs behind the code are
// pushed one by one, each behind its stack test; the first address past the
// code store is invalid. Always ends the run.
void LeaveCode(CInterpreter& m, int p, int b, int t) {
    m.p = p;
    m.b = b;
    m.t = t;
    if (p <= 0) return;
    for (;;) {
        if (m.t > m.stackCapacity - stackReserve && !m.TesteStack(0)) return;
        if (m.p >= m.codeCapacity) {
            m.err(AddressMessage(m.p));
            return;
        }
        Assign(m.stack[++m.t], m.code[m.p++].value);
    }
}

// The registers of the running machine, in the form the loops use. They are
// written back to the interpreter before anything that can observe them:
// err, callbacks, dialogs, stack growth and the end of the run.
struct Registers {
    const Step* next;  // the step at address p
    VALUE* top;        // cell t
    int b;
    // Cell b and the number of cells from it to the end of the stack, so that
    // an offset in the frame takes one comparison; for a b outside the stack
    // the first cell and 0, and every offset is left to GeneralStep.
    VALUE* frame;
    uintptr_t above;
    // The steps taken are (travel + next) / sizeof(Step): every transfer of
    // control adds the distance it leaves behind, so counting costs an add per
    // jump taken and nothing per step, and a fused step counts what it covers.
    intptr_t travel;
};

inline intptr_t Position(const Step* step) { return reinterpret_cast<intptr_t>(step); }

// Moves r.next, which stands on the step that transfers, to `to`.
inline void Transfer(Registers& r, const Step* to) {
    r.travel += Position(r.next) + static_cast<intptr_t>(sizeof(Step)) - Position(to);
    r.next = to;
}

inline int64_t StepsTaken(const Registers& r) {
    return (r.travel + Position(r.next)) / static_cast<intptr_t>(sizeof(Step));
}

// The value of travel + next at which the loop must stop for the run watch.
inline intptr_t CheckPosition(int64_t nextCheck) {
    constexpr int64_t most = INTPTR_MAX / static_cast<int64_t>(sizeof(Step));
    return nextCheck >= most ? INTPTR_MAX
                             : static_cast<intptr_t>(nextCheck) * static_cast<intptr_t>(sizeof(Step));
}

inline void SetFrame(Registers& r, VALUE* s, int capacity) {
    if (r.b >= 0 && r.b < capacity) {
        r.frame = s + r.b;
        r.above = static_cast<uintptr_t>(capacity - r.b);
    } else {
        r.frame = s;
        r.above = 0;
    }
}

// Whether cell b + a lies in the stack, for a variable (a 0 or above) and for
// a parameter (below 0).
inline bool IsVariable(const Registers& r, intptr_t a) {
    return static_cast<uintptr_t>(a) < r.above;
}
inline bool IsParameter(const Registers& r, intptr_t a) {
    return r.above != 0 && a >= -static_cast<intptr_t>(r.b);
}

// The element of LODI and STOI for an integer index inside the array, else null.
inline VALUE* IntegerElement(VALUE* s, int capacity, int b, const Step& step,
                             const VALUE& indexCell) {
    if (indexCell.type != tagInteger) return nullptr;
    const int64_t sizeCell = DataCell(s, capacity, b, step.l, step.a);
    if (!IsCell(sizeCell, capacity)) return nullptr;
    const VALUE& size = s[sizeCell];
    const int index = indexCell.intValue;
    if (size.type != tagInteger || index < 0 || index >= size.intValue) return nullptr;
    const int64_t cell = sizeCell + 1 + index;
    return IsCell(cell, capacity) ? s + cell : nullptr;
}

// Runs the steps that need no call, as long as it meets them: numbers in
// cells, no text to copy or release, nothing to report, no stack to grow.
// Without a call in it the compiler can keep the registers in machine
// registers, and this is where a run spends its time. Returns on the first
// step that needs more, which is left to GeneralStep, or behind a step that
// pushed into the reserve.
//
// At the start of every step the top cell lies between the stack's first
// cell and `limit`, so that a step may write the three cells above it
// unchecked. The machine tests the stack before every instruction; only a
// step that moves the top can break the rule, so the test follows those
// steps, which is the same moment.
//
// Backward jumps and calls, the only way a run can go on for long, stop at
// `checkAt` (see CheckPosition) before they are carried out.
[[gnu::noinline]] void RunFast(Registers& registers, const Step* steps, int length, VALUE* s,
                               int capacity, intptr_t checkAt) {
    Registers r = registers;
    VALUE* const limit = s + (capacity - stackReserve);
#define QEL_LEAVE() goto leave
#define QEL_CHECKPOINT() \
    if (r.travel + Position(r.next) >= checkAt) QEL_LEAVE()
    // Behind a push into the reserve: the stack must grow before the next step.
#define QEL_PUSHED()       \
    if (r.top > limit) {   \
        ++r.next;          \
        goto leave;        \
    }
#define QEL_UNARY(operation) \
    if (!operation(*r.top)) QEL_LEAVE(); \
    break
#define QEL_BINARY(operation)                                     \
    if (r.top == s || !operation(r.top[-1], r.top[0])) QEL_LEAVE(); \
    --r.top;                                                      \
    break

    // A step that goes elsewhere than to the next one continues the loop.
    for (;;) {
        const Step& step = *r.next;
        switch (step.op) {
            case Op::LitInt:
                if (!TrySetInt(r.top[1], step.number)) QEL_LEAVE();
                ++r.top;
                QEL_PUSHED();
                break;
            case Op::LitDouble:
                if (!TrySetDouble(r.top[1], step.real)) QEL_LEAVE();
                ++r.top;
                QEL_PUSHED();
                break;
            case Op::Load:
                if (!IsVariable(r, step.a) || !TryAssign(r.top[1], r.frame[step.a])) QEL_LEAVE();
                ++r.top;
                QEL_PUSHED();
                break;
            case Op::LoadParameter:
                if (!IsParameter(r, step.a) || !TryAssign(r.top[1], r.frame[step.a])) QEL_LEAVE();
                ++r.top;
                QEL_PUSHED();
                break;
            case Op::LoadOuter: {
                const int64_t cell = DataCell(s, capacity, r.b, step.l, step.a);
                if (!IsCell(cell, capacity) || !TryAssign(r.top[1], s[cell])) QEL_LEAVE();
                ++r.top;
                QEL_PUSHED();
                break;
            }
            case Op::Store:
                if (!IsVariable(r, step.a) || r.top == s || !TryAssign(r.frame[step.a], *r.top))
                    QEL_LEAVE();
                --r.top;
                break;
            case Op::StoreParameter:
                if (!IsParameter(r, step.a) || r.top == s || !TryAssign(r.frame[step.a], *r.top))
                    QEL_LEAVE();
                --r.top;
                break;
            case Op::StoreOuter: {
                const int64_t cell = DataCell(s, capacity, r.b, step.l, step.a);
                if (!IsCell(cell, capacity) || r.top == s || !TryAssign(s[cell], *r.top))
                    QEL_LEAVE();
                --r.top;
                break;
            }
            case Op::Call: {
                QEL_CHECKPOINT();
                const int link = FollowLinks(s, capacity, r.b, step.l);
                VALUE* const cells = r.top + 1;
                if (link < 0 || cells[0].type == tagString || cells[1].type == tagString ||
                    cells[2].type == tagString)
                    QEL_LEAVE();
                TrySetInt(cells[0], link);
                TrySetInt(cells[1], r.b);
                TrySetInt(cells[2], static_cast<int>(r.next - steps) + 1);
                r.b = static_cast<int>(cells - s);
                r.frame = cells;
                r.above = static_cast<uintptr_t>(capacity - r.b);
                Transfer(r, step.to);
                continue;
            }
            case Op::Enter:
                // Leaves a growth or an underflow to GeneralStep.
                if (step.a > limit - r.top || step.a < s - r.top) QEL_LEAVE();
                r.top += step.a;
                break;
            case Op::JumpBack: QEL_CHECKPOINT(); [[fallthrough]];
            case Op::Jump: Transfer(r, step.to); continue;
            case Op::JumpBackIfZero: QEL_CHECKPOINT(); [[fallthrough]];
            case Op::JumpIfZero:
                if (r.top == s || !IsNumber(*r.top)) QEL_LEAVE();
                if (NumberIsZero(*r.top)) {
                    --r.top;
                    Transfer(r, step.to);
                    continue;
                }
                --r.top;
                break;
            case Op::LoadIndexed: {
                const VALUE* element = IntegerElement(s, capacity, r.b, step, *r.top);
                if (!element || !TryAssign(*r.top, *element)) QEL_LEAVE();
                break;
            }
            case Op::StoreIndexed: {
                if (r.top - s < 2) QEL_LEAVE();
                VALUE* element = IntegerElement(s, capacity, r.b, step, r.top[-1]);
                if (!element || !TryAssign(*element, *r.top)) QEL_LEAVE();
                r.top -= 2;
                break;
            }
            case Op::Return: {
                const int b = r.b;
                if (b < 1 || static_cast<int64_t>(b) + 2 >= capacity) QEL_LEAVE();
                VALUE* const top = s + (b - 1);
                const int back = top[3].intValue;
                if (back <= 0 || back >= length) QEL_LEAVE();
                r.top = top;
                r.b = top[2].intValue;
                SetFrame(r, s, capacity);
                Transfer(r, steps + back);
                if (r.top > limit) goto leave;
                continue;
            }
            case Op::Plus: QEL_BINARY(TryAdd);
            case Op::Minus: QEL_BINARY(TrySubtract);
            case Op::Times: QEL_BINARY(TryMultiply);
            case Op::Divide:
                if (r.top == s || !IsNumber(*r.top) || NumberIsZero(*r.top) ||
                    !TryDivide(r.top[-1], *r.top))
                    QEL_LEAVE();
                --r.top;
                break;
            case Op::Equal: QEL_BINARY(TryEqual);
            case Op::NotEqual: QEL_BINARY(TryNotEqual);
            case Op::Less: QEL_BINARY(TryLess);
            case Op::GreaterEqual: QEL_BINARY(TryGreaterEqual);
            case Op::Greater: QEL_BINARY(TryGreater);
            case Op::LessEqual: QEL_BINARY(TryLessEqual);
            case Op::BitOr: QEL_BINARY(TryBitOr);
            case Op::BitAnd: QEL_BINARY(TryBitAnd);
            case Op::Or: QEL_BINARY(TryOr);
            case Op::And: QEL_BINARY(TryAnd);
            case Op::Negate: QEL_UNARY(TryNegate);
            case Op::Decrement: QEL_UNARY(TryDecrement);
            case Op::Increment: QEL_UNARY(TryIncrement);
            case Op::IntCast: QEL_UNARY(TryIntCast);
            case Op::DoubleCast: QEL_UNARY(TryDoubleCast);
            case Op::BitNot: QEL_UNARY(TryBitNot);
            case Op::Not: QEL_UNARY(TryNot);
            case Op::Nothing: break;
            case Op::LitValue:
            case Op::Swap:
            case Op::External:
            case Op::ReadInt:
            case Op::ReadDouble:
            case Op::Write:
            case Op::OutOfCode: QEL_LEAVE();
#if defined(__GNUC__)
            // Every step is one of the above; the switch needs no range test.
            default: __builtin_unreachable();
#endif
        }
        ++r.next;
    }
leave:
    registers = r;
#undef QEL_LEAVE
#undef QEL_CHECKPOINT
#undef QEL_PUSHED
#undef QEL_UNARY
#undef QEL_BINARY
}

// The machine's p: the address of the step `at`.
inline int AddressOf(const Step* steps, const Step* at) {
    return at->op == Op::OutOfCode ? static_cast<int>(at->a) : static_cast<int>(at - steps);
}

// Ends the run for the host's run control, if `cause` says so.
bool Stopped(CInterpreter& m, const Registers& r, const Step* steps, StopCause cause,
             RunWatch& watch) {
    if (cause == StopCause::None) return false;
    watch.Stop(cause);
    Fail(m, AddressOf(steps, r.next), r.b, static_cast<int>(r.top - m.stack), StopMessage(cause));
    return true;
}

// A transfer in GeneralStep, where r.next already stands behind the step.
inline void GoTo(Registers& r, const Step* to) {
    r.travel += Position(r.next) - Position(to);
    r.next = to;
}

// Runs the step at r.next whatever it holds, with every report and call of
// the machine. false: the run is over.
bool GeneralStep(CInterpreter& m, Registers& r, const Step* steps, int length, RunWatch& watch) {
    VALUE* const s = m.stack;
    const int capacity = m.stackCapacity;
    const Step& step = *r.next++;
    VALUE*& top = r.top;
#define QEL_T() static_cast<int>(top - s)
#define QEL_FAIL_WITH(t, text)                                 \
    do {                                                       \
        Fail(m, AddressOf(steps, r.next), r.b, (t), (text));   \
        return false;                                          \
    } while (0)
#define QEL_FAIL(text) QEL_FAIL_WITH(QEL_T(), (text))
    // The step has taken the last cell: t is -1.
#define QEL_FAIL_EMPTIED() QEL_FAIL_WITH(-1, underflowMessage)
#define QEL_SYNC() (m.p = AddressOf(steps, r.next), m.b = r.b, m.t = QEL_T())
#define QEL_DATA_CELL(cell)                                             \
    const int64_t cell = DataCell(s, capacity, r.b, step.l, step.a);   \
    if (!IsCell(cell, capacity)) QEL_FAIL(CellError(cell))
#define QEL_ELEMENT_CELL(cell, indexCell)                                  \
    QEL_DATA_CELL(sizeCell);                                               \
    int index, size;                                                       \
    const int64_t cell = ElementCell(s, sizeCell, (indexCell), index, size); \
    if (cell < 0) QEL_FAIL(ArrayIndexMessage(index, size));                \
    if (!IsCell(cell, capacity)) QEL_FAIL(CellMessage(cell))
#define QEL_BINARY(operation)                 \
    if (top == s) QEL_FAIL(underflowMessage); \
    --top;                                    \
    operation(top[0], top[1]);                \
    return true

    switch (step.op) {
        case Op::LitInt: SetInt(*++top, step.number); return true;
        case Op::LitDouble: SetDouble(*++top, step.real); return true;
        case Op::LitValue: Assign(*++top, *step.literal); return true;
        case Op::Load:
        case Op::LoadParameter:
        case Op::LoadOuter: {
            QEL_DATA_CELL(cell);
            Assign(*++top, s[cell]);
            return true;
        }
        case Op::Store:
        case Op::StoreParameter:
        case Op::StoreOuter: {
            QEL_DATA_CELL(cell);
            Assign(s[cell], *top);
            if (top == s) QEL_FAIL_EMPTIED();
            --top;
            return true;
        }
        case Op::Call: {
            const int link = FollowLinks(s, capacity, r.b, step.l);
            if (link < 0) QEL_FAIL(linkMessage);
            SetInt(top[1], link);
            SetInt(top[2], r.b);
            SetInt(top[3], static_cast<int>(r.next - steps));
            r.b = QEL_T() + 1;
            SetFrame(r, s, capacity);
            GoTo(r, step.to);
            return true;
        }
        case Op::Enter: {
            const intptr_t count = step.a;
            const int t = QEL_T();
            if (count > 0 && count > capacity - stackReserve - t) {
                if (!Grow(m, AddressOf(steps, r.next), r.b, t, count)) return false;
                // Cannot fail below: the count is positive.
                SetFrame(r, m.stack, m.stackCapacity);
            }
            const int64_t newTop = static_cast<int64_t>(t) + count;
            if (newTop < 0) QEL_FAIL(underflowMessage);
            top = m.stack + newTop;
            return true;
        }
        case Op::Jump:
        case Op::JumpBack: GoTo(r, step.to); return true;
        case Op::JumpIfZero:
        case Op::JumpBackIfZero:
            if (IsZero(*top)) GoTo(r, step.to);
            if (top == s) {
                if (AddressOf(steps, r.next) > 0) QEL_FAIL_EMPTIED();
                // An address of 0 or below ends the run before the stack is
                // looked at.
                LeaveCode(m, AddressOf(steps, r.next), r.b, -1);
                return false;
            }
            --top;
            return true;
        case Op::LoadIndexed: {
            QEL_ELEMENT_CELL(cell, *top);
            Assign(*top, s[cell]);
            return true;
        }
        case Op::StoreIndexed: {
            if (top == s) QEL_FAIL(underflowMessage);
            QEL_ELEMENT_CELL(cell, top[-1]);
            Assign(s[cell], *top);
            if (top == s + 1) QEL_FAIL_EMPTIED();
            top -= 2;
            return true;
        }
        case Op::Swap: {
            if (top == s) QEL_FAIL(underflowMessage);
            VALUE held;
            held.MoveFrom(top[0]);
            top[0].MoveFrom(top[-1]);
            top[-1].MoveFrom(held);
            return true;
        }
        case Op::External:
            QEL_SYNC();
            if (!CallExternalRoutine(m, *step.ins)) return false;
            return !Stopped(m, r, steps, watch.CheckCancel(), watch);
        case Op::Return: {
            if (r.b < 1) QEL_FAIL(underflowMessage);
            if (static_cast<int64_t>(r.b) + 2 >= capacity)
                QEL_FAIL(CellMessage(static_cast<int64_t>(r.b) + 2));
            top = s + (r.b - 1);
            const int back = top[3].intValue;
            r.b = top[2].intValue;
            SetFrame(r, s, capacity);
            if (back <= 0 || back >= length) {
                LeaveCode(m, back, r.b, QEL_T());
                return false;
            }
            GoTo(r, steps + back);
            return true;
        }
        case Op::Plus: QEL_BINARY(Add);
        case Op::Minus: QEL_BINARY(Subtract);
        case Op::Times: QEL_BINARY(Multiply);
        case Op::Divide:
            if (top == s) QEL_FAIL(underflowMessage);
            --top;
            if (IsZero(top[1])) QEL_FAIL("Division durch Null");
            Divide(top[0], top[1]);
            return true;
        case Op::Equal: QEL_BINARY(Equal);
        case Op::NotEqual: QEL_BINARY(NotEqual);
        case Op::Less: QEL_BINARY(Less);
        case Op::GreaterEqual: QEL_BINARY(GreaterEqual);
        case Op::Greater: QEL_BINARY(Greater);
        case Op::LessEqual: QEL_BINARY(LessEqual);
        case Op::BitOr: QEL_BINARY(BitOr);
        case Op::BitAnd: QEL_BINARY(BitAnd);
        case Op::Or: QEL_BINARY(Or);
        case Op::And: QEL_BINARY(And);
        case Op::Negate: Negate(*top); return true;
        case Op::Decrement: Decrement(*top); return true;
        case Op::Increment: Increment(*top); return true;
        case Op::IntCast: IntCast(*top); return true;
        case Op::DoubleCast: DoubleCast(*top); return true;
        case Op::BitNot: BitNot(*top); return true;
        case Op::Not: Not(*top); return true;
        case Op::ReadInt:
            QEL_SYNC();
            SetInt(top[1], AskForNumber(*step.ins, true));
            ++top;
            return true;
        case Op::ReadDouble:
            QEL_SYNC();
            SetDouble(top[1], AskForNumber(*step.ins, false));
            ++top;
            return true;
        case Op::Write:
            QEL_SYNC();
            ShowNumber(*step.ins, *top);
            if (top == s) QEL_FAIL_EMPTIED();
            --top;
            return true;
        case Op::Nothing: return true;
        case Op::OutOfCode:
            r.next = &step;  // not an instruction: not a step taken
            LeaveCode(m, static_cast<int>(step.a), r.b, QEL_T());
            return false;
    }
    return true;
#undef QEL_T
#undef QEL_FAIL_WITH
#undef QEL_FAIL
#undef QEL_FAIL_EMPTIED
#undef QEL_SYNC
#undef QEL_DATA_CELL
#undef QEL_ELEMENT_CELL
#undef QEL_BINARY
}

// Whether a step has pushed into the reserve, so that the stack must grow
// before the next step.
inline bool InReserve(const CInterpreter& m, const Registers& r) {
    return r.top > m.stack + (m.stackCapacity - stackReserve);
}

void WriteBack(CInterpreter& m, const Registers& r, const Step* steps) {
    m.p = AddressOf(steps, r.next);
    m.b = r.b;
    m.t = static_cast<int>(r.top - m.stack);
}

void RunSteps(CInterpreter& m, Registers& r, const Step* steps, int length, RunWatch& watch) {
    for (;;) {
        RunFast(r, steps, length, m.stack, m.stackCapacity, CheckPosition(watch.NextCheck()));
        // Texts come in runs: while the top cell or the next literal is one,
        // the steps stay here rather than go back and forth.
        do {
            if (StepsTaken(r) >= watch.NextCheck() &&
                Stopped(m, r, steps, watch.Check(StepsTaken(r)), watch))
                return;
            if (!InReserve(m, r) && !GeneralStep(m, r, steps, length, watch)) return;
            if (InReserve(m, r)) {
                const int t = static_cast<int>(r.top - m.stack);
                if (!Grow(m, AddressOf(steps, r.next), r.b, t, 0)) return;
                r.top = m.stack + t;
                SetFrame(r, m.stack, m.stackCapacity);
            }
        } while (r.top->type == tagString || r.next->op == Op::LitValue);
    }
}

// An exception (memory ran out in a text operation, or a callback let one
// through) leaves the registers where the step stood, the cells as they were.
void Run(CInterpreter& m, RunWatch& watch) {
    const int length = UsedLength(m);
    const std::vector<Step> decoded = Decode(m.code, length);
    const Step* const steps = decoded.data();
    Registers r{};
    r.next = steps;
    r.top = m.stack;
    r.b = 1;
    r.travel = -Position(steps);
    SetFrame(r, m.stack, m.stackCapacity);
    try {
        RunSteps(m, r, steps, length, watch);
    } catch (...) {
        WriteBack(m, r, steps);
        watch.Finish(StepsTaken(r));
        throw;
    }
    watch.Finish(StepsTaken(r));
}

}  // namespace

namespace {

// The largest capacity that growth in steps from the first capacity reaches
// without passing the limit: the stack's real size limit.
int64_t LargestCapacity(int64_t limit) {
    if (limit < initialCapacity) return initialCapacity;
    return initialCapacity + (limit - initialCapacity) / stackGrowthStep * stackGrowthStep;
}

StackCells* ReserveStack(int64_t cellCount) {
    auto* reserved = new StackCells(static_cast<size_t>(cellCount));
    if (!reserved->Cells() || !reserved->GrowTo(initialCapacity)) {
        delete reserved;
        throw std::bad_alloc();
    }
    return reserved;
}

}  // namespace

CInterpreter::CInterpreter()
    : code(new Instruction[initialCapacity]), control(pRunControl), cells(nullptr) {
    try {
        cells = ReserveStack(LargestCapacity(stackLimit));
    } catch (const std::bad_alloc&) {
        delete[] code;
        throw;
    }
    stack = cells->Cells();
    FillNameTables();
}

CInterpreter::~CInterpreter() {
    delete[] code;
    delete cells;
}

void CInterpreter::Interpret() {
    t = 0;
    b = 1;
    p = 0;
    // Cell 3 too: it holds the main block's return address, 0, which ends
    // the run at its RET, also when an interpreter is run a second time.
    for (int i = 0; i <= 3; ++i) stack[i] = VALUE();
    RunWatch watch(control);
    Run(*this, watch);
}

int CInterpreter::base(int l) { return FollowLinks(stack, stackCapacity, b, l); }

// The capacity grows in fixed steps, as the limit is defined by them, but the
// cells do not move: the new ones are made behind the old in the reserved
// space. Only a limit raised past the reservation moves all cells once, also
// those above t: CALL has just written the links of the new frame there.
int CInterpreter::TesteStack(int n) {
    const int64_t needed = static_cast<int64_t>(t) + n + stackReserve;
    if (needed <= stackCapacity) return 1;
    const int64_t steps = (needed - stackCapacity + stackGrowthStep - 1) / stackGrowthStep;
    const int64_t grown = stackCapacity + steps * stackGrowthStep;
    if (grown > stackLimit) {
        err("Stacküberlauf.");
        return 0;
    }
    qelkern::ChargeMemory(static_cast<size_t>(grown - stackCapacity) * sizeof(VALUE));
    if (!cells->GrowTo(static_cast<size_t>(grown))) {
        StackCells* moved = nullptr;
        try {
            moved = ReserveStack(std::max(grown, LargestCapacity(stackLimit)));
        } catch (const std::bad_alloc&) {
            err("Stacküberlauf.");
            return 0;
        }
        moved->GrowTo(static_cast<size_t>(grown));
        for (int i = 0; i < stackCapacity; ++i) moved->Cells()[i].MoveFrom(stack[i]);
        delete cells;
        cells = moved;
        stack = cells->Cells();
    }
    stackCapacity = static_cast<int>(grown);
    return 1;
}

void CInterpreter::err(CString text) {
    CString shown;
    shown.Format("%s", static_cast<const char*>(text));
    GetUserInterface().ShowMessage(shown, CString(), CUserInterface::IconError);
    errorText = text;
    failed = 1;
}
