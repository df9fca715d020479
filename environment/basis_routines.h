// The built-in routines of the base environment. Each is a callback as the
// machine calls it: `stack` is cell 0, `top` the index of the last argument,
// a function's result cell lies just below its first argument.
#pragma once

#include <array>

#include "qelkern/parser.h"
#include "qelkern/value.h"

struct BasisRoutine {
    const char* name;
    PredefinedRoutine routine;
};

namespace BasisRoutinen {

int SetSuccess(VALUE* stack, int top);     // (code : INTEGER)
int ErrorMsg(VALUE* stack, int top);       // (caption, text : STRING)
int MeldungDouble(VALUE* stack, int top);  // (caption, text : STRING; number : DOUBLE)
int MeldungInt(VALUE* stack, int top);     // (caption, text : STRING; number : INTEGER)
int sin(VALUE* stack, int top);            // (degrees : DOUBLE) : DOUBLE
int cos(VALUE* stack, int top);            // (degrees : DOUBLE) : DOUBLE
int tan(VALUE* stack, int top);            // (degrees : DOUBLE) : DOUBLE
int sqr(VALUE* stack, int top);            // (x : DOUBLE) : DOUBLE
int sqrt(VALUE* stack, int top);           // (x : DOUBLE) : DOUBLE
int abs(VALUE* stack, int top);            // (x : DOUBLE) : DOUBLE
int sign(VALUE* stack, int top);           // (x : DOUBLE) : DOUBLE
int val(VALUE* stack, int top);            // (text : STRING) : DOUBLE
int str(VALUE* stack, int top);            // (x : DOUBLE; digits : INTEGER) : STRING

// The rows in the order in which InitPredefinedArray adds them.
inline constexpr std::array<BasisRoutine, 13> table{{
    {"SetSuccess", SetSuccess},
    {"ErrorMsg", ErrorMsg},
    {"MeldungDouble", MeldungDouble},
    {"MeldungInt", MeldungInt},
    {"sin", sin},
    {"cos", cos},
    {"tan", tan},
    {"sqr", sqr},
    {"sqrt", sqrt},
    {"abs", abs},
    {"sign", sign},
    {"val", val},
    {"str", str},
}};

}  // namespace BasisRoutinen
