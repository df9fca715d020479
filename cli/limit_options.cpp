// SPDX-License-Identifier: MIT
#include "limit_options.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>

namespace {

// A whole number from 1 to `maximum`, digits only.
bool ParseCount(std::string_view option, const std::string& value, uint64_t maximum,
                uint64_t& count, std::string& error) {
    const bool digitsOnly = !value.empty() && value.size() <= 20 &&
                            value.find_first_not_of("0123456789") == std::string::npos;
    errno = 0;
    const unsigned long long number = digitsOnly ? std::strtoull(value.c_str(), nullptr, 10) : 0;
    if (!digitsOnly || errno == ERANGE || number == 0 || number > maximum) {
        error = "option " + std::string(option) + " needs a whole number from 1 to " +
                std::to_string(maximum) + ", not '" + value + "'";
        return false;
    }
    count = number;
    return true;
}

// Seconds as a decimal number above 0, at most a year.
bool ParseSeconds(const std::string& value, uint64_t& milliseconds, std::string& error) {
    constexpr double maximum = 365.0 * 24 * 3600;
    char* end = nullptr;
    const double seconds = value.empty() ? 0.0 : std::strtod(value.c_str(), &end);
    const bool plain = !value.empty() && value.find_first_not_of("0123456789.") == std::string::npos;
    if (!plain || end == nullptr || *end != '\0' || !(seconds > 0.0) || seconds > maximum) {
        error = "option --timeout needs a number of seconds above 0 and at most " +
                std::to_string(static_cast<long>(maximum)) + ", not '" + value + "'";
        return false;
    }
    milliseconds = static_cast<uint64_t>(std::ceil(seconds * 1000.0));
    return true;
}

}  // namespace

bool ParseLimit(std::string_view name, const std::string& value, QelOptions& options,
                std::string& error) {
    if (name == "--max-steps") return ParseCount(name, value, UINT64_MAX / 2, options.maxSteps, error);
    if (name == "--timeout") return ParseSeconds(value, options.timeoutMilliseconds, error);
    constexpr uint64_t megabyte = 1024 * 1024;
    uint64_t megabytes = 0;
    if (!ParseCount(name, value, SIZE_MAX / megabyte, megabytes, error)) return false;
    options.maxMemoryBytes = megabytes * megabyte;
    return true;
}

bool IsLimitOption(std::string_view name) {
    return name == "--max-steps" || name == "--timeout" || name == "--max-memory";
}

