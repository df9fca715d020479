#include "machine/conversions.h"

#include <charconv>

namespace qelkern {

CString FormatFixed(double number) {
    // Large enough for the longest fixed form of a double (about 310 digits).
    char buffer[400];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, number,
                                std::chars_format::fixed, 6);
    if (result.ec != std::errc()) return CString();
    return CString(buffer, static_cast<int>(result.ptr - buffer));
}

}  // namespace qelkern
