#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/machine/program_builder.h"

TEST(Interpreter, OperationsAndTruth) {
    ProgramBuilder w;
    w.Begin(1).Lit(6).Ins(STO, 0, 3).Ins(LOD, 0, 3).Lit(7).Op(oprTimes).Write("a");
    w.Lit(Double(1.5)).Lit(2).Op(oprPlus).Write("b");
    w.Lit(-7).Lit(2).Op(oprDivide).Write("c");
    w.Lit(1).Lit(Double(1.5)).Op(oprLess).Write("d");
    w.Lit(Double(2.9)).Op(oprIntCast).Op(oprNegate).Write("e");
    // JPC jumps when its cell equals 0 within 0.00001; -1 is true.
    for (const VALUE& condition : {Int(-1), Double(0.000001), Text("0"), Text("abc")}) {
        int jump = w.Lit(condition).gen.Label();
        w.Ins(JPC, 0, 0).Lit(1).Write(CString(condition));
        w.gen.fixup(jump);
    }
    w.Lit(-1).Lit(1).Op(oprAnd).Write("and");
    w.Lit(-1).Lit(0).Op(oprOr).Write("or");
    w.Lit(0).Lit(2).Op(oprOr).Write("or2");
    w.Lit(6).Lit(3).Op(oprBitAnd).Write("bitand");
    w.Lit(6).Lit(3).Op(oprBitOr).Write("bitor");
    w.Lit(-1).Op(oprNot).Write("not");
    w.Lit(Double(0.000001)).Op(oprNot).Write("not2");
    w.Lit(5).Op(oprBitNot).Write("bitnot");
    EXPECT_EQ(w.RunMain(), (Texts{"a\n42", "b\n3.500000", "c\n-3", "d\n0", "e\n-2", "-1\n1", "abc\n1",
                                  "and\n0", "or\n0", "or2\n1", "bitand\n2", "bitor\n7", "not\n0",
                                  "not2\n1", "bitnot\n-6"}));
    EXPECT_EQ(w.machine.p, 0);
    EXPECT_EQ(w.machine.t, 0);
}

TEST(Interpreter, RunTimeErrorsStopTheRun) {
    // Each instruction runs in a main block of one variable with a 0 on top;
    // `alone`: twice on the empty stack instead.
    const struct {
        Opcode f;
        int l;
        intptr_t a;
        const char* message;
        bool alone;
    } cases[] = {
        {OPR, 0, oprDivide, "Division durch Null", false},
        {LOD, 0, 5000000, "Zugriff auf Stackzelle 5000001 außerhalb des Stacks.", false},
        {STO, 0, -10, "Zugriff auf Stackzelle -9 außerhalb des Stacks.", false},
        {LOD, 3, 3, "Ungültiger statischer Verweis.", false},
        {CALL, 2, 1, "Ungültiger statischer Verweis.", false},
        {JMP, 0, 20000, "Ungültige Codeadresse 20000.", false},
        {JMP, 0, intptr_t(1) << 40, "Ungültige Codeadresse 2147483647.", false},
        {LODI, 0, 9999, "Zugriff auf Stackzelle 10000 außerhalb des Stacks.", false},
        {INT, 0, 2000000, "Stacküberlauf.", false},
        {INT, 0, INT32_MIN, "Stackunterlauf.", false},
        {INT, 0, -1, "Stackunterlauf.", true},
        {OPR, 0, oprPlus, "Stackunterlauf.", true},
        {STO, 0, 0, "Stackunterlauf.", true},  // the second finds t below 0
    };
    for (const auto& c : cases) {
        ProgramBuilder pb;
        if (c.alone) pb.Ins(c.f, c.l, c.a);
        else pb.Begin(1).Lit(0);
        EXPECT_EQ(pb.Ins(c.f, c.l, c.a).RunMain(), Texts{c.message}) << c.message << c.alone;
        EXPECT_EQ(pb.ui.ui.events[0].caption, "");
        EXPECT_EQ(pb.ui.ui.events[0].icon, CUserInterface::IconError);
        EXPECT_EQ(pb.machine.failed, 1);
        // p stands behind the failing instruction, or on the bad address.
        intptr_t p = c.alone ? 1 : c.f == JMP ? std::min<intptr_t>(c.a, INT32_MAX) : 3;
        EXPECT_EQ(pb.machine.p, p) << c.message;
    }
    ProgramBuilder tiny;  // a divisor within 0.00001 of 0 is 0
    tiny.Begin(0).Lit(1).Lit(Double(0.000001)).Op(oprDivide);
    EXPECT_EQ(tiny.RunMain(), Texts{"Division durch Null"});

    ProgramBuilder recursion;  // PROCEDURE p; BEGIN p END
    recursion.Ins(JMP, 0, 4, "main").Ins(INT, 0, 4, "proc. p").Ins(CALL, 1, 1).Op(oprRet);
    EXPECT_EQ(recursion.Begin(0).Ins(CALL, 0, 1).RunMain(), Texts{"Stacküberlauf."});
    EXPECT_EQ(recursion.machine.stackCapacity, 1040000);
}

TEST(Interpreter, StackGrowthKeepsEveryCell) {
    // A procedure is entered with t near the end of the stack; its INT grows
    // the stack while the links that CALL wrote above t are still needed.
    ProgramBuilder pb;
    pb.Ins(JMP, 0, 3, "main").Ins(INT, 0, 20, "proc. p").Op(oprRet).Begin(0);
    const int pushed = 9980;  // t ends at 9983: CALL fits, the INT behind it grows
    auto cell = [](int i) { return CString((i % 3 ? "" : "s") + std::to_string(i)); };
    for (int i = 0; i < pushed; ++i) pb.Lit(i % 3 ? Int(i) : Text(cell(i)));
    pb.Ins(CALL, 0, 1).Lit(77).Write().Ins(INT, 0, -pushed);
    EXPECT_EQ(pb.RunMain(), Texts{"Zahl\n77"});
    EXPECT_EQ(pb.machine.stackCapacity, 20000);
    for (int i = 0; i < pushed; ++i) ASSERT_EQ(CString(pb.Cell(4 + i)), cell(i)) << i;
}

TEST(Interpreter, StaticLinksReachOuterVariables) {
    // main: x := 5; CALL p; p reads x one level out, writes y := x + 1.
    ProgramBuilder w;
    w.Ins(JMP, 0, 7, "main").Ins(INT, 0, 3, "proc. p").Ins(LOD, 1, 3).Lit(1).Op(oprPlus);
    w.Ins(STO, 1, 4).Op(oprRet);
    w.Begin(2).Lit(5).Ins(STO, 0, 3).Ins(CALL, 0, 1).Ins(LOD, 0, 4).Write("y");
    EXPECT_EQ(w.RunMain(), Texts{"y\n6"});
}

TEST(Interpreter, ArraysAreCheckedAgainstTheirSize) {
    // Array of 3 at offset 3 (size cell), a guard variable at offset 7.
    for (int index : {2, 3, -1}) {
        for (bool store : {false, true}) {
            ProgramBuilder w;
            w.Ins(INT, 0, 3, "main").Lit(Int(3), "Arraygröße").Ins(INT, 0, 3).Ins(INT, 0, 1);
            for (int i = 0; i < 3; ++i) w.Lit(i).Lit(10 * (i + 1)).Ins(STOI, 0, 3);
            w.Lit(99).Ins(STO, 0, 7).Lit(index);
            if (store) w.Lit(-5).Ins(STOI, 0, 3).Lit(index);
            w.Ins(LODI, 0, 3).Write("e").Ins(LOD, 0, 3).Op(oprDecrement).Write("high");
            CString error;
            error.Format("Array-Index %d außerhalb der Grenzen 0 bis 2.", index);
            Texts expected = index == 2 ? Texts{store ? "e\n-5" : "e\n30", "high\n2"} : Texts{error};
            EXPECT_EQ(w.RunMain(), expected) << index << store;
            EXPECT_EQ(w.Cell(4).intValue, 3) << "the size cell is untouched";
            EXPECT_EQ(w.Cell(8).intValue, 99) << "the cell behind is untouched";
        }
    }
}

TEST(Interpreter, CellsKeepTheirOwnTextThroughLoadStoreAndSwap) {
    ProgramBuilder w;
    w.Begin(2).Lit(Text("eins")).Ins(STO, 0, 3).Ins(LOD, 0, 3).Ins(STO, 0, 4);
    w.Ins(LOD, 0, 4).Lit(Text("!")).Op(oprPlus).Ins(STO, 0, 4);
    EXPECT_EQ(w.RunMain(), Texts{});
    EXPECT_EQ(CString(w.Cell(4)), "eins");
    EXPECT_EQ(CString(w.Cell(5)), "eins!");
    EXPECT_NE(w.Cell(4).stringValue, w.machine.code[1].value.stringValue);

    // Two values on the stack are stored back into a[0], a[1] from the top.
    ProgramBuilder s;
    s.Ins(INT, 0, 3, "main").Lit(Int(2), "Arraygröße").Ins(INT, 0, 2).Lit(Text("erstes")).Lit(20);
    s.Lit(1).Ins(SWAP, 0, 0).Ins(STOI, 0, 3).Lit(0).Ins(SWAP, 0, 0).Ins(STOI, 0, 3);
    EXPECT_EQ(s.Lit(1).Ins(LODI, 0, 3).Write("a1").RunMain(), Texts{"a1\n20"});
    EXPECT_EQ(CString(s.Cell(5)), "erstes");
}
