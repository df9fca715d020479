// SPDX-License-Identifier: MIT
#include "install_paths.h"

#include <unistd.h>

#include <climits>
#include <cstdlib>

#ifndef QEL_PRELUDE_FROM_BIN
#define QEL_PRELUDE_FROM_BIN "../share/qelkern"
#endif

std::string InstalledPreludeDirectory() {
    char program[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", program, sizeof program - 1);
    if (length <= 0) return std::string();
    const std::string path(program, static_cast<size_t>(length));
    const std::string candidate = path.substr(0, path.rfind('/') + 1) + QEL_PRELUDE_FROM_BIN;
    // Messages name the prelude by this path, so it is made plain.
    char resolved[PATH_MAX];
    if (realpath(candidate.c_str(), resolved) == nullptr) return std::string();
    return std::string(resolved) + "/";
}
