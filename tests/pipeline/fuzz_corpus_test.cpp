#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

#include "fuzz/compile_harness.h"
#include "fuzz/run_harness.h"
#include "support/test_support.h"

// The inputs kept from fuzzing, replayed through the fuzzers' own harnesses,
// so that every build (and the sanitizer build above all) checks them. Names
// starting "ok-" must succeed, "bad-" must fail; the rest once broke the
// library or seed the fuzzer and must simply end.
namespace {

bool StartsWith(const std::string& name, const char* prefix) { return name.rfind(prefix, 0) == 0; }

int ReplayCorpus(const char* harness, const std::function<int(const std::string&)>& replay) {
    int replayed = 0;
    for (const auto& entry : std::filesystem::directory_iterator(std::string(QEL_SOURCE_DIR "/fuzz/corpus/") + harness)) {
        const std::string name = entry.path().filename().string();
        SCOPED_TRACE(name);
        const int result = replay(ReadFileBytes(entry.path().string()));
        if (StartsWith(name, "ok-")) {
            EXPECT_EQ(result, 1);
        }
        if (StartsWith(name, "bad-")) {
            EXPECT_EQ(result, 0);
        }
        ++replayed;
    }
    return replayed;
}

const uint8_t* Bytes(const std::string& text) { return reinterpret_cast<const uint8_t*>(text.data()); }

}  // namespace

TEST(FuzzCorpus, CompileInputsEndAsTheirNamesSay) {
    const int replayed = ReplayCorpus("compile", [](const std::string& bytes) {
        return fuzz::CompileOne(Bytes(bytes), bytes.size());
    });
    EXPECT_GE(replayed, 20);
}

TEST(FuzzCorpus, RunInputsEndAsTheirNamesSayAndKeepTheRunsPromises) {
    const int replayed = ReplayCorpus("run", [](const std::string& bytes) {
        const fuzz::RunOutcome outcome = fuzz::RunOne(Bytes(bytes), bytes.size());
        EXPECT_EQ(fuzz::BrokenPromise(outcome), "");
        return outcome.result;
    });
    EXPECT_GE(replayed, 20);
}

// The promises themselves: a run that fails silently or names no cause is caught.
TEST(FuzzCorpus, TheRunPromisesCatchSilentOrUnexplainedFailures) {
    fuzz::RunOutcome silent;
    silent.showErrors = true;
    silent.error.kind = ScriptErrorKind::Runtime;
    silent.error.message = "Division durch Null";
    EXPECT_EQ(fuzz::BrokenPromise(silent), "failure shown to nobody");
    fuzz::RunOutcome unexplained;
    EXPECT_EQ(fuzz::BrokenPromise(unexplained), "failure without an error recorded");
    fuzz::RunOutcome succeeded;
    succeeded.result = 1;
    succeeded.error.kind = ScriptErrorKind::Compile;
    EXPECT_EQ(fuzz::BrokenPromise(succeeded), "success with an error recorded");
}

// The budgets are the harness's: the kept inputs that hit them say which.
TEST(FuzzCorpus, RunBudgetsStopEndlessAndGreedyScripts) {
    const struct {
        const char* input;
        ScriptErrorKind kind;
        StopCause cause;
    } cases[] = {
        {"1BEGIN LOOP END END.", ScriptErrorKind::Stopped, StopCause::StepLimit},
        {"3VAR i : INTEGER; BEGIN FOR i := 1 TO 2000 DO END END.", ScriptErrorKind::Stopped, StopCause::StepLimit},
        {"1VAR i : INTEGER; BEGIN FOR i := 1 TO 2000 DO END END.", ScriptErrorKind::None, StopCause::None},
        {"5VAR s : STRING; BEGIN s := \"x\"; LOOP s := s + s END END.", ScriptErrorKind::OutOfMemory,
         StopCause::MemoryLimit},
        {"\xC1" "BEGIN LOOP END END.", ScriptErrorKind::Stopped, StopCause::TimeLimit},
        {"\xC3" "BEGIN LOOP END END.", ScriptErrorKind::Stopped, StopCause::Cancelled},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.input);
        const std::string bytes = c.input;
        const fuzz::RunOutcome outcome = fuzz::RunOne(Bytes(bytes), bytes.size());
        EXPECT_EQ(outcome.error.kind, c.kind);
        EXPECT_EQ(outcome.stopCause, c.cause);
    }
}

// Under the fuzz debugger a script pauses, yet the user sees what a plain run shows.
TEST(FuzzCorpus, DebuggedRunsShowWhatPlainRunsShow) {
    for (const char* name : {"ok-debugged-example-strings", "bad-debugged-runtime-division-by-zero"}) {
        SCOPED_TRACE(name);
        std::string debugged = ReadFileBytes(std::string(QEL_SOURCE_DIR "/fuzz/corpus/run/") + name);
        std::string plain = debugged;
        plain[0] = static_cast<char>(plain[0] & 7);
        const fuzz::RunOutcome withDebugger = fuzz::RunOne(Bytes(debugged), debugged.size());
        const fuzz::RunOutcome without = fuzz::RunOne(Bytes(plain), plain.size());
        EXPECT_GT(withDebugger.debuggerPauses, 0);
        EXPECT_EQ(without.debuggerPauses, 0);
        EXPECT_EQ(withDebugger.result, without.result);
        EXPECT_EQ(withDebugger.shown, without.shown);
        EXPECT_EQ(withDebugger.error.message, without.error.message);
    }
}
