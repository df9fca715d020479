// Reading callback arguments safely, and number formatting that does not
// depend on the C locale.
#pragma once

#include "qelkern/platform.h"
#include "qelkern/value.h"

// The text of a STRING argument. A cell without a text (a number passed
// where a string was declared) gives its printed form instead.
CString ArgumentText(const VALUE& cell);
// A DOUBLE or INTEGER argument; a cell of another tag is converted.
double ArgumentDouble(const VALUE& cell);
int ArgumentInt(const VALUE& cell);

// `x` as printf's "%.<digits>f" writes it in the "C" locale.
// `digits` is clamped to 0..maxFixedDigits.
constexpr int maxFixedDigits = 20;
CString FormatFixed(double x, int digits);
