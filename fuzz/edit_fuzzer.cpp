// libFuzzer target: typing, pasting and undoing in the colouring editor.
#include <cstdio>
#include <cstdlib>

#include "fuzz/edit_harness.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string broken = fuzz::EditOne(data, size);
    if (!broken.empty()) {
        std::fprintf(stderr, "edit fuzzer: %s\n", broken.c_str());
        std::abort();
    }
    return 0;
}
