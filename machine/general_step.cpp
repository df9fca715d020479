// The general step of the machine: every instruction with all its tests,
// reports and calls, for what the fast loop leaves to it.
#include "machine/cell_ops.h"
#include "machine/host_calls.h"
#include "machine/machine_loops.h"

namespace qelkern {

namespace {

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

// A transfer in GeneralStep, where r.next already stands behind the step.
inline void GoTo(Registers& r, const Step* to) {
    r.travel += Position(r.next) - Position(to);
    r.next = to;
}

}  // namespace

// Makes room for n cells above t; false: the run has failed.
bool Grow(CInterpreter& m, int p, int b, int t, int64_t n) {
    m.p = p;
    m.b = b;
    m.t = t;
    return m.TesteStack(n > m.stackLimit ? m.stackLimit : static_cast<int>(n)) != 0;
}

// Ends the run for the host's run control, if `cause` says so.
bool Stopped(CInterpreter& m, const Registers& r, const Step* steps, StopCause cause,
             RunWatch& watch) {
    if (cause == StopCause::None) return false;
    watch.Stop(cause);
    Fail(m, AddressOf(steps, r.next), r.b, static_cast<int>(r.top - m.stack), StopMessage(cause));
    return true;
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

    switch (step.plain) {
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
        default: break;  // fused steps: never plain
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

}  // namespace qelkern
