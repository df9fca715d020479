// Limits a host puts on a run, and the stack limit, which must hold at the
// same instruction however the stack is kept.
#include <gtest/gtest.h>

#include <new>
#include <thread>

#include "qelkern/environment.h"
#include "qelkern/runcontrol.h"
#include "support/test_support.h"
#include "tests/machine/program_builder.h"

namespace {

// PROCEDURE p (with `locals` variables): depth := depth + 1; p. The main
// block counts the depth in its variable at cell 4.
void BuildEndlessRecursion(ProgramBuilder& pb, int locals) {
    pb.Ins(JMP, 0, 7, "main").Ins(INT, 0, 3 + locals, "proc. p");
    pb.Ins(LOD, 1, 3).Lit(1).Op(oprPlus).Ins(STO, 1, 3).Ins(CALL, 1, 1);
    pb.Begin(1).Lit(0).Ins(STO, 0, 3).Ins(CALL, 0, 1).Op(oprRet);
}

// LOOP n := n + 1 END, with n at cell 4; `body` goes before the counting.
void BuildEndlessLoop(ProgramBuilder& pb, intptr_t routine = 0) {
    pb.Begin(1);
    const int loop = pb.gen.Label();
    if (routine) pb.Ins(EXTCALL, 0, routine, "Rufe");
    pb.Ins(LOD, 0, 3).Lit(1).Op(oprPlus).Ins(STO, 0, 3).Ins(JMP, 0, loop).Op(oprRet);
}

CRunControl* calledControl = nullptr;
int calls = 0;
int CancelOnThirdCall(VALUE*, int) {
    if (++calls == 3) calledControl->Cancel();
    return 1;
}
int RunOutOfMemory(VALUE*, int) { throw std::bad_alloc(); }

}  // namespace

// Measured before the cells were kept in reserved space, where each growth
// copied the whole stack.
TEST(StackLimit, OverflowComesAtTheSameDepthAndInstruction) {
    struct Case { int locals; int depth; int t; int p; };
    const Case cases[] = {{0, 346661, 1039991, 3},
                          {1, 259996, 1039988, 2},
                          {7, 103998, 1039984, 2},
                          {100, 10096, 1039892, 2}};
    for (const Case& c : cases) {
        ProgramBuilder pb;
        BuildEndlessRecursion(pb, c.locals);
        EXPECT_EQ(pb.Run(), Texts{"Stacküberlauf."});
        EXPECT_EQ(pb.machine.failed, 1);
        EXPECT_EQ(pb.Cell(4).intValue, c.depth) << c.locals;
        EXPECT_EQ(pb.machine.t, c.t) << c.locals;
        EXPECT_EQ(pb.machine.p, c.p) << c.locals;
        EXPECT_EQ(pb.machine.stackCapacity, 1040000);
    }
}

TEST(RunControl, EachLimitEndsAnEndlessLoopWithItsMessage) {
    struct Case {
        const char* message;
        StopCause cause;
        void (*set)(CRunControl&);
    };
    const Case cases[] = {
        {"Skript abgebrochen: Schrittgrenze erreicht.", StopCause::StepLimit,
         [](CRunControl& c) { c.maxSteps = 100000; }},
        {"Skript abgebrochen: Zeitgrenze erreicht.", StopCause::TimeLimit,
         [](CRunControl& c) { c.timeoutMilliseconds = 50; }},
        {"Skript abgebrochen.", StopCause::Cancelled,
         [](CRunControl& c) { c.onPoll = [](CRunControl& self) { self.Cancel(); }; }},
    };
    for (const Case& c : cases) {
        CRunControl control;
        control.Cancel();  // left from an earlier run: a new run starts afresh
        c.set(control);
        ProgramBuilder pb;
        pb.machine.control = &control;
        BuildEndlessLoop(pb);
        EXPECT_EQ(pb.Run(), Texts{c.message});
        EXPECT_EQ(pb.ui.ui.events[0].icon, CUserInterface::IconError);
        EXPECT_EQ(pb.machine.failed, 1);
        EXPECT_EQ(control.stopCause, c.cause) << c.message;
        // The run stops at the jump back; only a step budget counts: INT,
        // then five steps a round, so five for each count in cell 4.
        EXPECT_EQ(pb.machine.p, 5) << c.message;
        if (c.cause == StopCause::StepLimit) {
            EXPECT_EQ(control.stepsTaken, 5 * uint64_t(pb.Cell(4).intValue));
            EXPECT_EQ(control.stepsTaken, 100000u);
        } else {
            EXPECT_EQ(control.stepsTaken, 0u) << c.message;
        }
    }
}

// Without a step budget the loop is interrupted from outside at the places
// where a run can come back to itself: a fused counting loop, and calls in
// a recursion without any loop.
TEST(RunControl, ATimeLimitReachesCountingLoopsAndRecursion) {
    const char* const scripts[] = {
        "VAR i, x : INTEGER; BEGIN FOR i := 1 TO 2000000000 DO x := x + 1 END END.",
        "VAR i, n : INTEGER; BEGIN n := 1; FOR i := 1 TO 2000000000 DO n := n - 1 END END.",
        "PROCEDURE p(n : INTEGER); BEGIN IF n > 0 THEN p(n - 1); p(n - 1) END END;\n"
        "BEGIN p(60) END.",
    };
    for (const char* script : scripts) {
        CRunControl control;
        control.timeoutMilliseconds = 30;
        ScopedRunControl controlled(control);
        ScopedRecordingUi recording;
        const int result = RunText(script);
        EXPECT_EQ(result, 0) << script;
        EXPECT_EQ(recording.ui.Messages(), std::vector<CString>{"Skript abgebrochen: Zeitgrenze erreicht."})
            << script;
        EXPECT_EQ(control.stopCause, StopCause::TimeLimit) << script;
    }
}

// A poll every millisecond interrupts the run again and again; each time the
// loop must go on where it stood, with every checkpoint's own handler back.
// A wrong sum ends in a division by zero.
TEST(RunControl, InterruptsLeaveTheResultAlone) {
    const std::string script =
        "VAR i, s, zero : INTEGER;\n"
        "FUNCTION f(n : INTEGER) : INTEGER; BEGIN f := n - (n / 7) * 7 END;\n"
        "BEGIN FOR i := 1 TO 3000000 DO s := s + f(i) END;\n"
        "  i := 0; WHILE i < 1000000 DO s := s - 1; i := i + 1 END;\n"
        "  IF s # 7999997 THEN s := 1 / zero END END.";
    int polls = 0;
    CRunControl control;
    control.pollMilliseconds = 1;
    control.onPoll = [&polls](CRunControl&) { ++polls; };
    ScopedRunControl controlled(control);
    ScopedRecordingUi recording;
    const int result = RunText(script);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(recording.ui.Messages(), std::vector<CString>{});
    EXPECT_EQ(control.stopCause, StopCause::None);
    EXPECT_EQ(control.stepsTaken, 0u);  // not asked for
}

TEST(RunControl, CancelFromAnotherThreadOrACallbackEndsTheRun) {
    CRunControl control;
    ProgramBuilder fromThread;
    fromThread.machine.control = &control;
    BuildEndlessLoop(fromThread);
    std::thread canceller([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        control.Cancel();
    });
    EXPECT_EQ(fromThread.Run(), Texts{"Skript abgebrochen."});
    canceller.join();

    ProgramBuilder fromCallback;  // the run ends right behind the callback
    fromCallback.machine.control = calledControl = &control;
    BuildEndlessLoop(fromCallback, reinterpret_cast<intptr_t>(&CancelOnThirdCall));
    EXPECT_EQ(fromCallback.Run(), Texts{"Skript abgebrochen."});
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(fromCallback.Cell(4).intValue, 2);
    EXPECT_EQ(control.stopCause, StopCause::Cancelled);
}

TEST(RunControl, WithoutLimitsTheRunIsUntouchedAndCountedOnRequest) {
    CRunControl control;
    control.countSteps = true;
    ProgramBuilder pb;
    pb.machine.control = &control;
    pb.Begin(1).Lit(0).Ins(STO, 0, 3);
    const int loop = pb.gen.Label();  // WHILE n < 300000 DO n := n + 1 END
    pb.Ins(LOD, 0, 3).Lit(300000).Op(oprLess).Ins(JPC, 0, loop + 9);
    pb.Ins(LOD, 0, 3).Lit(1).Op(oprPlus).Ins(STO, 0, 3).Ins(JMP, 0, loop);
    EXPECT_EQ(pb.RunMain(), Texts{});
    EXPECT_EQ(pb.machine.failed, 0);
    EXPECT_EQ(pb.Cell(4).intValue, 300000);
    EXPECT_EQ(control.stopCause, StopCause::None);
    EXPECT_EQ(control.stepsTaken, 3 + 300000 * 9u + 4 + 1);
}

TEST(RunControl, OutOfMemoryInACallbackPassesOnWithTheRegistersWritten) {
    ProgramBuilder pb;
    pb.Begin(1).Lit(5).Lit(6).Ins(EXTCALL, 0, reinterpret_cast<intptr_t>(&RunOutOfMemory), "f");
    pb.Op(oprRet);
    EXPECT_THROW(pb.machine.Interpret(), std::bad_alloc);
    EXPECT_EQ(pb.machine.t, 6);
    EXPECT_EQ(pb.machine.p, 4);
    EXPECT_EQ(pb.Cell(6).intValue, 6);
    EXPECT_TRUE(pb.ui.ui.events.empty());
}
