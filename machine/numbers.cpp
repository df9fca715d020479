// Number parsers that do not depend on the C locale: the engine's texts always
// use a point (and, for user text, also a comma) as decimal separator.
#include "qelkern/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v'; }

const char* SkipDigits(const char* s) {
    while (IsDigit(*s)) ++s;
    return s;
}

// The parts of an unsigned decimal number, as read from a text.
struct DecimalParts {
    std::string integerDigits;
    std::string fractionDigits;
    int64_t exponent = 0;
};

// Exponents beyond this already overflow or underflow any double; clamping
// keeps the arithmetic below in range for texts of any length.
constexpr int64_t exponentClamp = 100000;

// Decimal position of the leading significant digit: positive means the value
// is at least 1. Only used to tell overflow from underflow.
int64_t Magnitude(const DecimalParts& parts) {
    size_t lead = parts.integerDigits.find_first_not_of('0');
    if (lead != std::string::npos)
        return static_cast<int64_t>(parts.integerDigits.size() - lead) + parts.exponent;
    size_t fractionLead = parts.fractionDigits.find_first_not_of('0');
    if (fractionLead == std::string::npos) return INT64_MIN;  // the value is zero
    return -static_cast<int64_t>(fractionLead) + parts.exponent;
}

double ValueOf(const DecimalParts& parts) {
    std::string text = parts.integerDigits.empty() ? "0" : parts.integerDigits;
    if (!parts.fractionDigits.empty()) text += "." + parts.fractionDigits;
    if (parts.exponent != 0) text += "e" + std::to_string(parts.exponent);
    double value = 0.0;
    auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::result_out_of_range)
        return Magnitude(parts) > 0 ? HUGE_VAL : 0.0;
    return result.ec == std::errc() ? value : 0.0;
}

// Digits with one optional separator, at least one digit. Returns the first
// character not used, or `s` itself when no number stands there.
const char* ReadMantissa(const char* s, bool commaToo, DecimalParts& parts) {
    const char* integerEnd = SkipDigits(s);
    parts.integerDigits.assign(s, integerEnd);
    const char* p = integerEnd;
    if (*p == '.' || (commaToo && *p == ',')) {
        const char* fractionEnd = SkipDigits(p + 1);
        parts.fractionDigits.assign(p + 1, fractionEnd);
        if (!parts.integerDigits.empty() || !parts.fractionDigits.empty()) p = fractionEnd;
    }
    return parts.integerDigits.empty() && parts.fractionDigits.empty() ? s : p;
}

// "e" or "E", an optional sign and at least one digit; otherwise nothing is used.
const char* ReadExponent(const char* s, DecimalParts& parts) {
    if (*s != 'e' && *s != 'E') return s;
    const char* p = s + 1;
    bool negative = *p == '-';
    if (*p == '+' || *p == '-') ++p;
    if (!IsDigit(*p)) return s;
    int64_t exponent = 0;
    for (; IsDigit(*p); ++p) exponent = std::min(exponent * 10 + (*p - '0'), exponentClamp);
    parts.exponent = negative ? -exponent : exponent;
    return p;
}

void SetEnd(char** end, const char* at) {
    if (end) *end = const_cast<char*>(at);
}

}  // namespace

double zahlAusText(const char* text, char** end) {
    if (!text) {
        SetEnd(end, text);
        return 0.0;
    }
    DecimalParts parts;
    const char* stop = ReadMantissa(text, false, parts);
    SetEnd(end, stop);
    return stop == text ? 0.0 : ValueOf(parts);
}

double zahlAusTerm(const char* text, char** end) {
    if (!text) {
        SetEnd(end, text);
        return 0.0;
    }
    const char* p = text;
    while (IsBlank(*p)) ++p;
    bool negative = *p == '-';
    if (*p == '+' || *p == '-') ++p;
    DecimalParts parts;
    const char* stop = ReadMantissa(p, true, parts);
    if (stop == p) {
        SetEnd(end, text);
        return 0.0;
    }
    stop = ReadExponent(stop, parts);
    SetEnd(end, stop);
    double value = ValueOf(parts);
    return negative ? -value : value;
}
