// The dispatch loop runs a decoded copy of the code: addresses outside the
// code, the end of the code and stack growth must still come out exactly as
// the machine defines them, on the fast paths for numbers and on the general
// ones for texts.
#include <gtest/gtest.h>

#include <vector>

#include "qelkern/machine.h"
#include "support/test_support.h"

namespace {

VALUE Int(int number) {
    VALUE v;
    v = number;
    return v;
}

VALUE Text(const char* text) {
    VALUE v;
    v.SetString(text);
    return v;
}

struct Machine {
    ScopedRecordingUi ui;
    CInterpreter machine;
    CGenerator gen{&machine};

    Machine& Ins(int f, int l, intptr_t a) {
        gen.Gen(f, l, a);
        return *this;
    }
    Machine& Lit(const VALUE& v) {
        gen.Gen(LIT, 0, v);
        return *this;
    }
    Machine& Lit(int number) { return Lit(Int(number)); }
    Machine& Op(Operation operation) { return Ins(OPR, 0, operation); }
    std::vector<CString> Run() {
        machine.Interpret();
        return ui.ui.Messages();
    }
    const VALUE& Cell(int index) const { return machine.stack[index]; }
};

using Texts = std::vector<CString>;

}  // namespace

TEST(Dispatch, AnInvalidJumpTargetCountsOnlyWhenTheJumpIsTaken) {
    Machine m;
    m.Ins(INT, 0, 4).Lit(1).Ins(JPC, 0, 20000);  // true: no jump
    m.Ins(JMP, 0, 5).Ins(JMP, 0, -7);             // jumped over
    m.Lit(42).Ins(STO, 0, 3).Op(oprRet);
    EXPECT_EQ(m.Run(), Texts{});
    EXPECT_EQ(m.machine.failed, 0);
    EXPECT_EQ(m.Cell(4).intValue, 42);

    Machine taken;
    taken.Ins(INT, 0, 4).Lit(0).Ins(JPC, 0, 20000).Op(oprRet);
    EXPECT_EQ(taken.Run(), Texts{"Ungültige Codeadresse 20000."});
    EXPECT_EQ(taken.machine.p, 20000);
    EXPECT_EQ(taken.machine.t, 4);
}

TEST(Dispatch, AnAddressOfZeroOrBelowEndsTheRun) {
    for (intptr_t target : {0, -3}) {
        Machine m;
        m.Ins(INT, 0, 4).Lit(7).Ins(JMP, 0, target).Lit(8);
        EXPECT_EQ(m.Run(), Texts{});
        EXPECT_EQ(m.machine.failed, 0);
        EXPECT_EQ(m.machine.p, target);
        EXPECT_EQ(m.machine.t, 5);
    }
    // JPC that takes the last cell: the end comes before the stack test,
    // a jump into the code finds the stack empty.
    // Cell 0 holds integer 0.
    Machine ends;
    ends.Ins(JPC, 0, 0).Lit(1);
    EXPECT_EQ(ends.Run(), Texts{});
    EXPECT_EQ(ends.machine.failed, 0);
    EXPECT_EQ(ends.machine.t, -1);
    Machine fails;
    fails.Ins(JPC, 0, 2).Lit(1).Lit(2);
    EXPECT_EQ(fails.Run(), Texts{"Stackunterlauf."});
    EXPECT_EQ(fails.machine.p, 2);
}

TEST(Dispatch, RunningOffTheEndRunsTheEmptySlotsOfTheCodeStore) {
    // Every slot behind the code holds a LIT of no value: each pushes one
    // untagged cell, and the stack grows on the way, until the address
    // behind the store.
    Machine m;
    m.Ins(INT, 0, 4).Lit(5);
    EXPECT_EQ(m.Run(), Texts{"Ungültige Codeadresse 10000."});
    EXPECT_EQ(m.machine.p, 10000);
    EXPECT_EQ(m.machine.t, 5 + 9998);
    EXPECT_EQ(m.machine.stackCapacity, 20000);
    EXPECT_EQ(m.Cell(5).intValue, 5);
    EXPECT_EQ(m.Cell(6).type, 0);
    EXPECT_EQ(m.Cell(10003).type, 0);

    // A jump into the empty slots runs them from there.
    Machine jump;
    jump.Ins(INT, 0, 4).Ins(JMP, 0, 9990);
    EXPECT_EQ(jump.Run(), Texts{"Ungültige Codeadresse 10000."});
    EXPECT_EQ(jump.machine.t, 4 + 10);

    // So does the return address of a RET.
    Machine ret;
    ret.Ins(INT, 0, 4).Lit(9995).Ins(STO, 0, 2).Op(oprRet);
    EXPECT_EQ(ret.Run(), Texts{"Ungültige Codeadresse 10000."});
    EXPECT_EQ(ret.machine.t, 0 + 5);
}

TEST(Dispatch, TheStackGrowsBeforeTheInstructionAfterAPushIntoTheReserve) {
    // t passes 9990 with the last push; the stack grows before the INT that
    // pops it again, whether the push was a number or a text.
    for (bool text : {false, true}) {
        for (int pushes : {9986, 9987}) {
            Machine m;
            m.Ins(INT, 0, 4);
            for (int i = 0; i < pushes - 1; ++i) m.Lit(i);
            if (text) m.Lit(Text("letzte"));
            else m.Lit(-1);
            m.Ins(INT, 0, -pushes).Op(oprRet);
            EXPECT_EQ(m.Run(), Texts{});
            EXPECT_EQ(m.machine.stackCapacity, pushes == 9987 ? 20000 : 10000) << pushes << text;
            EXPECT_EQ(CString(m.Cell(4 + pushes)), text ? "letzte" : "-1");
        }
    }
}

TEST(Dispatch, NumbersAndTextsShareTheCells) {
    // A text overwritten by a number and a number by a text, through loads,
    // stores, literals and arithmetic; the popped text cells are reused.
    Machine m;
    m.Ins(INT, 0, 6).Lit(Text("a")).Lit(Text("b")).Op(oprPlus).Ins(STO, 0, 3);
    m.Lit(2).Lit(3).Op(oprTimes).Ins(STO, 0, 4);  // 2 and 3 land on cells of texts
    m.Ins(LOD, 0, 3).Ins(LOD, 0, 4).Op(oprPlus).Ins(STO, 0, 5);
    m.Ins(LOD, 0, 4).Ins(STO, 0, 3).Op(oprRet);
    EXPECT_EQ(m.Run(), Texts{});
    EXPECT_EQ(CString(m.Cell(4)), "6");
    EXPECT_EQ(m.Cell(4).type, 40);
    EXPECT_EQ(CString(m.Cell(6)), "ab6");
}

TEST(Dispatch, ParametersAndBrokenFrames) {
    // PROCEDURE p(a); BEGIN a := a * 10 END, called with 4; the VAR copy back.
    Machine m;
    m.Ins(JMP, 0, 7).Ins(INT, 0, 3).Ins(LOD, 0, -1).Lit(10).Op(oprTimes);
    m.Ins(STO, 0, -1).Op(oprRet);
    m.Ins(INT, 0, 4).Lit(4).Ins(CALL, 0, 1).Ins(STO, 0, 3).Op(oprRet);
    EXPECT_EQ(m.Run(), Texts{});
    EXPECT_EQ(m.Cell(4).intValue, 40);

    Machine below;
    below.Ins(INT, 0, 4).Ins(LOD, 0, -5);
    EXPECT_EQ(below.Run(), Texts{"Zugriff auf Stackzelle -4 außerhalb des Stacks."});

    // A RET through a forged frame leaves b at -5: every access through it
    // names the frame, also one whose cell index would lie in the stack.
    for (intptr_t offset : {3, 8, -1}) {
        Machine broken;
        broken.Ins(INT, 0, 4).Lit(-5).Ins(STO, 0, 1).Lit(6).Ins(STO, 0, 2).Op(oprRet);
        broken.Ins(LOD, 0, offset);
        EXPECT_EQ(broken.Run(), Texts{"Ungültiger statischer Verweis."}) << offset;
        EXPECT_EQ(broken.machine.b, -5);
        EXPECT_EQ(broken.machine.p, 7);
    }
}
