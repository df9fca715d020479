// Library start. There is no entry routine with reason codes on this
// platform: a load-time constructor records where the library lives.
#include <dlfcn.h>

#include "qelkern/scanner.h"

void* hQELKernInstance = nullptr;

namespace {

__attribute__((constructor)) void RecordLibraryInstance() {
    Dl_info info{};
    if (dladdr(&hQELKernInstance, &info) != 0 && info.dli_fbase != nullptr)
        hQELKernInstance = info.dli_fbase;
    else
        hQELKernInstance = &hQELKernInstance;
}

}  // namespace
