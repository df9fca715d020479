#include <gtest/gtest.h>

#include <string>

#include "support/test_support.h"
#include "tests/machine/program_builder.h"

namespace {

using Texts = std::vector<CString>;

// A program that writes the results of its parts; returns the texts shown.
struct WritingProgram : ProgramBuilder {
    ScopedRecordingUi ui;
    // variables < 0: the caller lays out the main frame itself.
    explicit WritingProgram(int variables = 4) {
        if (variables >= 0) Begin(variables);
    }
    void Write(const char* label) { Op(oprWrite, label); }
    Texts RunToEnd() {
        Finish();
        Run();
        EXPECT_EQ(machine.failed, 0);
        return ui.ui.Messages();
    }
    const UiEvent& OnlyEvent() {
        EXPECT_EQ(ui.ui.events.size(), 1u);
        return ui.ui.events.at(0);
    }
};

}  // namespace

TEST(Interpreter, MainBlockRunsToItsReturn) {
    WritingProgram w;
    w.LitInt(6);
    w.Ins(STO, 0, 3);
    w.Ins(LOD, 0, 3);
    w.LitInt(7);
    w.Op(oprTimes);
    w.Write("a");
    w.Lit(ProgramBuilder::Double(1.5));
    w.LitInt(2);
    w.Op(oprPlus);
    w.Write("b");
    w.LitInt(-7);
    w.LitInt(2);
    w.Op(oprDivide);
    w.Write("c");
    w.LitInt(1);
    w.Lit(ProgramBuilder::Double(1.5));
    w.Op(oprLess);
    w.Write("d");
    w.Lit(ProgramBuilder::Double(2.9));
    w.Op(oprIntCast);
    w.Op(oprNegate);
    w.Write("e");
    EXPECT_EQ(w.RunToEnd(), (Texts{"a\n42", "b\n3.500000", "c\n-3", "d\n0", "e\n-2"}));
    EXPECT_EQ(w.machine.p, 0);
    EXPECT_EQ(w.machine.t, 0);
}

TEST(Interpreter, TruthOfJumpsAndLogic) {
    WritingProgram w;
    // JPC jumps when its cell equals 0 within 0.00001; -1 is true.
    auto branch = [&](const VALUE& condition, const char* label) {
        w.Lit(condition);
        int jump = w.gen.Label();
        w.Ins(JPC, 0, 0);
        w.LitInt(1);
        w.Write(label);
        w.gen.fixup(jump);
    };
    branch(ProgramBuilder::Int(-1), "minus eins");
    branch(ProgramBuilder::Double(0.000001), "fast null");
    branch(ProgramBuilder::Text("0"), "text null");
    branch(ProgramBuilder::Text("abc"), "text");
    auto binary = [&](int left, int right, Operation operation, const char* label) {
        w.LitInt(left);
        w.LitInt(right);
        w.Op(operation);
        w.Write(label);
    };
    binary(-1, 1, oprAnd, "and");
    binary(-1, 0, oprOr, "or");
    binary(0, 2, oprOr, "or2");
    binary(6, 3, oprBitAnd, "bitand");
    binary(6, 3, oprBitOr, "bitor");
    w.LitInt(-1);
    w.Op(oprNot);
    w.Write("not");
    w.Lit(ProgramBuilder::Double(0.000001));
    w.Op(oprNot);
    w.Write("not2");
    w.LitInt(5);
    w.Op(oprBitNot);
    w.Write("bitnot");
    EXPECT_EQ(w.RunToEnd(), (Texts{"minus eins\n1", "text\n1", "and\n0", "or\n0", "or2\n1",
                                   "bitand\n2", "bitor\n7", "not\n0", "not2\n1", "bitnot\n-6"}));
}

TEST(Interpreter, DivisionByZeroStopsTheRun) {
    for (const VALUE& divisor : {ProgramBuilder::Int(0), ProgramBuilder::Double(0.000001)}) {
        WritingProgram w;
        w.LitInt(1);
        w.Lit(divisor);
        w.Op(oprDivide);
        w.Write("nie");
        w.Finish();
        w.Run();
        const UiEvent& event = w.OnlyEvent();
        EXPECT_EQ(event.text, "Division durch Null");
        EXPECT_EQ(event.caption, "");
        EXPECT_EQ(event.icon, CUserInterface::IconError);
        EXPECT_EQ(w.machine.failed, 1);
        EXPECT_EQ(w.machine.p, 4) << "p stands behind the failing instruction";
        EXPECT_EQ(w.machine.t, 8);
    }
}

// A procedure is entered with t near the end of the stack; its INT grows the
// stack while the links that CALL wrote above t are still needed.
TEST(Interpreter, StackGrowthKeepsEveryCell) {
    ScopedRecordingUi ui;
    ProgramBuilder pb;
    pb.Ins(JMP, 0, 0, "main");
    int procedure = pb.gen.Label();
    pb.Ins(INT, 0, 20, "proc. p");
    pb.Op(oprRet);
    pb.gen.fixup(0);
    pb.Begin(0);
    const int pushed = 9980;  // t ends at 9983: CALL fits, the INT behind it grows
    for (int i = 0; i < pushed; ++i) {
        if (i % 3 == 0) pb.Lit(ProgramBuilder::Text(("s" + std::to_string(i)).c_str()));
        else pb.LitInt(i);
    }
    pb.Ins(CALL, 0, procedure);
    pb.LitInt(77);
    pb.Op(oprWrite);
    pb.Ins(INT, 0, -pushed);
    pb.Finish();
    pb.Run();
    EXPECT_EQ(pb.machine.failed, 0);
    EXPECT_EQ(ui.ui.Messages(), Texts{"Zahl\n77"});
    EXPECT_EQ(pb.machine.stackCapacity, 20000);
    for (int i = 0; i < pushed; ++i) {
        const VALUE& cell = pb.machine.stack[4 + i];
        if (i % 3 == 0) {
            ASSERT_EQ(cell.type, 57) << i;
            ASSERT_EQ(static_cast<CString>(cell), CString(("s" + std::to_string(i)).c_str()));
        } else {
            ASSERT_EQ(cell.intValue, i);
        }
    }
}

TEST(Interpreter, EndlessRecursionEndsInStackOverflow) {
    ScopedRecordingUi ui;
    ProgramBuilder pb;
    pb.Ins(JMP, 0, 0, "main");
    pb.Ins(INT, 0, 4, "proc. p");
    pb.Ins(CALL, 1, 1);
    pb.Op(oprRet);
    pb.gen.fixup(0);
    pb.Begin(0);
    pb.Ins(CALL, 0, 1);
    pb.Finish();
    pb.Run();
    EXPECT_EQ(ui.ui.Messages(), Texts{"Stacküberlauf."});
    EXPECT_EQ(pb.machine.failed, 1);
    EXPECT_EQ(pb.machine.stackCapacity, 1040000);
}

TEST(Interpreter, StackUnderflow) {
    for (int variant = 0; variant < 3; ++variant) {
        ScopedRecordingUi ui;
        ProgramBuilder pb;
        if (variant == 0) {
            pb.Ins(INT, 0, -1);
        } else if (variant == 1) {
            pb.Op(oprPlus);  // a binary operation with one cell on the stack
        } else {
            pb.Ins(STO, 0, 0);
            pb.Ins(STO, 0, 0);
        }
        pb.Finish();
        pb.Run();
        EXPECT_EQ(ui.ui.Messages(), Texts{"Stackunterlauf."}) << variant;
        EXPECT_EQ(pb.machine.failed, 1);
    }
}

TEST(Interpreter, StaticLinksReachOuterVariables) {
    // main: x := 5; CALL p; p reads x one level out, writes y := x + 1.
    WritingProgram w(-1);
    w.Ins(JMP, 0, 0, "main");
    int procedure = w.gen.Label();
    w.Ins(INT, 0, 3, "proc. p");
    w.Ins(LOD, 1, 3);
    w.LitInt(1);
    w.Op(oprPlus);
    w.Ins(STO, 1, 4);
    w.Op(oprRet);
    w.gen.fixup(0);
    w.Begin(2);
    w.LitInt(5);
    w.Ins(STO, 0, 3);
    w.Ins(CALL, 0, procedure);
    w.Ins(LOD, 0, 4);
    w.Write("y");
    EXPECT_EQ(w.RunToEnd(), Texts{"y\n6"});
}

TEST(Interpreter, ArraysAreCheckedAgainstTheirSize) {
    // Array of 3 at offset 3 (size cell), a guard variable at offset 7.
    auto program = [](int index, bool store, WritingProgram& w) {
        w.Ins(INT, 0, 3, "main");
        w.Lit(ProgramBuilder::Int(3), "Arraygröße");
        w.Ins(INT, 0, 3);
        w.Ins(INT, 0, 1);
        for (int i = 0; i < 3; ++i) {
            w.LitInt(i);
            w.LitInt(10 * (i + 1));
            w.Ins(STOI, 0, 3);
        }
        w.LitInt(99);
        w.Ins(STO, 0, 7);
        w.LitInt(index);
        if (store) {
            w.LitInt(-5);
            w.Ins(STOI, 0, 3);
            w.LitInt(index);
        }
        w.Ins(LODI, 0, 3);
        w.Write("e");
        w.Ins(LOD, 0, 3);
        w.Op(oprDecrement);
        w.Write("high");
    };
    {
        WritingProgram w(-1);
        program(2, true, w);
        EXPECT_EQ(w.RunToEnd(), (Texts{"e\n-5", "high\n2"}));
        EXPECT_EQ(w.machine.stack[8].intValue, 99);
    }
    for (int index : {3, -1}) {
        for (bool store : {false, true}) {
            WritingProgram w(-1);
            program(index, store, w);
            w.Finish();
            w.Run();
            CString expected;
            expected.Format("Array-Index %d außerhalb der Grenzen 0 bis 2.", index);
            EXPECT_EQ(w.ui.ui.Messages(), Texts{expected});
            EXPECT_EQ(w.machine.failed, 1);
            EXPECT_EQ(w.machine.stack[4].intValue, 3) << "the size cell is untouched";
            EXPECT_EQ(w.machine.stack[8].intValue, 99) << "the cell behind is untouched";
        }
    }
}

TEST(Interpreter, CodeThatLeavesStackOrCodeFails) {
    struct Case {
        Opcode f;
        int l;
        intptr_t a;
        const char* message;
    };
    const Case cases[] = {
        {LOD, 0, 5000000, "Zugriff auf Stackzelle 5000001 außerhalb des Stacks."},
        {STO, 0, -10, "Zugriff auf Stackzelle -9 außerhalb des Stacks."},
        {LOD, 3, 3, "Ungültiger statischer Verweis."},
        {CALL, 2, 1, "Ungültiger statischer Verweis."},
        {JMP, 0, 20000, "Ungültige Codeadresse 20000."},
        {JMP, 0, intptr_t(1) << 40, "Ungültige Codeadresse 2147483647."},
        {LODI, 0, 9999, "Zugriff auf Stackzelle 10000 außerhalb des Stacks."},
        {INT, 0, 2000000, "Stacküberlauf."},
        {INT, 0, INT32_MIN, "Stackunterlauf."},
    };
    for (const Case& c : cases) {
        ScopedRecordingUi ui;
        ProgramBuilder pb;
        pb.Begin(1);
        pb.LitInt(0);
        pb.Ins(c.f, c.l, c.a);
        pb.Finish();
        pb.Run();
        EXPECT_EQ(ui.ui.Messages(), Texts{c.message}) << c.message;
        EXPECT_EQ(pb.machine.failed, 1);
    }
}

TEST(Interpreter, SwapAndIndirectStoreTakeAVarArrayBack) {
    // Two values on the stack are stored back into a[0], a[1] from the top.
    WritingProgram w(-1);
    w.Ins(INT, 0, 3, "main");
    w.Lit(ProgramBuilder::Int(2), "Arraygröße");
    w.Ins(INT, 0, 2);
    w.Lit(ProgramBuilder::Text("erstes"));
    w.LitInt(20);
    w.LitInt(1);
    w.Ins(SWAP, 0, 0);
    w.Ins(STOI, 0, 3);
    w.LitInt(0);
    w.Ins(SWAP, 0, 0);
    w.Ins(STOI, 0, 3);
    w.LitInt(1);
    w.Ins(LODI, 0, 3);
    w.Write("a1");
    EXPECT_EQ(w.RunToEnd(), Texts{"a1\n20"});
    EXPECT_EQ(static_cast<CString>(w.machine.stack[5]), "erstes");
}

TEST(Interpreter, StringsTravelWithTheirOwnText) {
    WritingProgram w;
    w.Lit(ProgramBuilder::Text("eins"));
    w.Ins(STO, 0, 3);
    w.Ins(LOD, 0, 3);
    w.Ins(STO, 0, 4);
    w.Ins(LOD, 0, 4);
    w.Lit(ProgramBuilder::Text("!"));
    w.Op(oprPlus);
    w.Ins(STO, 0, 4);
    w.RunToEnd();
    EXPECT_EQ(static_cast<CString>(w.machine.stack[4]), "eins");
    EXPECT_EQ(static_cast<CString>(w.machine.stack[5]), "eins!");
    EXPECT_NE(w.machine.stack[4].stringValue, w.machine.code[1].value.stringValue);
}
