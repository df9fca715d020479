// SPDX-License-Identifier: MIT
// Where the installed qel finds its standard prelude.
#pragma once

#include <string>

// The directory of the standard prelude beside the running program
// (PREFIX/share/qelkern/ for PREFIX/bin/qel), with its closing '/';
// empty when it cannot be told.
std::string InstalledPreludeDirectory();
