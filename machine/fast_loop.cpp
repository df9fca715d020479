// The fast loop of the machine: threaded dispatch over the decoded steps,
// with the fused forms of the frequent sequences.
#include "machine/cell_ops.h"
#include "machine/host_calls.h"
#include "machine/machine_loops.h"

namespace qelkern {

namespace {

// Kept out of line, so that the numbers' path stays free of a call.
[[gnu::noinline]] void AssignText(VALUE& target, const VALUE& source) { Assign(target, source); }
[[gnu::noinline]] void SetIntOver(VALUE& cell, int number) { SetInt(cell, number); }
[[gnu::noinline]] void SetDoubleOver(VALUE& cell, double number) { SetDouble(cell, number); }

using General = void (*)(VALUE&, const VALUE&);

// A binary operation on any pair of tags, as the general step carries it out.
template <General operation>
[[gnu::noinline]] void Generally(VALUE& left, const VALUE& right) {
    operation(left, right);
}

// Division alone among the binary operations can report an error.
template <General operation>
constexpr bool reportsNothing = true;
template <>
constexpr bool reportsNothing<&Divide> = false;

// The instructions of a fused step one by one, for the tags that the
// numbers' path does not take, above all texts. The registers in memory move
// on as GeneralStep moves them, so that an exception in the middle of the
// step leaves them where the plain steps would. The caller has made sure
// that no step among them reports anything or needs the stack to grow.
//
// PUSH first; PUSH second; OPR.
template <General operation>
[[gnu::noinline]] void PushTwoAndOperate(Registers& r, const VALUE& first, const VALUE& second) {
    VALUE* const c = r.top + 1;
    ++r.next;
    r.top = c;
    Assign(*c, first);
    ++r.next;
    r.top = c + 1;
    Assign(c[1], second);
    ++r.next;
    r.top = c;
    operation(*c, c[1]);
}

// PUSH operand; OPR, with the left operand below.
template <General operation>
[[gnu::noinline]] void PushAndOperate(Registers& r, const VALUE& operand) {
    VALUE* const c = r.top + 1;
    ++r.next;
    r.top = c;
    Assign(*c, operand);
    ++r.next;
    r.top = c - 1;
    operation(c[-1], *c);
}

// LOD a; STO store.
[[gnu::noinline]] void PushAndStore(Registers& r, const VALUE& source, VALUE& target) {
    VALUE* const c = r.top + 1;
    ++r.next;
    r.top = c;
    Assign(*c, source);
    ++r.next;
    Assign(target, *c);
    r.top = c - 1;
}

}  // namespace

// Labels as values (GCC and Clang) make the threaded dispatch.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
template <bool counted>
FastEnd RunFast(CInterpreter& m, RunWatch& watch, Registers& registers, const Step* steps,
                int length, VALUE* s, int capacity, intptr_t checkAt, std::vector<Step>* decoded) {
    Registers r = registers;
    VALUE* const limit = s + (capacity - stackReserve);
    // Cell b + a of the current frame, a given in bytes, or null outside
    // the stack: one unsigned comparison for both ends.
    const uintptr_t stackBytes = static_cast<uintptr_t>(capacity) * sizeof(VALUE);
    auto LocalAt = [&](intptr_t bytes) -> VALUE* {
        const uintptr_t at = static_cast<uintptr_t>(bytes) + static_cast<uintptr_t>(r.frameBytes);
        return at < stackBytes ? reinterpret_cast<VALUE*>(reinterpret_cast<char*>(s) + at) : nullptr;
    };
    // The element of the array whose size cell is `sizeCell` for an integer
    // index inside the array and the stack, else null.
    auto LocalElement = [&](VALUE* sizeCell, const VALUE& index) -> VALUE* {
        if (!sizeCell || index.type != tagInteger || sizeCell->type != tagInteger) return nullptr;
        const int i = index.intValue;
        if (i < 0 || i >= sizeCell->intValue) return nullptr;
        const uintptr_t at = reinterpret_cast<uintptr_t>(sizeCell + 1) +
                             static_cast<uintptr_t>(i) * sizeof(VALUE);
        return at < reinterpret_cast<uintptr_t>(s) + stackBytes ? reinterpret_cast<VALUE*>(at) : nullptr;
    };
#define QEL_LEAVE() goto leave
    // An operation out of line (a text, or tags the numbers' path does not
    // know): the registers go to memory first as GeneralStep has them in the
    // middle of the same step, for an exception, and come back after it, so
    // that none of them has to survive the call in a machine register.
#define QEL_OUT_OF_LINE(pushed, call)      \
    do {                                   \
        registers = r;                     \
        ++registers.next;                  \
        registers.top += (pushed);         \
        call;                              \
        r.next = registers.next - 1;       \
        r.top = registers.top - (pushed);  \
    } while (0)
#define QEL_ASSIGN(target, source, pushed)                                       \
    do {                                                                         \
        if (!TryAssign((target), (source)))                         \
            QEL_OUT_OF_LINE((pushed), AssignText((target), (source)));           \
    } while (0)
    // The same for a fused step: it goes on with the plain step at which
    // the call leaves r.next.
#define QEL_FUSED_OUT_OF_LINE(call) \
    do {                            \
        registers = r;              \
        call;                       \
        r.next = registers.next;    \
        r.top = registers.top;      \
        QEL_DISPATCH();             \
    } while (0)
    // A fused step that cannot go on: the instructions before address
    // `done` of it are carried out, the plain step there takes over.
#define QEL_DECLINE()                                              \
    do {                                                           \
        step = r.next;                                             \
        goto* handlers[static_cast<size_t>(step->plain)];          \
    } while (0)
#define QEL_LEAVE_AT(done, newTop) \
    do {                           \
        r.top = (newTop);          \
        r.next += (done);          \
        QEL_DECLINE();             \
    } while (0)
    // LOD a; LIT or LOD; OPR: the result in c, the second operand above it.
    // Both pushes must stay out of the reserve, or the stack has to grow in
    // between, as the plain steps do.
    // A first operand that the numbers' path does not take: the three
    // instructions out of line.
    // Two operands of one number tag take the shortest way (TryPushPair).
#define QEL_PUSH_TWO(pair, operation, general, first, second, present)                         \
    VALUE* const c = r.top + 1;                                                                \
    if (!(present) || c + 1 > limit) QEL_DECLINE();                                            \
    if (!TryPushPair<pair>(c, *(first), *(second))) {                                          \
        if (!TryAssign(*c, *(first))) {                                                        \
            if constexpr (!reportsNothing<general>) QEL_DECLINE();                             \
            QEL_FUSED_OUT_OF_LINE(PushTwoAndOperate<general>(registers, *(first), *(second))); \
        }                                                                                      \
        if (!TryAssign(c[1], *(second))) QEL_LEAVE_AT(1, c);                                   \
        if (!operation(*c, c[1])) QEL_LEAVE_AT(2, c + 1);                                      \
    }
#define QEL_LOAD_LIT(pair, operation, general)    \
    VALUE* const variable = LocalAt(step->first); \
    QEL_PUSH_TWO(pair, operation, general, variable, step->fusedLiteral, variable)
#define QEL_LOAD_LOAD(pair, operation, general)   \
    VALUE* const variable = LocalAt(step->first); \
    VALUE* const second = LocalAt(step->second);  \
    QEL_PUSH_TWO(pair, operation, general, variable, second, variable && second)
    // PUSH; OPR.
#define QEL_PUSH_ONE(pair, operation, general, operand, present)                         \
    VALUE* const c = r.top + 1;                                                          \
    if (!(present) || c > limit) QEL_DECLINE();                                          \
    if (!TryPushOne<pair>(c, *(operand))) {                                              \
        if (!TryAssign(*c, *(operand))) {                                                \
            if constexpr (!reportsNothing<general>) QEL_DECLINE();                       \
            QEL_FUSED_OUT_OF_LINE(PushAndOperate<general>(registers, *(operand)));       \
        }                                                                                \
        if (!operation(*r.top, *c)) QEL_LEAVE_AT(1, c);                                  \
    }
#define QEL_JUMP_IF_ZERO(condition)            \
    if ((condition)->intValue == 0) {          \
        QEL_TAKE_JUMP(step->target);      \
        QEL_DISPATCH();                              \
    }                                          \
    r.next += 4;                               \
    QEL_DISPATCH()
#define QEL_CHECKPOINT()                                                    \
    if constexpr (counted)                                                  \
        if (r.travel + Position(r.next) >= checkAt) QEL_LEAVE()
    // Without a run control nobody reads the count, and the jumps skip it.
#define QEL_TAKE_JUMP(to)                               \
    do {                                                \
        if constexpr (counted) r.travel += step->delta; \
        r.next = (to);                                  \
    } while (0)
    // Behind a push into the reserve: the stack must grow before the next step.
#define QEL_PUSHED()       \
    if (r.top > limit) {   \
        ++r.next;          \
        goto leave;        \
    }
#define QEL_UNARY(operation) \
    if (!operation(*r.top)) QEL_LEAVE(); \
    QEL_NEXT()
#define QEL_BINARY(operation, general)                                      \
    if (r.top == s) QEL_LEAVE();                                            \
    if (!operation(r.top[-1], r.top[0]))                       \
        QEL_OUT_OF_LINE(-1, Generally<general>(r.top[-1], r.top[0]));       \
    --r.top;                                                                \
    QEL_NEXT()

    // Threaded dispatch: every step ends in a jump of its own to the next
    // step's handler, which the processor predicts far better than one
    // shared jump. QEL_NEXT goes on with the step behind, QEL_DISPATCH with
    // the step r.next stands on.
    static const void* const handlers[] = {
#define QEL_HANDLER(name) &&op_##name,
        QEL_PLAIN_STEPS(QEL_HANDLER)
#undef QEL_HANDLER
#define QEL_HANDLERS(name, operation, general) \
        &&op_LoadLit##name, &&op_LoadLoad##name, &&op_Lit##name, &&op_Load##name,       \
        &&op_LitLoad##name,                                                             \
        &&op_LoadLoad##name##Store, &&op_##name##Store, &&op_LoadLit##name##Store,
        QEL_BINARY_OPERATIONS(QEL_HANDLERS)
#undef QEL_HANDLERS
#define QEL_HANDLERS(name, operation, general)                                           \
        &&op_LoadLit##name##Jump, &&op_LoadLoad##name##Jump, &&op_##name##Jump, \
        &&op_Lit##name##Jump,
        QEL_RELATIONS(QEL_HANDLERS)
#undef QEL_HANDLERS
        &&op_IncrementVariable, &&op_DecrementVariable, &&op_LitStore, &&op_LoadElement,
        &&op_LoadLitStoreElement, &&op_LoadPair, &&op_LoadLitPair, &&op_LoadStore,
#define QEL_HANDLERS(first, then) &&op_##first##then##Store,
        QEL_ARITHMETIC_PAIRS(QEL_HANDLERS)
#undef QEL_HANDLERS
        &&op_LoadBoundLessEqualJump, &&op_LoadBoundGreaterEqualJump,
        &&op_CountUp, &&op_CountDown, &&op_CountUpToBound, &&op_CountDownToBound,
    };
    static_assert(sizeof handlers / sizeof handlers[0] == static_cast<size_t>(Op::Count));
    if (decoded) {
        for (Step& each : *decoded) each.handler = handlers[static_cast<size_t>(each.op)];
        return FastEnd::Left;
    }
    const Step* step;
    // A watch thread may point a handler elsewhere (see Interrupts): read
    // atomically, which is the same plain load.
#define QEL_DISPATCH()                                              \
    do {                                                            \
        step = r.next;                                              \
        goto* __atomic_load_n(&step->handler, __ATOMIC_RELAXED);    \
    } while (0)
#define QEL_NEXT() \
    do {           \
        ++r.next;  \
        QEL_DISPATCH(); \
    } while (0)
    QEL_DISPATCH();
    {
        {
            op_LitInt:
                if (!TrySetInt(r.top[1], step->number))
                    QEL_OUT_OF_LINE(1, SetIntOver(r.top[1], step->number));
                ++r.top;
                QEL_PUSHED();
                QEL_NEXT();
            op_LitDouble:
                if (!TrySetDouble(r.top[1], step->real))
                    QEL_OUT_OF_LINE(1, SetDoubleOver(r.top[1], step->real));
                ++r.top;
                QEL_PUSHED();
                QEL_NEXT();
            op_Load:
                if (!IsVariable(r, step->a)) QEL_LEAVE();
                QEL_ASSIGN(r.top[1], r.frame[step->a], 1);
                ++r.top;
                QEL_PUSHED();
                QEL_NEXT();
            op_LoadParameter:
                if (!IsParameter(r, step->a)) QEL_LEAVE();
                QEL_ASSIGN(r.top[1], r.frame[step->a], 1);
                ++r.top;
                QEL_PUSHED();
                QEL_NEXT();
            op_LoadOuter: {
                const int64_t cell = DataCell(s, capacity, r.b, step->l, step->a);
                if (!IsCell(cell, capacity)) QEL_LEAVE();
                QEL_ASSIGN(r.top[1], s[cell], 1);
                ++r.top;
                QEL_PUSHED();
                QEL_NEXT();
            }
            op_Store:
                if (!IsVariable(r, step->a) || r.top == s) QEL_LEAVE();
                QEL_ASSIGN(r.frame[step->a], *r.top, 0);
                --r.top;
                QEL_NEXT();
            op_StoreParameter:
                if (!IsParameter(r, step->a) || r.top == s) QEL_LEAVE();
                QEL_ASSIGN(r.frame[step->a], *r.top, 0);
                --r.top;
                QEL_NEXT();
            op_StoreOuter: {
                const int64_t cell = DataCell(s, capacity, r.b, step->l, step->a);
                if (!IsCell(cell, capacity) || r.top == s) QEL_LEAVE();
                QEL_ASSIGN(s[cell], *r.top, 0);
                --r.top;
                QEL_NEXT();
            }
            op_Call: {
                QEL_CHECKPOINT();
                const int link = FollowLinks(s, capacity, r.b, step->l);
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
                r.frameBytes = reinterpret_cast<char*>(cells) - reinterpret_cast<char*>(s);
                QEL_TAKE_JUMP(step->to);
                QEL_DISPATCH();
            }
            op_Enter: {
                // Leaves a growth or an underflow to GeneralStep.
                const intptr_t bytes = step->second;
                const char* const top = reinterpret_cast<const char*>(r.top);
                if (bytes > reinterpret_cast<const char*>(limit) - top ||
                    bytes < reinterpret_cast<const char*>(s) - top)
                    QEL_LEAVE();
                r.top = reinterpret_cast<VALUE*>(reinterpret_cast<uintptr_t>(r.top) + bytes);
                QEL_NEXT();
            }
            op_JumpBack: QEL_CHECKPOINT();
            op_Jump: QEL_TAKE_JUMP(step->to); QEL_DISPATCH();
            op_JumpBackIfZero: QEL_CHECKPOINT();
            op_JumpIfZero:
                if (r.top == s || !IsNumber(*r.top)) QEL_LEAVE();
                if (NumberIsZero(*r.top)) {
                    --r.top;
                    QEL_TAKE_JUMP(step->to);
                    QEL_DISPATCH();
                }
                --r.top;
                QEL_NEXT();
            op_LoadIndexed: {
                const VALUE* element = ElementOf(s, capacity, r.b, step->l, step->a, *r.top);
                if (!element) QEL_LEAVE();
                QEL_ASSIGN(*r.top, *element, 0);
                QEL_NEXT();
            }
            op_StoreIndexed: {
                if (r.top - s < 2) QEL_LEAVE();
                VALUE* element = ElementOf(s, capacity, r.b, step->l, step->a, r.top[-1]);
                if (!element) QEL_LEAVE();
                QEL_ASSIGN(*element, *r.top, 0);
                r.top -= 2;
                QEL_NEXT();
            }
            op_Return: {
                const int b = r.b;
                if (b < 1 || static_cast<int64_t>(b) + 2 >= capacity) QEL_LEAVE();
                VALUE* const top = s + (b - 1);
                const int back = top[3].intValue;
                if (back <= 0 || back >= length) QEL_LEAVE();
                r.top = top;
                r.b = top[2].intValue;
                SetFrame(r, s, capacity);
                if constexpr (counted)
                    Transfer(r, steps + back);
                else
                    r.next = steps + back;
                if (r.top > limit) goto leave;
                QEL_DISPATCH();
            }
            op_Plus: QEL_BINARY(TryAdd, Add);
            op_Minus: QEL_BINARY(TrySubtract, Subtract);
            op_Times: QEL_BINARY(TryMultiply, Multiply);
            op_Divide:
                if (r.top == s || !IsNumber(*r.top) || NumberIsZero(*r.top) ||
                    !TryDivide(r.top[-1], *r.top))
                    QEL_LEAVE();
                --r.top;
                QEL_NEXT();
            op_Equal: QEL_BINARY(TryEqual, Equal);
            op_NotEqual: QEL_BINARY(TryNotEqual, NotEqual);
            op_Less: QEL_BINARY(TryLess, Less);
            op_GreaterEqual: QEL_BINARY(TryGreaterEqual, GreaterEqual);
            op_Greater: QEL_BINARY(TryGreater, Greater);
            op_LessEqual: QEL_BINARY(TryLessEqual, LessEqual);
            op_BitOr: QEL_BINARY(TryBitOr, BitOr);
            op_BitAnd: QEL_BINARY(TryBitAnd, BitAnd);
            op_Or: QEL_BINARY(TryOr, Or);
            op_And: QEL_BINARY(TryAnd, And);
            op_Negate: QEL_UNARY(TryNegate);
            op_Decrement: QEL_UNARY(TryDecrement);
            op_Increment: QEL_UNARY(TryIncrement);
            op_IntCast: QEL_UNARY(TryIntCast);
            op_DoubleCast: QEL_UNARY(TryDoubleCast);
            op_BitNot: QEL_UNARY(TryBitNot);
            op_Not: QEL_UNARY(TryNot);
            op_Nothing: QEL_NEXT();
#define QEL_FUSED_BINARY(name, operation, general)                                        \
            op_LoadLit##name: {                                            \
                QEL_LOAD_LIT(name##Pair, operation, general);                                         \
                r.top = c;                                                       \
                r.next += 3;                                                     \
                QEL_DISPATCH();                                                        \
            }                                                                    \
            op_LoadLoad##name: {                                           \
                QEL_LOAD_LOAD(name##Pair, operation, general);                                        \
                r.top = c;                                                       \
                r.next += 3;                                                     \
                QEL_DISPATCH();                                                        \
            }                                                                    \
            op_LoadLit##name##Store: {                                     \
                QEL_LOAD_LIT(name##Pair, operation, general);                                         \
                VALUE* const target = LocalAt(step->store);                         \
                if (!target || !TryAssign(*target, *c)) QEL_LEAVE_AT(3, c);      \
                r.next += 4;                                                     \
                QEL_DISPATCH();                                                        \
            }                                                                    \
            op_Load##name: {                                                     \
                VALUE* const variable = LocalAt(step->first);                    \
                QEL_PUSH_ONE(name##Pair, operation, general, variable, variable);                      \
                r.next += 2;                                                     \
                QEL_DISPATCH();                                                  \
            }                                                                    \
            op_LitLoad##name: {                                                  \
                VALUE* const variable = LocalAt(step->store);                    \
                QEL_PUSH_TWO(name##Pair, operation, general, step->fusedLiteral, variable, variable); \
                r.top = c;                                                       \
                r.next += 3;                                                     \
                QEL_DISPATCH();                                                  \
            }                                                                    \
            op_LoadLoad##name##Store: {                                          \
                QEL_LOAD_LOAD(name##Pair, operation, general);                                        \
                VALUE* const target = LocalAt(step->store);                        \
                if (!target || !TryAssign(*target, *c)) QEL_LEAVE_AT(3, c);      \
                r.next += 4;                                                     \
                QEL_DISPATCH();                                                  \
            }                                                                    \
            op_Lit##name: {                                                \
                QEL_PUSH_ONE(name##Pair, operation, general, step->fusedLiteral, true);            \
                r.next += 2;                                                     \
                QEL_DISPATCH();                                                        \
            }                                                                    \
            op_##name##Store: {                                              \
                if (r.top == s || !operation(r.top[-1], *r.top)) QEL_DECLINE();    \
                VALUE* const result = r.top - 1;                                 \
                VALUE* const target = LocalAt(step->store);                         \
                if (!target || result == s || !TryAssign(*target, *result))      \
                    QEL_LEAVE_AT(1, result);                                     \
                r.top = result - 1;                                              \
                r.next += 2;                                                     \
                QEL_DISPATCH();                                                        \
            }
            QEL_BINARY_OPERATIONS(QEL_FUSED_BINARY)
#undef QEL_FUSED_BINARY
            // The relation leaves an integer, which JPC takes without a test.
#define QEL_FUSED_RELATION(name, operation, general)                                      \
            op_LoadLit##name##Jump: {                                      \
                QEL_LOAD_LIT(name##Pair, operation, general);                                         \
                QEL_JUMP_IF_ZERO(c);                                             \
            }                                                                    \
            op_LoadLoad##name##Jump: {                                     \
                QEL_LOAD_LOAD(name##Pair, operation, general);                                        \
                QEL_JUMP_IF_ZERO(c);                                             \
            } \
            op_##name##Jump: {                                                   \
                if (r.top == s || !operation(r.top[-1], *r.top)) QEL_DECLINE();    \
                VALUE* const result = r.top - 1;                                 \
                if (result == s) QEL_LEAVE_AT(1, result);                        \
                r.top = result - 1;                                              \
                if (result->intValue == 0) {                                     \
                    QEL_TAKE_JUMP(step->target);                            \
                    QEL_DISPATCH();                                              \
                }                                                                \
                r.next += 2;                                                     \
                QEL_DISPATCH();                                                  \
            }                                                                    \
            op_Lit##name##Jump: {                                                \
                QEL_PUSH_ONE(name##Pair, operation, general, step->fusedLiteral, true);            \
                VALUE* const condition = r.top;                                  \
                if (condition == s) QEL_LEAVE_AT(2, condition);                  \
                r.top = condition - 1;                                           \
                if (condition->intValue == 0) {                                  \
                    QEL_TAKE_JUMP(step->target);                            \
                    QEL_DISPATCH();                                              \
                }                                                                \
                r.next += 3;                                                     \
                QEL_DISPATCH();                                                  \
            }
            QEL_RELATIONS(QEL_FUSED_RELATION)
#undef QEL_FUSED_RELATION
            op_IncrementVariable:
            op_DecrementVariable: {
                VALUE* const variable = LocalAt(step->first);
                VALUE* const c = r.top + 1;
                if (!variable || c > limit || !TryAssign(*c, *variable)) QEL_DECLINE();
                if (!TryStep(*c, step->op == Op::IncrementVariable ? 1 : -1)) QEL_LEAVE_AT(1, c);
                if (!TryAssign(*variable, *c)) QEL_LEAVE_AT(2, c);
                r.next += 3;
                QEL_DISPATCH();
            }
#define QEL_FUSED_ARITHMETIC_PAIR(first, then)                                                \
            op_##first##then##Store: {                                                        \
                VALUE* const target = LocalAt(step->store);                                   \
                if (!target || r.top - s < 3 ||                                               \
                    !TryTwoAndStore<first##Pair, then##Pair>(r.top, *target))                 \
                    QEL_DECLINE();                                                            \
                r.top -= 3;                                                                   \
                r.next += 3;                                                                  \
                QEL_DISPATCH();                                                               \
            }
            QEL_ARITHMETIC_PAIRS(QEL_FUSED_ARITHMETIC_PAIR)
#undef QEL_FUSED_ARITHMETIC_PAIR
    // The head of a counting loop, standing at `step`, on `counter` (a value,
    // not a cell) pushed into c: the bound (folded: two literals, both pushed) into the cells
    // above as the plain steps leave them, the test into c, then into the
    // body or out.
#define QEL_COUNTING_HEAD(folded, up, counter)                                 \
    {                                                                          \
        int bound;                                                             \
        if constexpr (folded) {                                                \
            bound = static_cast<int>(step->second);                            \
            c[2].type = tagInteger;                                            \
            c[2].intValue = step[2].number;                                    \
        } else {                                                               \
            bound = step->fusedLiteral->intValue;                              \
        }                                                                      \
        c[1].type = tagInteger;                                                \
        c[1].intValue = bound;                                                 \
        const bool inside = (up) ? (counter) <= bound : (counter) >= bound;    \
        c->type = tagInteger;                                                  \
        c->intValue = inside ? 1 : 0;                                          \
        if (!inside) {                                                         \
            QEL_TAKE_JUMP(step->target);                                       \
            QEL_DISPATCH();                                                    \
        }                                                                      \
        r.next += (folded) ? 6 : 4;                                            \
        QEL_DISPATCH();                                                        \
    }
            // The counter against a bound of two literals, the three cells
            // pushed left as the plain steps leave them.
            op_LoadBoundLessEqualJump:
            op_LoadBoundGreaterEqualJump: {
                VALUE* const variable = LocalAt(step->first);
                VALUE* const c = r.top + 1;
                if (!variable || c + 2 > limit || variable->type != tagInteger ||
                    c->type == tagString || c[1].type == tagString || c[2].type == tagString)
                    QEL_DECLINE();
                // Read before the cells above are written: it may be one of them.
                const int counter = variable->intValue;
                QEL_COUNTING_HEAD(true, step->op == Op::LoadBoundLessEqualJump, counter);
            }
#define QEL_COUNT(folded, up)                                                            \
    VALUE* const variable = LocalAt(step->first);                                        \
    VALUE* const c = r.top + 1;                                                          \
    if (!variable || c + 1 + (folded) > limit || variable->type != tagInteger ||         \
        c->type == tagString || c[1].type == tagString ||                                \
        ((folded) && c[2].type == tagString))                                            \
        QEL_DECLINE();                                                                   \
    const int counter = WrapAdd(variable->intValue, (up) ? 1 : -1);                      \
    c->type = tagInteger;                                                                \
    c->intValue = counter;                                                               \
    variable->intValue = counter;                                                        \
    r.next += 3;                                                                         \
    step = r.next; /* the JMP */                                                         \
    QEL_CHECKPOINT();                                                                    \
    QEL_TAKE_JUMP(step->to);                                                             \
    step = r.next; /* the head */                                                        \
    QEL_COUNTING_HEAD(folded, up, counter)
            // The counter of a loop one up (down), its test against the
            // bound at the head of the loop, and on into the body or out.
            op_CountUp: { QEL_COUNT(false, true); }
            op_CountDown: { QEL_COUNT(false, false); }
            op_CountUpToBound: { QEL_COUNT(true, true); }
            op_CountDownToBound: { QEL_COUNT(true, false); }
#undef QEL_COUNT
#undef QEL_COUNTING_HEAD
            op_LitStore: {
                VALUE* const c = r.top + 1;
                if (c > limit || !TryAssign(*c, *step->fusedLiteral)) QEL_DECLINE();
                VALUE* const target = LocalAt(step->store);
                if (!target || !TryAssign(*target, *c)) QEL_LEAVE_AT(1, c);
                r.next += 2;
                QEL_DISPATCH();
            }
            op_LoadElement: {
                VALUE* const variable = LocalAt(step->first);
                VALUE* const c = r.top + 1;
                if (!variable || c > limit || !TryAssign(*c, *variable)) QEL_DECLINE();
                const VALUE* const element = LocalElement(LocalAt(step->store), *c);
                if (!element || !TryAssign(*c, *element)) QEL_LEAVE_AT(1, c);
                r.top = c;
                r.next += 2;
                QEL_DISPATCH();
            }
            op_LoadLitStoreElement: {
                VALUE* const variable = LocalAt(step->first);
                VALUE* const c = r.top + 1;
                if (!variable || c + 1 > limit || !TryAssign(*c, *variable)) QEL_DECLINE();
                if (!TryAssign(c[1], *step->fusedLiteral)) QEL_LEAVE_AT(1, c);
                VALUE* const element = LocalElement(LocalAt(step->store), *c);
                if (!element || !TryAssign(*element, c[1])) QEL_LEAVE_AT(2, c + 1);
                r.next += 3;
                QEL_DISPATCH();
            }
            op_LoadPair: {
                VALUE* const variable = LocalAt(step->first);
                VALUE* const second = LocalAt(step->second);
                VALUE* const c = r.top + 1;
                if (!variable || c + 1 > limit || !TryAssign(*c, *variable)) QEL_DECLINE();
                if (!second || !TryAssign(c[1], *second)) QEL_LEAVE_AT(1, c);
                r.top = c + 1;
                r.next += 2;
                QEL_DISPATCH();
            }
            op_LoadLitPair: {
                VALUE* const variable = LocalAt(step->first);
                VALUE* const c = r.top + 1;
                if (!variable || c + 1 > limit || !TryAssign(*c, *variable)) QEL_DECLINE();
                if (!TryAssign(c[1], *step->fusedLiteral)) QEL_LEAVE_AT(1, c);
                r.top = c + 1;
                r.next += 2;
                QEL_DISPATCH();
            }
            op_LoadStore: {
                VALUE* const variable = LocalAt(step->first);
                VALUE* const target = LocalAt(step->store);
                VALUE* const c = r.top + 1;
                if (!variable || !target || c > limit) QEL_DECLINE();
                if (!TryAssign(*c, *variable))
                    QEL_FUSED_OUT_OF_LINE(PushAndStore(registers, *variable, *target));
                if (!TryAssign(*target, *c)) QEL_LEAVE_AT(1, c);
                r.next += 2;
                QEL_DISPATCH();
            }
            op_External: {
                // The callback sees the machine as it stands, and so does the
                // handler of an exception it lets through.
                if (!step->ins->a) QEL_LEAVE();
                ++r.next;
                registers = r;
                m.p = static_cast<int>(r.next - steps);
                m.b = r.b;
                m.t = static_cast<int>(r.top - s);
                if (!CallExternalRoutine(m, *step->ins)) return FastEnd::RunOver;
                if (watch.CheckCancel() != StopCause::None) {
                    registers = r;
                    return FastEnd::Cancelled;
                }
                QEL_DISPATCH();
            }
            op_LitValue:
                QEL_OUT_OF_LINE(1, AssignText(r.top[1], *step->literal));
                ++r.top;
                QEL_PUSHED();
                QEL_NEXT();
            op_Swap:
            op_ReadInt:
            op_ReadDouble:
            op_Write:
            op_OutOfCode: QEL_LEAVE();
        }
    }
leave:
    registers = r;
    return FastEnd::Left;
#undef QEL_DISPATCH
#undef QEL_NEXT
#undef QEL_LEAVE
#undef QEL_LEAVE_AT
#undef QEL_OUT_OF_LINE
#undef QEL_ASSIGN
#undef QEL_DECLINE
#undef QEL_LOAD_LIT
#undef QEL_LOAD_LOAD
#undef QEL_JUMP_IF_ZERO
#undef QEL_CHECKPOINT
#undef QEL_TAKE_JUMP
#undef QEL_PUSHED
#undef QEL_UNARY
#undef QEL_BINARY
}
#pragma GCC diagnostic pop

template FastEnd RunFast<true>(CInterpreter&, RunWatch&, Registers&, const Step*, int, VALUE*, int,
                               intptr_t, std::vector<Step>*);
template FastEnd RunFast<false>(CInterpreter&, RunWatch&, Registers&, const Step*, int, VALUE*,
                                int, intptr_t, std::vector<Step>*);

}  // namespace qelkern
