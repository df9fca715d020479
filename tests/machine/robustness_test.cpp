// Code that no compiler made must not lead the machine outside its stack or
// code. Random programs with forward jumps only (so each ends), run under the
// sanitizers in CI, must end normally or with one run-time error.
#include <gtest/gtest.h>

#include <random>

#include "tests/machine/program_builder.h"

namespace {

// `length` random instructions; jumps and calls go forward only.
void FillRandomly(ProgramBuilder& pb, unsigned seed, int length) {
    std::mt19937 random(seed);
    auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
    auto operand = [&]() -> intptr_t {
        switch (pick(0, 5)) {
            case 0: return pick(-12, -1);
            case 1: return pick(1000, 2000000);
            case 2: return -(intptr_t(1) << 40);
            default: return pick(0, 12);
        }
    };
    auto literal = [&] {
        VALUE v;
        switch (pick(0, 5)) {
            case 0: v = pick(-3, 3); break;
            case 1: v = pick(-3, 3) * 0.5; break;
            case 2: v.SetString(pick(0, 1) ? "0" : "7x"); break;
            case 3: v.type = 0; v.intValue = 0; break;
            case 4: v.type = 60; v.intValue = pick(-3, 3); break;
            default: v = pick(INT32_MIN, INT32_MAX); break;
        }
        return v;
    };
    for (int at = 0; at < length; ++at) {
        int f = pick(0, 12);  // 12: no such opcode
        int l = pick(-1, 3);
        if (f == LIT) pb.Lit(literal());
        else if (f == OPR) pb.Op(static_cast<Operation>(pick(1, 27)));  // no RET: it could jump back
        else if (f == JMP || f == JPC || f == CALL)
            pb.Ins(f, l, pick(0, 3) == 0 ? pick(-3, 0) : at + pick(1, 5));
        else if (f == EXTCALL) pb.Ins(EXTCALL, l, 0);  // only a missing routine can be made safely
        else pb.Ins(f, l, operand());
    }
}

}  // namespace

TEST(Robustness, RandomCodeStaysInsideStackAndCode) {
    int failedRuns = 0;
    for (unsigned seed = 1; seed <= 1500; ++seed) {
        ProgramBuilder pb;
        FillRandomly(pb, seed, 60);
        pb.Run();
        const auto& events = pb.ui.ui.events;
        int errors = 0;
        for (const UiEvent& event : events) errors += event.icon == CUserInterface::IconError;
        ASSERT_EQ(errors, pb.machine.failed) << "seed " << seed;
        if (errors) { ASSERT_EQ(events.back().icon, CUserInterface::IconError) << seed; }
        failedRuns += pb.machine.failed;
    }
    EXPECT_GT(failedRuns, 0);
    EXPECT_LT(failedRuns, 1500);
}
