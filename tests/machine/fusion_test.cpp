// The fused steps against the plain ones: random programs made of the
// compiler's frequent sequences, with loops, texts, untagged literals, bad
// offsets and a stack near its end, must leave the same cells (also above
// t), registers, messages and step count either way.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "machine/decode.h"
#include "qelkern/runcontrol.h"
#include "tests/machine/program_builder.h"

namespace {

constexpr int variables = 6;
constexpr int arrayAt = 3 + variables;  // its size cell; the elements follow
constexpr int arraySize = 4;
const Operation binaries[] = {oprPlus, oprMinus, oprTimes, oprDivide, oprEqual, oprNotEqual,
                              oprLess, oprGreaterEqual, oprGreater, oprLessEqual, oprBitOr,
                              oprBitAnd, oprOr, oprAnd};

class ProgramMaker {
public:
    ProgramMaker(ProgramBuilder& builder, unsigned seed) : pb(builder), random(seed) {}

    // Returns the size of the main block's frame.
    int Make(int pieces) {
        // BITOR and BITAND read a text cell's pointer as a number, which no
        // two runs share: a program has texts or those, not both.
        texts = Pick(0, 1) == 0;
        // Now and then the frame reaches close to the end of the first stack.
        const int frame = Pick(0, 3) == 0 ? Pick(9975, 9995) : arrayAt + 1 + arraySize;
        pb.Begin(frame - 3).Lit(arraySize).Ins(STO, 0, arrayAt);
        // Integers and doubles side by side, for pairs of one tag and mixed ones.
        for (int v = 3; v < 3 + variables; ++v)
            if (Pick(0, 1)) pb.Lit(Double(Pick(-3, 3) * 0.75)).Ins(STO, 0, v);
        for (int i = 0; i < pieces; ++i) Piece();
        // Not RET: the links may hold texts by now, whose pointers differ.
        pb.Ins(JMP, 0, 0);
        return frame;
    }

private:
    int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }
    intptr_t Variable() { return Pick(0, 15) == 0 ? Pick(-4, 12) : 3 + Pick(0, variables - 1); }
    Operation Binary() {
        const Operation operation = binaries[Pick(0, 13)];
        return texts && (operation == oprBitOr || operation == oprBitAnd) ? oprPlus : operation;
    }
    Operation Relation() { return binaries[Pick(4, 9)]; }
    VALUE Literal() {
        VALUE v;
        switch (Pick(0, 9)) {
            case 0:
            case 3: v = Pick(0, 2) == 0 ? 0.000004 : Pick(-2, 2) * 0.5; break;
            case 1:
                if (texts) v.SetString(Pick(0, 2) == 0 ? "0" : Pick(0, 1) ? "7x" : "");
                break;
            case 2: v.type = Pick(0, 1) ? 0 : 60; v.intValue = 0; break;
            default: v = Pick(-3, 9); break;
        }
        return v;
    }
    int Here() { return pb.gen.Label(); }
    void Load() { pb.Ins(LOD, 0, Variable()); }
    void Store() { pb.Ins(STO, 0, Variable()); }

    void Piece() {
        switch (Pick(0, 23)) {
            case 0: Load(); pb.Lit(Literal()).Op(Binary()); break;
            case 1: Load(); Load(); pb.Op(Binary()); break;
            case 2: Load(); pb.Lit(Literal()).Op(Relation()).Ins(JPC, 0, Here() + 2 + Pick(1, 4)); break;
            case 3: Load(); Load(); pb.Op(Relation()).Ins(JPC, 0, Here() + 2 + Pick(1, 4)); break;
            case 4: {
                const intptr_t v = Variable();
                pb.Ins(LOD, 0, v).Op(Pick(0, 1) ? oprIncrement : oprDecrement).Ins(STO, 0, v);
                break;
            }
            case 5: pb.Lit(Literal()); Store(); break;
            case 6: Load(); pb.Lit(Literal()).Op(Binary()); Store(); break;
            case 7: pb.Op(Binary()); Store(); break;
            case 8: pb.Lit(Literal()).Op(Binary()); break;
            case 9: Load(); break;
            case 10: pb.Lit(Literal()); break;
            case 11: Store(); break;
            case 12: pb.Ins(Pick(0, 1) ? JPC : JMP, 0, Pick(1, Here())); break;  // back: a loop
            case 13: Load(); pb.Ins(LODI, 0, arrayAt); break;
            case 14: Load(); pb.Lit(Literal()).Ins(STOI, 0, arrayAt); break;
            case 15: pb.Op(Relation()).Ins(JPC, 0, Here() + 2 + Pick(1, 4)); break;
            case 16: Load(); Load(); pb.Op(Binary()); Store(); break;
            case 17: Load(); pb.Op(Binary()); break;
            case 18: pb.Lit(Literal()).Op(Relation()).Ins(JPC, 0, Here() + 3 + Pick(1, 4)); break;
            case 19: pb.Lit(Literal()); Load(); pb.Op(Binary()); break;
            case 20: Load(); Store(); break;
            case 21: CountingLoop(); break;
            case 22:  // two operations and a store, not fused with the loads before
                Load();
                Load();
                if (Pick(0, 1)) Load(); else pb.Lit(Literal());
                pb.Ins(INT, 0, 0).Op(Binary()).Op(Binary());
                Store();
                break;
            default: pb.Ins(INT, 0, Pick(-3, 3)); break;
        }
    }

    // FOR v := ... TO (DOWNTO) bound DO body END, the counter mostly an
    // integer, the bound a literal of any tag or two and their sum or
    // difference; now and then the head tests another variable or runs the
    // other way than the counter.
    void CountingLoop() {
        const intptr_t v = Variable();
        const bool up = Pick(0, 1);
        const int head = Here();
        pb.Ins(LOD, 0, Pick(0, 7) ? v : Variable());
        pb.Lit(Pick(0, 3) ? Int(Pick(-2, 12)) : Literal());
        if (Pick(0, 2) == 0)  // TO n - 1
            pb.Lit(Pick(0, 3) ? Int(Pick(-2, 2)) : Literal()).Op(Pick(0, 1) ? oprPlus : oprMinus);
        pb.Op(up == (Pick(0, 7) > 0) ? oprLessEqual : oprGreaterEqual).Ins(JPC, 0, Here() + 7);
        if (Pick(0, 1)) Load(); else pb.Lit(Literal());
        Store();
        pb.Ins(LOD, 0, v).Op(up ? oprIncrement : oprDecrement).Ins(STO, 0, v).Ins(JMP, 0, head);
    }

    ProgramBuilder& pb;
    std::mt19937 random;
    bool texts = false;
};

// What a run leaves: messages, registers, steps, and every cell of the stack.
struct Outcome {
    Texts messages;
    int p, b, t, failed;
    uint64_t steps;
    int length;  // of the program
    std::vector<std::pair<int, std::string>> cells;  // tag and payload
};

// Unwatched, no control is attached, and the steps go uncounted. Without
// the fast loop every step is a general one.
template <class Maker>
Outcome RunBuilt(Maker make, bool fused, bool watched = true, bool fast = true) {
    ProgramBuilder pb;
    CRunControl control;
    control.maxSteps = 4000;  // loops end here, at the same jump either way
    const int frame = make(pb);
    pb.machine.control = watched ? &control : nullptr;
    qelkern::fuseSteps = fused;
    qelkern::fastLoop = fast;
    Outcome outcome{pb.Run(), pb.machine.p, pb.machine.b, pb.machine.t, pb.machine.failed,
                    control.stepsTaken, pb.gen.Label(), {}};
    qelkern::fuseSteps = true;
    qelkern::fastLoop = true;
    // The cells that a program can reach: those of the frame's start and
    // those above its end, as far as 40 pieces can push.
    std::vector<int> reached;
    for (int i = 0; i < 200; ++i) reached.push_back(i);
    for (int i = std::max(200, frame - 10); i < std::min(pb.machine.stackCapacity, frame + 200); ++i)
        reached.push_back(i);
    for (int i : reached) {
        const VALUE& cell = pb.Cell(i);
        std::string payload = cell.type == 57 ? cell.GetStringPtr()->str()
                                              : std::string(reinterpret_cast<const char*>(&cell.doubleValue), 8);
        outcome.cells.emplace_back(cell.type, payload);
    }
    return outcome;
}

Outcome RunMade(unsigned seed, bool fused, bool watched = true, bool fast = true) {
    return RunBuilt([seed](ProgramBuilder& pb) { return ProgramMaker(pb, seed).Make(40); }, fused,
                    watched, fast);
}

}  // namespace

void ExpectSame(const Outcome& fused, const Outcome& plain, unsigned seed) {
    ASSERT_EQ(fused.messages, plain.messages) << "seed " << seed;
    ASSERT_EQ(fused.p, plain.p) << "seed " << seed;
    ASSERT_EQ(fused.b, plain.b) << "seed " << seed;
    ASSERT_EQ(fused.t, plain.t) << "seed " << seed;
    ASSERT_EQ(fused.failed, plain.failed) << "seed " << seed;
    ASSERT_EQ(fused.steps, plain.steps) << "seed " << seed;
    ASSERT_EQ(fused.cells.size(), plain.cells.size()) << "seed " << seed;
    for (size_t i = 0; i < plain.cells.size(); ++i)
        ASSERT_EQ(fused.cells[i], plain.cells[i]) << "seed " << seed << " cell " << i;
}

// The fast loop's plain steps, texts among them, against the general step.
TEST(FastLoop, DoesWhatTheGeneralStepDoes) {
    for (unsigned seed = 1; seed <= 600; ++seed) {
        const Outcome general = RunMade(seed, false, true, false);
        ExpectSame(RunMade(seed, false), general, seed);
        if (HasFatalFailure()) return;
        ExpectSame(RunMade(seed, true), general, seed);
        if (HasFatalFailure()) return;
    }
}

TEST(FusedSteps, DoWhatThePlainStepsDo) {
    int stopped = 0, failed = 0, looped = 0;
    for (unsigned seed = 1; seed <= 1000; ++seed) {
        const Outcome plain = RunMade(seed, false);
        const Outcome fused = RunMade(seed, true);
        ExpectSame(fused, plain, seed);
        if (HasFatalFailure()) return;
        const bool budgetEnded = plain.messages == Texts{"Skript abgebrochen: Schrittgrenze erreicht."};
        stopped += budgetEnded;
        failed += plain.failed;
        if (!plain.failed || budgetEnded) continue;
        // An error ends this one by itself: so must the loop that counts nothing.
        const Outcome unwatched = RunMade(seed, true, false);
        ASSERT_EQ(unwatched.messages, plain.messages) << "seed " << seed;
        ASSERT_EQ(unwatched.p, plain.p) << "seed " << seed;
        ASSERT_EQ(unwatched.b, plain.b) << "seed " << seed;
        ASSERT_EQ(unwatched.t, plain.t) << "seed " << seed;
        ASSERT_EQ(unwatched.failed, plain.failed) << "seed " << seed;
        ASSERT_EQ(unwatched.cells, plain.cells) << "seed " << seed;
        looped += plain.steps > static_cast<uint64_t>(plain.length);
    }
    // The programs reach both ends: loops that the budget stops, and errors,
    // also behind loops.
    EXPECT_GT(stopped, 100);
    EXPECT_GT(failed - stopped, 100);
    EXPECT_GT(looped, 10);
}

// Every fused form of every binary operation, and two arithmetic ones with a
// store, on integers, doubles and both mixed, with divisors at and near 0,
// over stale texts and numbers above t.
// INT 0, 0 in between keeps a sequence from fusing with what is before it.
TEST(FusedSteps, TakeEachPairOfNumberTagsAsThePlainStepsDo) {
    const VALUE operands[] = {Int(6), Int(0), Double(1.5), Double(0.000004), Double(-0.5)};
    int programs = 0;
    // The target: a variable of a text or a number, or a cell of the operands.
    auto Pick = [](int n) -> intptr_t { return n % 3 == 0 ? 5 : n % 3 == 1 ? 7 : 8; };
    using Form = void (*)(ProgramBuilder&, const VALUE&, Operation);
    const Form forms[] = {
        [](ProgramBuilder& pb, const VALUE& second, Operation o) { pb.Ins(LOD, 0, 3).Lit(second).Op(o); },
        [](ProgramBuilder& pb, const VALUE&, Operation o) { pb.Ins(LOD, 0, 3).Ins(LOD, 0, 4).Op(o); },
        [](ProgramBuilder& pb, const VALUE&, Operation o) {
            pb.Ins(LOD, 0, 3).Ins(LOD, 0, 4).Op(o).Ins(STO, 0, 5);
        },
        [](ProgramBuilder& pb, const VALUE& second, Operation o) {
            pb.Ins(LOD, 0, 3).Lit(second).Op(o).Ins(STO, 0, 5);
        },
        [](ProgramBuilder& pb, const VALUE& second, Operation o) {
            pb.Ins(LOD, 0, 3).Lit(second).Op(o).Ins(JPC, 0, pb.gen.Label() + 2).Lit(7);
        },
        [](ProgramBuilder& pb, const VALUE&, Operation o) {
            pb.Ins(LOD, 0, 3).Ins(LOD, 0, 4).Op(o).Ins(JPC, 0, pb.gen.Label() + 2).Lit(7);
        },
        [](ProgramBuilder& pb, const VALUE& second, Operation o) {
            pb.Ins(LOD, 0, 3).Ins(INT, 0, 0).Lit(second).Op(o);
        },
        [](ProgramBuilder& pb, const VALUE& second, Operation o) {
            pb.Ins(LOD, 0, 3).Ins(INT, 0, 0).Lit(second).Op(o).Ins(JPC, 0, pb.gen.Label() + 2).Lit(7);
        },
        [](ProgramBuilder& pb, const VALUE&, Operation o) {
            pb.Ins(LOD, 0, 3).Ins(INT, 0, 0).Ins(LOD, 0, 4).Op(o);
        },
        [](ProgramBuilder& pb, const VALUE&, Operation o) {
            pb.Ins(LOD, 0, 3).Ins(LOD, 0, 4).Ins(INT, 0, 0).Op(o).Ins(STO, 0, 5);
        },
        [](ProgramBuilder& pb, const VALUE&, Operation o) {
            pb.Ins(LOD, 0, 3).Ins(LOD, 0, 4).Ins(INT, 0, 0).Op(o).Ins(JPC, 0, pb.gen.Label() + 2).Lit(7);
        },
    };
    const Operation arithmetic[] = {oprPlus, oprMinus, oprTimes, oprDivide};
    for (const Operation first : arithmetic)
        for (const Operation then : arithmetic)
            for (const VALUE& a : operands)
                for (const VALUE& b : operands)
                    for (const VALUE& c : operands) {
                        const bool staleText = ++programs % 2 == 0;
                        auto make = [&](ProgramBuilder& pb) {
                            pb.Begin(4).Lit(a).Ins(STO, 0, 3).Lit(b).Ins(STO, 0, 4);
                            pb.Lit(staleText ? Text("alt") : Double(2.25)).Ins(STO, 0, 5);
                            pb.Ins(LOD, 0, 3).Ins(LOD, 0, 4).Lit(c).Ins(INT, 0, 0);
                            pb.Op(first).Op(then).Ins(STO, 0, Pick(programs));
                            pb.Ins(JMP, 0, 0);
                            return 7;
                        };
                        ExpectSame(RunBuilt(make, true), RunBuilt(make, false), programs);
                        if (HasFatalFailure()) return;
                    }
    const Operation numbers[] = {oprPlus, oprMinus, oprTimes, oprDivide, oprEqual, oprNotEqual,
                                 oprLess, oprGreaterEqual, oprGreater, oprLessEqual};
    for (const Operation o : numbers)
        for (const VALUE& first : operands)
            for (const VALUE& second : operands)
                for (const Form form : forms) {
                    const bool staleText = ++programs % 2 == 0;
                    auto make = [&](ProgramBuilder& pb) {
                        pb.Begin(4).Lit(first).Ins(STO, 0, 3).Lit(second).Ins(STO, 0, 4);
                        pb.Lit(staleText ? Text("alt") : Double(2.25)).Lit(Double(-7.5));
                        pb.Ins(INT, 0, -2);
                        form(pb, second, o);
                        pb.Ins(JMP, 0, 0);
                        return 7;
                    };
                    ExpectSame(RunBuilt(make, true), RunBuilt(make, false), programs);
                    if (HasFatalFailure()) return;
                }
}
