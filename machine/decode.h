// The form in which the dispatch loop runs the code: each instruction is
// decoded once per run into a compact step.
#pragma once

#include <cstdint>
#include <vector>

#include "qelkern/machine.h"

namespace qelkern {

// Jump targets beyond int still end the run or fail the address test.
inline int ToAddress(intptr_t a) {
    if (a < INT32_MIN) return INT32_MIN;
    if (a > INT32_MAX) return INT32_MAX;
    return static_cast<int>(a);
}

// The binary OPR sub-operations, with the fast form that computes them in
// place and the form for any tags (machine/cell_ops.h), and the relations
// among them.
#define QEL_RELATIONS(X)                           \
    X(Equal, TryEqual, Equal)                      \
    X(NotEqual, TryNotEqual, NotEqual)             \
    X(Less, TryLess, Less)                         \
    X(GreaterEqual, TryGreaterEqual, GreaterEqual) \
    X(Greater, TryGreater, Greater)                \
    X(LessEqual, TryLessEqual, LessEqual)
#define QEL_BINARY_OPERATIONS(X)        \
    X(Plus, TryAdd, Add)                \
    X(Minus, TrySubtract, Subtract)     \
    X(Times, TryMultiply, Multiply)     \
    X(Divide, TryCheckedDivide, Divide) \
    QEL_RELATIONS(X)                    \
    X(BitOr, TryBitOr, BitOr)           \
    X(BitAnd, TryBitAnd, BitAnd)        \
    X(Or, TryOr, Or)                    \
    X(And, TryAnd, And)

// The arithmetic among them, by twos.
#define QEL_ARITHMETIC_AFTER(X, first) X(first, Plus) X(first, Minus) X(first, Times) X(first, Divide)
#define QEL_ARITHMETIC_PAIRS(X)                                                       \
    QEL_ARITHMETIC_AFTER(X, Plus) QEL_ARITHMETIC_AFTER(X, Minus) QEL_ARITHMETIC_AFTER(X, Times) \
    QEL_ARITHMETIC_AFTER(X, Divide)

// What the dispatch loop runs: each instruction decoded once per run into a
// step, with every OPR sub-operation and the common operand forms as a step
// of its own, and the frequent sequences fused (see Fuse in decode.cpp).
//
// The plain steps. Load, LoadParameter: l 0 or below, a 0 or above (a
// variable of the current frame) or below 0 (a parameter); LoadOuter: l
// above 0, static links to follow first; the same for Store. Enter is INT.
// JumpBack and JumpBackIfZero go to their own address or an earlier one:
// where the run control looks. Nothing: an opcode or sub-operation that does
// not exist. OutOfCode, a: an address outside the decoded code, see LeaveCode.
#define QEL_PLAIN_STEPS(X) \
    X(LitInt) \
    X(LitDouble) \
    X(LitValue) \
    X(Load) \
    X(LoadParameter) \
    X(LoadOuter) \
    X(Store) \
    X(StoreParameter) \
    X(StoreOuter) \
    X(Call) \
    X(Enter) \
    X(Jump) \
    X(JumpIfZero) \
    X(JumpBack) \
    X(JumpBackIfZero) \
    X(LoadIndexed) \
    X(StoreIndexed) \
    X(Swap) \
    X(External) \
    X(Return) \
    X(Negate) \
    X(Plus) \
    X(Minus) \
    X(Times) \
    X(Divide) \
    X(Equal) \
    X(NotEqual) \
    X(Less) \
    X(GreaterEqual) \
    X(Greater) \
    X(LessEqual) \
    X(ReadInt) \
    X(Write) \
    X(Decrement) \
    X(Increment) \
    X(IntCast) \
    X(DoubleCast) \
    X(ReadDouble) \
    X(BitOr) \
    X(BitAnd) \
    X(BitNot) \
    X(Or) \
    X(And) \
    X(Not) \
    X(Nothing) \
    X(OutOfCode)

enum class Op : uint8_t {
#define QEL_PLAIN_STEP(name) name,
    QEL_PLAIN_STEPS(QEL_PLAIN_STEP)
#undef QEL_PLAIN_STEP

    // Fused steps: the compiler's frequent sequences in one step, each
    // leaving the same cells as the instructions it stands for. A fused step
    // at address i stands for the instructions from i on; the plain steps
    // behind it stay, for jumps into the sequence and for the rest of a
    // sequence that the fast loop cannot finish. Variables are of the
    // current frame (l 0); jumps go forward.
#define QEL_FUSED_BINARY(name, operation, general)                                          \
    LoadLit##name,     /* LOD a; LIT literal; OPR                              */ \
    LoadLoad##name,    /* LOD a; LOD second; OPR                               */ \
    Lit##name,         /* LIT literal; OPR                                     */ \
    Load##name,        /* LOD a; OPR                                           */ \
    LitLoad##name,     /* LIT literal; LOD second; OPR                         */ \
    LoadLoad##name##Store, /* LOD a; LOD second; OPR; STO store                */ \
    name##Store,       /* OPR; STO store                                       */ \
    LoadLit##name##Store,  /* LOD a; LIT literal; OPR; STO store               */
    QEL_BINARY_OPERATIONS(QEL_FUSED_BINARY)
#undef QEL_FUSED_BINARY
#define QEL_FUSED_RELATION(name, operation, general)                                        \
    LoadLit##name##Jump,   /* LOD a; LIT literal; OPR; JPC target              */ \
    LoadLoad##name##Jump,  /* LOD a; LOD second; OPR; JPC target               */ \
    name##Jump,            /* OPR; JPC target                                  */ \
    Lit##name##Jump,       /* LIT literal; OPR; JPC target                     */
    QEL_RELATIONS(QEL_FUSED_RELATION)
#undef QEL_FUSED_RELATION
    IncrementVariable,  // LOD a; OPR ++; STO a
    DecrementVariable,  // LOD a; OPR --; STO a
    LitStore,           // LIT literal; STO store
    LoadElement,        // LOD a; LODI 0, store
    LoadLitStoreElement,  // LOD a; LIT literal; STOI 0, store
    LoadPair,           // LOD a; LOD second
    LoadLitPair,        // LOD a; LIT literal
    LoadStore,          // LOD a; STO store
    // Two arithmetic operations and the store of their result: OPR; OPR; STO store.
#define QEL_FUSED_ARITHMETIC_PAIR(first, then) first##then##Store,
    QEL_ARITHMETIC_PAIRS(QEL_FUSED_ARITHMETIC_PAIR)
#undef QEL_FUSED_ARITHMETIC_PAIR
    // The test at the head of a counting loop whose bound the compiler left
    // as two integer literals: LOD a; LIT; LIT; OPR + (-); OPR <= (>=); JPC
    // target. `second` is the bound worked out.
    LoadBoundLessEqualJump,
    LoadBoundGreaterEqualJump,
    // The end of a counting loop: LOD a; OPR ++ (--); STO a; JMP head, where
    // head is LoadLitLessEqualJump (LoadLitGreaterEqualJump) on the same
    // variable and an integer bound; ...ToBound: head is LoadBound....
    CountUp,
    CountDown,
    CountUpToBound,
    CountDownToBound,
    Count
};

// Fusion on (the default) or off: the machine must do the same either way,
// which the tests check by running programs both ways.
extern bool fuseSteps;
// The fast loop on (the default) or off, when every step goes through the
// general step: the tests hold the fast loop against it.
extern bool fastLoop;

struct Step {
    Op op;
    Op plain;  // what the instruction at this address is alone (GeneralStep runs that)
    int l;
    union {
        intptr_t a;              // offset or count
        const Step* to;          // where a jump or CALL goes
        int number;              // LitInt
        double real;             // LitDouble
        const VALUE* literal;    // LitValue
        const Instruction* ins;  // the operations that need the comment or the callback
    };
    // Operands of fused steps, offsets of variables in bytes: the first
    // operand, a variable (a in bytes); the second, a literal or a variable;
    // where the result goes, a variable or a jump. Enter keeps its count in
    // bytes in `second`; the array of LoadElement and LoadLitStoreElement
    // is at `store`.
    intptr_t first;
    const void* handler;  // where the dispatch loop carries out `op`
    // Of a jump or call, and of a fused step that ends in one: what taking it
    // adds to the count of steps, in bytes of steps (see Registers::travel).
    intptr_t delta;
    union {
        const VALUE* fusedLiteral;
        intptr_t second;
    };
    union {
        intptr_t store;
        const Step* target;
    };
};
static_assert(sizeof(Step) <= 56);

// The number of code slots to decode (see Decode).
int UsedLength(const CInterpreter& m);
std::vector<Step> Decode(const Instruction* code, int length);

}  // namespace qelkern
