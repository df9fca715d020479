// The machine: a run from its start to its end, between the fast loop and
// the general step, and the interpreter's stack and name tables.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <system_error>
#include <vector>

#include "machine/cell_ops.h"
#include "machine/code_store.h"
#include "machine/machine_loops.h"
#include "machine/decode.h"
#include "machine/host_calls.h"
#include "machine/interrupts.h"
#include "machine/debug_run.h"
#include "machine/name_tables.h"
#include "machine/stack_cells.h"
#include "platform/memory_budget.h"
#include "machine/text_pool.h"
#include "machine/stepper.h"
#include "qelkern/machine.h"
#include "qelkern/userinterface.h"

using namespace qelkern;

namespace {

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

// Where the run watch looks, here as in the fast loop, so that a run ends at
// the same instruction whichever loop carries it out.
inline bool IsCheckpoint(const Step& step) {
    return step.plain == Op::Call || step.plain == Op::JumpBack || step.plain == Op::JumpBackIfZero;
}

template <bool counted>
void RunSteps(CInterpreter& m, Registers& r, const Step* steps, int length, RunWatch& watch,
              Interrupts* interrupts) {
    for (;;) {
        const FastEnd end = fastLoop ? RunFast<counted>(m, watch, r, steps, length, m.stack,
                                                        m.stackCapacity, CheckPosition(watch.NextCheck()))
                                     : FastEnd::Left;
        if (end == FastEnd::RunOver) return;
        if (end == FastEnd::Cancelled) {
            Stopped(m, r, steps, StopCause::Cancelled, watch);
            return;
        }
        if (interrupts && interrupts->Pending()) {
            interrupts->Take();
            if (Stopped(m, r, steps, watch.Check(0), watch)) return;
        }
        if constexpr (counted)
            if (r.travel + Position(r.next) >= CheckPosition(watch.NextCheck()) &&
                IsCheckpoint(*r.next) && Stopped(m, r, steps, watch.Check(StepsTaken(r)), watch))
                return;
        if (!InReserve(m, r) && !GeneralStep(m, r, steps, length, watch)) return;
        if (InReserve(m, r)) {
            const int t = static_cast<int>(r.top - m.stack);
            if (!Grow(m, AddressOf(steps, r.next), r.b, t, 0)) return;
            r.top = m.stack + t;
            SetFrame(r, m.stack, m.stackCapacity);
        }
    }
}

template <bool counted>
void RunWatched(CInterpreter& m, Registers& r, const Step* steps, int length, RunWatch& watch,
                Interrupts* interrupts) {
    try {
        RunSteps<counted>(m, r, steps, length, watch, interrupts);
    } catch (...) {
        WriteBack(m, r, steps);
        watch.Finish(StepsTaken(r));
        throw;
    }
    watch.Finish(StepsTaken(r));
}

// A control without a step budget is served by interrupts, so the loop runs
// as fast as without one; where no thread can be started, it counts.
std::unique_ptr<Interrupts> InterruptsFor(const CInterpreter& m, const RunWatch& watch,
                                          std::vector<Step>& decoded, int length) {
    if (!m.control || watch.CountsSteps()) return nullptr;
    try {
        // Step `length` is OutOfCode, whose handler leaves the loop.
        return std::make_unique<Interrupts>(decoded, decoded[static_cast<size_t>(length)].handler,
                                            *m.control);
    } catch (const std::system_error&) {
        return nullptr;
    }
}

// An exception (memory ran out in a text operation, or a callback let one
// through) leaves the registers where the step stood, the cells as they were.
void Run(CInterpreter& m, RunWatch& watch) {
    const int length = UsedLength(m);
    std::vector<Step> decoded = Decode(m.code, length);
    const Step* const steps = decoded.data();
    Registers r{};
    // The handlers first: interrupts keep each checkpoint's own. A counting
    // run's handlers are those of the counting loop.
    RunFast<false>(m, watch, r, steps, length, m.stack, m.stackCapacity, 0, &decoded);
    std::unique_ptr<Interrupts> interrupts = InterruptsFor(m, watch, decoded, length);
    const bool counted = m.control && !interrupts;
    if (counted) RunFast<true>(m, watch, r, steps, length, m.stack, m.stackCapacity, 0, &decoded);
    r.next = steps;
    r.top = m.stack;
    r.b = 1;
    SetFrame(r, m.stack, m.stackCapacity);
    r.travel = -Position(steps);
    try {
        if (counted)
            RunWatched<true>(m, r, steps, length, watch, nullptr);
        else
            RunWatched<false>(m, r, steps, length, watch, interrupts.get());
    } catch (...) {
        ThreadTextPool().Clear();
        throw;
    }
    ThreadTextPool().Clear();
}

}  // namespace

struct qelkern::MachineStepper::State {
    CInterpreter& m;
    RunWatch& watch;
    int length;
    std::vector<qelkern::Step> decoded;
    Registers r{};
};

qelkern::MachineStepper::MachineStepper(CInterpreter& machine, RunWatch& watch)
    : state(new State{machine, watch, UsedLength(machine), {}, {}}) {
    state->decoded = Decode(machine.code, state->length);
    Registers& r = state->r;
    r.next = state->decoded.data() + machine.p;
    r.top = machine.stack + machine.t;
    r.b = machine.b;
    r.travel = -Position(r.next);
    SetFrame(r, machine.stack, machine.stackCapacity);
}

qelkern::MachineStepper::~MachineStepper() { state->watch.Finish(StepsTaken(state->r)); }

// One turn of RunSteps' inner loop, with the registers written back.
bool qelkern::MachineStepper::Step() {
    CInterpreter& m = state->m;
    RunWatch& watch = state->watch;
    Registers& r = state->r;
    const qelkern::Step* const steps = state->decoded.data();
    try {
        if (StepsTaken(r) >= watch.NextCheck() && Stopped(m, r, steps, watch.Check(StepsTaken(r)), watch))
            return false;
        if (!GeneralStep(m, r, steps, state->length, watch)) return false;
        if (InReserve(m, r)) {
            const int t = static_cast<int>(r.top - m.stack);
            if (!Grow(m, AddressOf(steps, r.next), r.b, t, 0)) return false;
            r.top = m.stack + t;
            SetFrame(r, m.stack, m.stackCapacity);
        }
    } catch (...) {
        WriteBack(m, r, steps);
        throw;
    }
    WriteBack(m, r, steps);
    return true;
}

namespace {

// The largest capacity that growth in steps from the first capacity reaches
// without passing the limit: the stack's real size limit.
int64_t LargestCapacity(int64_t limit) {
    if (limit < initialCapacity) return initialCapacity;
    return initialCapacity + (limit - initialCapacity) / stackGrowthStep * stackGrowthStep;
}

// Address space for a million instructions, 64 MB: none of it is memory
// until the code reaches it.
constexpr size_t firstCodeReservation = size_t{1} << 20;

StackCells* ReserveStack(int64_t cellCount) {
    auto* reserved = new StackCells(static_cast<size_t>(cellCount));
    if (!reserved->Cells() || !reserved->GrowTo(initialCapacity)) {
        delete reserved;
        throw std::bad_alloc();
    }
    return reserved;
}

}  // namespace

// The first reservation holds the code of a long script without moving it;
// only the pages the code reaches are ever touched.
CInterpreter::CInterpreter()
    : code(nullptr), control(pRunControl), cells(nullptr), codeStore(nullptr) {
    auto store = std::make_unique<CodeStore>(firstCodeReservation, static_cast<size_t>(codeCapacity));
    store->GrowTo(static_cast<size_t>(codeCapacity));
    cells = ReserveStack(LargestCapacity(stackLimit));
    codeStore = store.release();
    code = codeStore->Code();
    stack = cells->Cells();
    FillNameTables();
}

CInterpreter::~CInterpreter() {
    delete codeStore;
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
    if (DebugRun* debugged = DebugRunOf(*this))
        debugged->Run(watch);
    else
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
    if (DebugRun* debugged = DebugRunOf(*this)) debugged->ReportError(shown);
    GetUserInterface().ShowMessage(shown, CString(), CUserInterface::IconError);
    errorText = text;
    failed = 1;
}
