// What the two loops of the machine share: the registers in the form the
// loops use, how the cells of a frame and of an array are found, and the
// loops themselves. Internal to the machine.
#pragma once

#include <cstdint>
#include <vector>

#include "machine/decode.h"
#include "machine/run_watch.h"
#include "qelkern/machine.h"

namespace qelkern {

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

// Marks a cell index whose static links could not be followed.
constexpr int64_t badLink = INT64_MIN;

// Cell base(l) + a, seen from frame b; badLink or an index outside the stack
// when the code is not what the compiler makes.
inline int64_t DataCell(const VALUE* s, int capacity, int b, int l, intptr_t a) {
    int frame = l == 0 ? b : FollowLinks(s, capacity, b, l);
    if (frame < 0) return badLink;
    return static_cast<int64_t>(frame) + a;
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
    intptr_t frameBytes;  // b in bytes, whatever b is
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

// The same for a jump or call whose distance Decode has worked out.
inline void TakeJump(Registers& r, const Step& step, const Step* to) {
    r.travel += step.delta;
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
    r.frameBytes = static_cast<intptr_t>(r.b) * static_cast<intptr_t>(sizeof(VALUE));
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

// The element of LODI and STOI l, a for an integer index inside the array,
// else null.
inline VALUE* ElementOf(VALUE* s, int capacity, int b, int l, intptr_t a, const VALUE& indexCell) {
    if (indexCell.type != tagInteger) return nullptr;
    const int64_t sizeCell = DataCell(s, capacity, b, l, a);
    if (!IsCell(sizeCell, capacity)) return nullptr;
    const VALUE& size = s[sizeCell];
    const int index = indexCell.intValue;
    if (size.type != tagInteger || index < 0 || index >= size.intValue) return nullptr;
    const int64_t cell = sizeCell + 1 + index;
    return IsCell(cell, capacity) ? s + cell : nullptr;
}

// The machine's p: the address of the step `at`.
inline int AddressOf(const Step* steps, const Step* at) {
    return at->op == Op::OutOfCode ? static_cast<int>(at->a) : static_cast<int>(at - steps);
}

// How RunFast ended: on a step it leaves to GeneralStep, or behind a callback
// that failed (the run is over) or cancelled the run.
enum class FastEnd { Left, RunOver, Cancelled };

// Runs the steps that need no report, as long as it meets them: numbers in
// cells, texts loaded, stored and pushed as literals (through a call out of
// the numbers' path), nothing to report, no stack to grow. The numbers' path
// has no call, so the compiler can keep the registers in machine registers,
// and this is where a run spends its time. Returns on the first
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
// `checkAt` (see CheckPosition) before they are carried out. Called with
// `decoded`, it only gives each step the address of its handler.
// Uncounted (no run control to serve), the jumps neither count the steps
// nor stop at checkAt, and travel means nothing.
template <bool counted>
FastEnd RunFast(CInterpreter& m, RunWatch& watch, Registers& registers, const Step* steps,
                int length, VALUE* s, int capacity, intptr_t checkAt,
                std::vector<Step>* decoded = nullptr);

// Runs the step at r.next whatever it holds, with every report and call of
// the machine. false: the run is over.
bool GeneralStep(CInterpreter& m, Registers& r, const Step* steps, int length, RunWatch& watch);

// Makes room for n cells above t; false: the run has failed.
bool Grow(CInterpreter& m, int p, int b, int t, int64_t n);

// Ends the run for the host's run control, if `cause` says so.
bool Stopped(CInterpreter& m, const Registers& r, const Step* steps, StopCause cause,
             RunWatch& watch);

}  // namespace qelkern
