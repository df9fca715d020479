// A recursive script run through RunScript, without a debugger and with one
// that never pauses: the first is the path every host takes, the second
// shows what single-stepping with a look at each statement costs.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "qelkern/qelkern.h"

namespace {

const char* const fibonacci =
    "VAR r : INTEGER;\n"
    "FUNCTION fib(n : INTEGER) : INTEGER;\n"
    "BEGIN\n"
    "  IF n < 2 THEN fib := n ELSE fib := fib(n - 1) + fib(n - 2) END\n"
    "END;\n"
    "BEGIN\n"
    "  r := fib(22)\n"
    "END.\n";

class NeverPausing : public CDebugger {
public:
    DebugCommand OnPause(const CDebugPause&) override { return DebugCommand::Continue; }
};

void RunFibonacci(benchmark::State& state, CDebugger* debugger) {
    const std::string noPrelude = (std::filesystem::temp_directory_path() / "qel-bench-none/").string();
    pDebugger = debugger;
    for (auto _ : state) {
        std::string text = fibonacci;
        if (RunScript(noPrelude.c_str(), text.data(), static_cast<int>(text.size()), true, true) != 1)
            state.SkipWithError("run failed");
    }
    pDebugger = nullptr;
}

void ScriptWithoutDebugger(benchmark::State& state) { RunFibonacci(state, nullptr); }
BENCHMARK(ScriptWithoutDebugger)->Unit(benchmark::kMillisecond);

void ScriptUnderDebugger(benchmark::State& state) {
    NeverPausing debugger;
    RunFibonacci(state, &debugger);
}
BENCHMARK(ScriptUnderDebugger)->Unit(benchmark::kMillisecond);

}  // namespace
