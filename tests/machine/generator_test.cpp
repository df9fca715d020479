#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/memory_budget.h"
#include "tests/machine/program_builder.h"

TEST(Generator, FixupOfTheLastJumpRemovesItAndTheSlotIsReused) {
    ProgramBuilder pb;
    pb.Ins(JMP, 0, 0, "main").gen.fixup(0);
    EXPECT_EQ(pb.gen.cx, 0);
    pb.Ins(INT, 0, 4, "main");
    EXPECT_EQ(pb.machine.code[0].GetText(0), "0:\tINT 0, 4, \"main\"\n");

    pb.Ins(JMP, 0, 0).Lit(1).gen.fixup(1);
    EXPECT_EQ(pb.machine.code[1].a, 3) << "a jump with code behind it is patched to cx";

    CUIntArray list;
    for (unsigned at : {0u, 1u, 99u}) list.Add(at);  // 99 lies beyond the code: ignored
    pb.gen.fixup(&list, 7);
    EXPECT_EQ(pb.machine.code[0].a, 7);
    EXPECT_EQ(pb.machine.code[1].a, 7);
    EXPECT_EQ(pb.gen.cx, 3) << "the list form never removes";
    pb.gen.fixup(nullptr, 1);
}

TEST(Generator, JumpsThatMustStay) {
    // IF c THEN x := 1 ELSE END: the jump at the end of the THEN branch is the
    // last instruction, but the false exit of the condition lands behind it.
    for (int condition : {0, 1}) {
        ProgramBuilder pb;
        int pending = pb.Begin(1).Lit(condition).gen.Label();
        int endOfThen = pb.Ins(JPC, 0, 0).Lit(1).Ins(STO, 0, 3).gen.Label();
        pb.Ins(JMP, 0, 0).gen.fixup(pending);
        pb.gen.fixup(endOfThen);  // empty ELSE
        EXPECT_EQ(pb.Lit(2).Write().RunMain(), Texts{"Zahl\n2"}) << condition;
        EXPECT_EQ(pb.Cell(4).intValue, condition);
    }
    // IF 5 THEN END: a conditional jump to the next instruction pops its condition.
    ProgramBuilder pb;
    int pending = pb.Begin(0).Lit(5).gen.Label();
    pb.Ins(JPC, 0, 0).gen.fixup(pending);
    EXPECT_EQ(pb.gen.cx, 3);
    EXPECT_EQ(pb.RunMain(), Texts{});
    EXPECT_EQ(pb.machine.t, 0);
}

TEST(Generator, CodeStoreGrowsAndKeepsItsInstructions) {
    ProgramBuilder pb;
    for (int i = 0; i < 9901; ++i) pb.Lit(Text(std::to_string(i)));
    EXPECT_EQ(pb.machine.codeCapacity, 10000);
    pb.Ins(JMP, 2, 17, "x");
    EXPECT_EQ(pb.machine.codeCapacity, 20000);
    EXPECT_EQ(CString(pb.machine.code[9900].value), "9900");
    EXPECT_EQ(CString(pb.machine.code[0].value), "0");
    EXPECT_EQ(pb.machine.code[9901].GetText(9901), "9901:\tJMP 2, 17, \"x\"\n");
    EXPECT_EQ(pb.machine.code[19999].GetText(19999), "19999:\tLIT (?)0\n") << "a new slot is a default one";
}

// Each step is charged to the host's budget when it is made. Past its
// reservation the store moves and keeps what it holds; a reservation planned
// ahead lets it grow without moving.
TEST(Generator, CodeStoreStepsAreChargedAndOutgrowTheReservation) {
    for (bool planned : {false, true}) {
        qelkern::MemoryBudget budget(size_t{1} << 40);
        ProgramBuilder pb;
        if (planned) pb.gen.ForeseeCode(1200000);
        const Instruction* const first = pb.machine.code;
        pb.Lit(Text("kept"), "with a text that must move along");
        const size_t before = budget.Used();
        for (int i = 1; i < 9902; ++i) pb.Ins(JMP, 0, i);
        EXPECT_EQ(budget.Used() - before, 10000 * sizeof(Instruction));
        for (int i = 9902; i < 1100000; ++i) pb.Ins(JMP, 0, i);
        EXPECT_EQ(pb.machine.codeCapacity, 1110000);
        EXPECT_EQ(budget.Used() - before, 1100000 * sizeof(Instruction));
        EXPECT_EQ(pb.machine.code == first, planned);
        EXPECT_EQ(pb.machine.code[0].GetText(0), "0:\tLIT \"kept\", \"with a text that must move along\"\n");
        EXPECT_EQ(pb.machine.code[1].a, 1);
        EXPECT_EQ(pb.machine.code[1099999].a, 1099999);
        EXPECT_EQ(pb.machine.code[1100000].f, LIT);
    }
}

TEST(Listing, LinesOfEveryKind) {
    const struct {
        int f, l;
        intptr_t a;
        VALUE value;
        const char* comment;
        const char* line;
    } cases[] = {
        {LIT, 0, 0, Double(2.5), "Arraygröße", "0:\tLIT (double)2.500000, \"Arraygröße\"\n"},
        {LIT, 0, 0, Text("Hallo"), "", "1:\tLIT \"Hallo\"\n"},
        {OPR, 0, oprLess, {}, "", "2:\tOPR <\n"},
        {OPR, 0, oprGreaterEqual, {}, "", "3:\tOPR >=\n"},
        {OPR, 0, oprGreater, {}, "", "4:\tOPR >\n"},
        {OPR, 0, oprLessEqual, {}, "", "5:\tOPR <=\n"},
        {OPR, 0, oprReadDouble, {}, "", "6:\tOPR ReadDouble\n"},
        {OPR, 0, 99, {}, "", "7:\tOPR ?\n"},
        {EXTCALL, 1, 0x1234, {}, "sin", "8:\tEXTCALL, \"sin\"\n"},
        {STOI, 1, -5, {}, "", "9:\tSTOI 1, -5\n"},
        {200, 1, -5, {}, "", "10:\t? 1, -5\n"},
    };
    int index = 0;
    for (const auto& c : cases) {
        Instruction ins;
        ins.f = static_cast<uint8_t>(c.f);
        ins.l = c.l;
        ins.a = c.a;
        ins.value = c.value;
        ins.comment = c.comment;
        EXPECT_EQ(ins.GetText(index++), c.line);
    }
    EXPECT_EQ(Instruction().GetText(4), "4:\tLIT (?)0\n") << "a new instruction holds no value";
}

TEST(Listing, FileIsWrittenOnlyWhenSwitchedOn) {
    const std::string dir = MakeTempDir("machine-listing");
    const std::string file = dir + "out.asm";
    ProgramBuilder pb;
    pb.Begin(0).Lit(Int(3), "Arraygröße").Op(oprRet);

    ASSERT_TRUE(DebugListingFile.IsEmpty()) << "the listing is off by default";
    pb.gen.DebugFlushToFile();
    EXPECT_FALSE(std::filesystem::exists(file));

    WriteFileBytes(file, "earlier contents that are longer than the listing itself ...........");
    DebugListingFile = file.c_str();
    pb.gen.DebugFlushToFile();
    EXPECT_EQ(ReadFileBytes(file),
              "0:\tINT 0, 3, \"main\"\n1:\tLIT (int)3, \"Arraygr\xC3\xB6\xC3\x9F" "e\"\n2:\tOPR RET\n");

    DebugListingFile = (dir + "missing/dir/out.asm").c_str();
    pb.gen.DebugFlushToFile();  // cannot be opened: no message, no file
    EXPECT_FALSE(std::filesystem::exists(dir + "missing"));
    EXPECT_EQ(pb.ui.ui.events.size(), 0u);
    DebugListingFile.Empty();
}
