// Code that no compiler made must not lead the machine outside its stack or
// code. Random programs with forward jumps only (so each ends), run under the
// sanitizers in CI, must end normally or with one run-time error.
#include <gtest/gtest.h>

#include <random>

#include "support/test_support.h"
#include "tests/machine/program_builder.h"

namespace {

class RandomCode {
public:
    explicit RandomCode(unsigned seed) : random(seed) {}

    void Fill(ProgramBuilder& pb, int length) {
        for (int at = 0; at < length; ++at) {
            int f = Pick(0, 12);  // 12: no such opcode
            int l = Pick(-1, 3);
            if (f == LIT) {
                pb.Lit(Literal());
            } else if (f == OPR) {
                pb.Op(static_cast<Operation>(Pick(1, 27)));  // no RET: it could jump back
            } else if (f == JMP || f == JPC || f == CALL) {
                pb.Ins(static_cast<Opcode>(f), l, Pick(0, 3) == 0 ? Pick(-3, 0) : at + Pick(1, 5));
            } else if (f == EXTCALL) {
                pb.Ins(EXTCALL, l, 0);  // only a missing routine can be made safely
            } else {
                pb.Ins(static_cast<Opcode>(f), l, Operand());
            }
        }
    }

private:
    int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }

    intptr_t Operand() {
        switch (Pick(0, 5)) {
            case 0: return Pick(-12, -1);
            case 1: return Pick(1000, 2000000);
            case 2: return -(intptr_t(1) << 40);
            default: return Pick(0, 12);
        }
    }

    VALUE Literal() {
        VALUE v;
        switch (Pick(0, 5)) {
            case 0: v = Pick(-3, 3); break;
            case 1: v = Pick(-3, 3) * 0.5; break;
            case 2: v.SetString(Pick(0, 1) ? "0" : "7x"); break;
            case 3: v.type = 0; v.intValue = 0; break;
            case 4: v.type = 60; v.intValue = Pick(-3, 3); break;
            default: v = Pick(INT32_MIN, INT32_MAX); break;
        }
        return v;
    }

    std::mt19937 random;
};

}  // namespace

TEST(Robustness, RandomCodeStaysInsideStackAndCode) {
    int failedRuns = 0;
    for (unsigned seed = 1; seed <= 1500; ++seed) {
        ScopedRecordingUi ui;
        ProgramBuilder pb;
        RandomCode(seed).Fill(pb, 60);
        pb.Run();
        int errors = 0;
        for (const UiEvent& event : ui.ui.events)
            if (event.icon == CUserInterface::IconError) ++errors;
        ASSERT_EQ(errors, pb.machine.failed) << "seed " << seed;
        if (errors) {
            ASSERT_EQ(ui.ui.events.back().icon, CUserInterface::IconError) << seed;
        }
        failedRuns += pb.machine.failed;
    }
    EXPECT_GT(failedRuns, 0);
    EXPECT_LT(failedRuns, 1500);
}
