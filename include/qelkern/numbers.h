// Number parsers, independent of the C locale.
#pragma once

#include "qelkern/export.h"

// A number of script text: digits with points, the point as decimal separator.
// *end stands on the first character not used.
QELKERN_API double zahlAusText(const char* text, char** end);

// The numeric term at the start of a text held in a string cell: optional
// blanks, an optional sign, digits with an optional decimal point or comma and
// an optional exponent. A text that starts with no number gives 0.0.
QELKERN_API double zahlAusTerm(const char* text, char** end);
