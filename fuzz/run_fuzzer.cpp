// libFuzzer target: arbitrary text compiled and run under small budgets.
#include <cstdio>
#include <cstdlib>

#include "fuzz/run_harness.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const std::string broken = fuzz::BrokenPromise(fuzz::RunOne(data, size));
    if (!broken.empty()) {
        std::fprintf(stderr, "run fuzzer: %s\n", broken.c_str());
        std::abort();
    }
    return 0;
}
