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

// What the dispatch loop runs: each instruction decoded once per run, with
// every OPR sub-operation and the common operand forms as an operation of its
// own, so that one switch dispatches everything and a step fits 16 bytes.
enum class Op : uint8_t {
    LitInt,
    LitDouble,
    LitValue,
    Load,            // l 0 or below, a 0 or above: a variable of the current frame
    LoadParameter,   // l 0 or below, a below 0
    LoadOuter,       // l above 0: static links to follow first
    Store,
    StoreParameter,
    StoreOuter,
    Call,
    Enter,  // INT
    Jump,
    JumpIfZero,
    JumpBack,        // to its own address or an earlier one: where the run control looks
    JumpBackIfZero,
    LoadIndexed,
    StoreIndexed,
    Swap,
    External,
    Return,
    Negate,
    Plus,
    Minus,
    Times,
    Divide,
    Equal,
    NotEqual,
    Less,
    GreaterEqual,
    Greater,
    LessEqual,
    ReadInt,
    Write,
    Decrement,
    Increment,
    IntCast,
    DoubleCast,
    ReadDouble,
    BitOr,
    BitAnd,
    BitNot,
    Or,
    And,
    Not,
    Nothing,    // an opcode or sub-operation that does not exist
    OutOfCode,  // a: an address outside the decoded code, see LeaveCode
};

struct Step {
    Op op;
    int l;
    union {
        intptr_t a;              // offset or count
        const Step* to;          // where a jump or CALL goes
        int number;              // LitInt
        double real;             // LitDouble
        const VALUE* literal;    // LitValue
        const Instruction* ins;  // the operations that need the comment or the callback
    };
};
static_assert(sizeof(Step) <= 16);

// The number of code slots to decode (see Decode).
int UsedLength(const CInterpreter& m);
std::vector<Step> Decode(const Instruction* code, int length);

}  // namespace qelkern
