// libFuzzer target: arbitrary text through the whole compile of RunScript.
#include "fuzz/compile_harness.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::CompileOne(data, size);
    return 0;
}
