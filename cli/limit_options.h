// SPDX-License-Identifier: MIT
// The options that limit a run: --max-steps, --timeout, --max-memory.
#pragma once

#include <string>
#include <string_view>

#include "options.h"

bool IsLimitOption(std::string_view name);
// Stores the limit of option `name`; false: a bad value, described in `error`.
bool ParseLimit(std::string_view name, const std::string& value, QelOptions& options,
                std::string& error);
