#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/test_support.h"
#include "tests/machine/program_builder.h"

TEST(Generator, FixupOfTheLastJumpRemovesItAndTheSlotIsReused) {
    ProgramBuilder pb;
    pb.Ins(JMP, 0, 0, "main");
    EXPECT_EQ(pb.gen.Label(), 1);
    pb.gen.fixup(0);
    EXPECT_EQ(pb.gen.cx, 0);
    pb.Ins(INT, 0, 4, "main");
    EXPECT_EQ(pb.gen.cx, 1);
    EXPECT_EQ(pb.machine.code[0].f, INT);
    EXPECT_EQ(pb.machine.code[0].a, 4);
    EXPECT_EQ(pb.machine.code[0].comment, "main");

    pb.Ins(JMP, 0, 0);
    pb.LitInt(1);
    pb.gen.fixup(1);
    EXPECT_EQ(pb.machine.code[1].a, 3) << "a jump with code behind it is patched to cx";

    CUIntArray list;
    list.Add(0);
    list.Add(1);
    list.Add(99);  // beyond the code: ignored
    pb.gen.fixup(&list, 7);
    EXPECT_EQ(pb.machine.code[0].a, 7);
    EXPECT_EQ(pb.machine.code[1].a, 7);
    EXPECT_EQ(pb.gen.cx, 3) << "the list form never removes";
    pb.gen.fixup(nullptr, 1);
}

// IF c THEN x := 1 ELSE END: the jump at the end of the THEN branch would be
// the last instruction, but the false exit of the condition already lands
// behind it. The statement must still go on behind itself in both cases.
TEST(Generator, JumpsThatOtherJumpsLandBehindStay) {
    for (int condition : {0, 1}) {
        ScopedRecordingUi ui;
        ProgramBuilder pb;
        pb.Begin(1);
        pb.LitInt(condition);
        int pending = pb.gen.Label();
        pb.Ins(JPC, 0, 0);
        pb.LitInt(1);
        pb.Ins(STO, 0, 3);
        int endOfThen = pb.gen.Label();
        pb.Ins(JMP, 0, 0);
        pb.gen.fixup(pending);
        pb.gen.fixup(endOfThen);  // empty ELSE
        pb.LitInt(2);
        pb.Op(oprWrite);
        pb.Finish();
        pb.Run();
        EXPECT_EQ(ui.ui.Messages(), std::vector<CString>{"Zahl\n2"}) << condition;
        EXPECT_EQ(pb.machine.stack[4].intValue, condition ? 1 : 0);
    }
}

TEST(Generator, ConditionalJumpToTheNextInstructionStays) {
    ScopedRecordingUi ui;
    ProgramBuilder pb;
    pb.Begin(0);
    pb.LitInt(5);
    int pending = pb.gen.Label();
    pb.Ins(JPC, 0, 0);  // IF 5 THEN END
    pb.gen.fixup(pending);
    EXPECT_EQ(pb.gen.cx, 3);
    pb.Finish();
    pb.Run();
    EXPECT_EQ(pb.machine.failed, 0);
    EXPECT_EQ(pb.machine.t, 0) << "the condition was popped";
}

TEST(Generator, CodeStoreGrowsAndKeepsItsInstructions) {
    ProgramBuilder pb;
    EXPECT_EQ(pb.machine.codeCapacity, 10000);
    for (int i = 0; i < 9901; ++i) pb.Lit(ProgramBuilder::Text(std::to_string(i).c_str()));
    EXPECT_EQ(pb.machine.codeCapacity, 10000);
    pb.Ins(JMP, 2, 17, "x");
    EXPECT_EQ(pb.machine.codeCapacity, 20000);
    EXPECT_EQ(static_cast<CString>(pb.machine.code[9900].value), "9900");
    EXPECT_EQ(static_cast<CString>(pb.machine.code[0].value), "0");
    EXPECT_EQ(pb.machine.code[9901].GetText(9901), "9901:\tJMP 2, 17, \"x\"\n");
}

TEST(Listing, LinesOfEveryKind) {
    Instruction jump;
    jump.f = JMP;
    jump.a = 12;
    jump.comment = "main";
    EXPECT_EQ(jump.GetText(0), "0:\tJMP 0, 12, \"main\"\n");

    Instruction lit;
    lit.value = 7;
    EXPECT_EQ(lit.GetText(3), "3:\tLIT (int)7\n");
    lit.value = 2.5;
    lit.comment = "Arraygröße";
    EXPECT_EQ(lit.GetText(4), "4:\tLIT (double)2.500000, \"Arraygröße\"\n");
    lit.value.SetString("Hallo");
    lit.comment.Empty();
    EXPECT_EQ(lit.GetText(5), "5:\tLIT \"Hallo\"\n");
    Instruction noValue;
    EXPECT_EQ(noValue.GetText(6), "6:\tLIT (?)0\n");

    Instruction opr;
    opr.f = OPR;
    const char* expected[] = {"<", ">=", ">", "<="};
    for (int a = oprLess; a <= oprLessEqual; ++a) {
        opr.a = a;
        EXPECT_EQ(opr.GetText(1), CString("1:\tOPR ") + expected[a - oprLess] + "\n");
    }
    opr.a = oprReadDouble;
    EXPECT_EQ(opr.GetText(1), "1:\tOPR ReadDouble\n");
    opr.a = 99;
    EXPECT_EQ(opr.GetText(1), "1:\tOPR ?\n");

    Instruction call;
    call.f = EXTCALL;
    call.l = 1;
    call.a = 0x1234;
    call.comment = "sin";
    EXPECT_EQ(call.GetText(8), "8:\tEXTCALL, \"sin\"\n");

    Instruction stoi;
    stoi.f = STOI;
    stoi.l = 1;
    stoi.a = -5;
    EXPECT_EQ(stoi.GetText(9), "9:\tSTOI 1, -5\n");
    stoi.f = 200;
    EXPECT_EQ(stoi.GetText(9), "9:\t? 1, -5\n");
}

TEST(Listing, FileIsWrittenOnlyWhenSwitchedOn) {
    namespace fs = std::filesystem;
    const std::string dir = MakeTempDir("machine-listing");
    const std::string file = dir + "out.asm";
    ProgramBuilder pb;
    pb.Begin(0);
    pb.Lit(ProgramBuilder::Int(3), "Arraygröße");
    pb.Finish();

    ASSERT_TRUE(DebugListingFile.IsEmpty()) << "the listing is off by default";
    pb.gen.DebugFlushToFile();
    EXPECT_FALSE(fs::exists(file));

    WriteFileBytes(file, "earlier contents that are longer than the listing itself ...........");
    DebugListingFile = file.c_str();
    pb.gen.DebugFlushToFile();
    EXPECT_EQ(ReadFileBytes(file),
              "0:\tINT 0, 3, \"main\"\n1:\tLIT (int)3, \"Arraygr\xC3\xB6\xC3\x9F" "e\"\n"
              "2:\tOPR RET\n");

    DebugListingFile = (dir + "missing/dir/out.asm").c_str();
    pb.gen.DebugFlushToFile();  // cannot be opened: no message, no file
    EXPECT_FALSE(fs::exists(dir + "missing"));
    DebugListingFile.Empty();
}
