// The dispatch loop on straight integer work, built without the compiler:
// sum := 0; i := 0; WHILE i < n DO sum := sum + i; i := i + 1 END.
#include <benchmark/benchmark.h>

#include "qelkern/machine.h"
#include "qelkern/runcontrol.h"

namespace {

VALUE Int(int number) {
    VALUE v;
    v = number;
    return v;
}

void BuildSumLoop(CGenerator& gen, int n) {
    const int i = 3, sum = 4;
    gen.Gen(INT, 0, 5, "main");
    gen.Gen(LIT, 0, Int(0));
    gen.Gen(STO, 0, i);
    gen.Gen(LIT, 0, Int(0));
    gen.Gen(STO, 0, sum);
    int loop = gen.Label();
    gen.Gen(LOD, 0, i);
    gen.Gen(LIT, 0, Int(n));
    gen.Gen(OPR, 0, oprLess);
    int exit = gen.Label();
    gen.Gen(JPC, 0, 0);
    gen.Gen(LOD, 0, sum);
    gen.Gen(LOD, 0, i);
    gen.Gen(OPR, 0, oprPlus);
    gen.Gen(STO, 0, sum);
    gen.Gen(LOD, 0, i);
    gen.Gen(OPR, 0, oprIncrement);
    gen.Gen(STO, 0, i);
    gen.Gen(JMP, 0, loop);
    gen.fixup(exit);
    gen.Gen(OPR, 0, oprRet);
}

void IntegerAdditions(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        CInterpreter machine;
        CGenerator gen(&machine);
        BuildSumLoop(gen, n);
        machine.Interpret();
        if (machine.failed || machine.stack[5].intValue != static_cast<int>(
                                                             static_cast<long long>(n) * (n - 1) / 2))
            state.SkipWithError("wrong sum");
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(n));
}
BENCHMARK(IntegerAdditions)->Arg(10'000'000)->Unit(benchmark::kMillisecond);

// The same with a host's run control attached: a step budget and a time
// limit that are never reached, so the run watch looks about every
// millisecond and changes nothing.
void IntegerAdditionsUnderRunControl(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    CRunControl control;
    control.maxSteps = uint64_t(1) << 40;
    control.timeoutMilliseconds = 3'600'000;
    for (auto _ : state) {
        CInterpreter machine;
        machine.control = &control;
        CGenerator gen(&machine);
        BuildSumLoop(gen, n);
        machine.Interpret();
        if (machine.failed || control.stopCause != StopCause::None) state.SkipWithError("stopped");
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(n));
}
BENCHMARK(IntegerAdditionsUnderRunControl)->Arg(10'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
