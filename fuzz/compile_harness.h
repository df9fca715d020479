// One input of the compile fuzzer, shared by the fuzzer and by the test that
// replays the kept inputs in every ordinary build.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/fuzz_host.h"

namespace fuzz {

// The first byte chooses whether errors are shown; the rest is the script.
// There is no prelude. Returns RunScript's result.
inline int CompileOne(const uint8_t* data, size_t size) {
    HostScope host;
    if (size == 0) return 0;
    const bool showErrors = (data[0] & 1) != 0;
    std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    return RunScript("/nonexistent-qel-prelude/", text.data(), static_cast<int>(text.size()),
                     showErrors, false);
}

}  // namespace fuzz
