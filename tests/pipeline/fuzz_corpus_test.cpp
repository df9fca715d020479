#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "fuzz/compile_harness.h"
#include "support/test_support.h"

// The inputs kept from fuzzing, replayed through the fuzzer's own harness, so
// that every build (and the sanitizer build above all) checks them. Names
// starting "ok-" must compile, "bad-" must not; the rest once broke the
// compiler and must now simply end.
TEST(FuzzCorpus, KeptInputsEndAsTheirNamesSay) {
    CUserInterface* const previousUi = pUserInterface;
    CBasisPredefinedUmgebung* const previousEnvironment = pBasisPredefinedUmgebung;
    int replayed = 0;
    for (const auto& entry : std::filesystem::directory_iterator(QEL_SOURCE_DIR "/fuzz/corpus")) {
        const std::string name = entry.path().filename().string();
        SCOPED_TRACE(name);
        const std::string bytes = ReadFileBytes(entry.path().string());
        const int result = fuzz::CompileOne(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
        if (name.rfind("ok-", 0) == 0) {
            EXPECT_EQ(result, 1);
        }
        if (name.rfind("bad-", 0) == 0) {
            EXPECT_EQ(result, 0);
        }
        ++replayed;
    }
    pUserInterface = previousUi;
    pBasisPredefinedUmgebung = previousEnvironment;
    EXPECT_GE(replayed, 6);
}
