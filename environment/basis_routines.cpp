#include "environment/basis_routines.h"

#include <cmath>

#include "environment/arguments.h"
#include "qelkern/environment.h"
#include "qelkern/numbers.h"
#include "qelkern/userinterface.h"

namespace {

// Angles are converted with this value of pi, not the full double: scripts
// have always seen sin(180) as -2.07E-13, and their results must not shift.
constexpr double pi = 3.14159265359;
constexpr double halfTurn = 180.0;
// Values within this band round zero have the sign 0.
constexpr double signBand = 0.0001;

// A wrong EXTERN declaration can leave fewer cells below `top` than the
// routine expects; it then does nothing rather than touch memory below cell 0.
bool HasCells(const VALUE* stack, int top, int cells) {
    return stack != nullptr && top >= cells - 1;
}

double Radians(double degrees) { return (pi * degrees) / halfTurn; }

void ShowError(const CString& caption, const CString& text) {
    GetUserInterface().ShowMessage(text, caption, CUserInterface::IconError);
}

// The common shape of the one-argument DOUBLE functions.
template <class Function>
int DoubleFunction(VALUE* stack, int top, Function function) {
    if (!HasCells(stack, top, 2)) return 0;
    stack[top - 1] = function(ArgumentDouble(stack[top]));
    return 1;
}

}  // namespace

namespace BasisRoutinen {

int SetSuccess(VALUE* stack, int top) {
    if (!HasCells(stack, top, 1)) return 0;
    _VarSuccess = ArgumentInt(stack[top]);
    return 1;
}

int ErrorMsg(VALUE* stack, int top) {
    if (!HasCells(stack, top, 2)) return 0;
    ShowError(ArgumentText(stack[top - 1]), ArgumentText(stack[top]));
    return 1;
}

int MeldungDouble(VALUE* stack, int top) {
    if (!HasCells(stack, top, 3)) return 0;
    CString text;
    text.Format("%s %s", static_cast<const char*>(ArgumentText(stack[top - 1])),
                static_cast<const char*>(FormatFixed(ArgumentDouble(stack[top]), 6)));
    ShowError(ArgumentText(stack[top - 2]), text);
    return 1;
}

int MeldungInt(VALUE* stack, int top) {
    if (!HasCells(stack, top, 3)) return 0;
    CString text;
    text.Format("%s %d", static_cast<const char*>(ArgumentText(stack[top - 1])),
                ArgumentInt(stack[top]));
    ShowError(ArgumentText(stack[top - 2]), text);
    return 1;
}

int sin(VALUE* stack, int top) {
    return DoubleFunction(stack, top, [](double x) { return std::sin(Radians(x)); });
}

int cos(VALUE* stack, int top) {
    return DoubleFunction(stack, top, [](double x) { return std::cos(Radians(x)); });
}

int tan(VALUE* stack, int top) {
    return DoubleFunction(stack, top, [](double x) { return std::tan(Radians(x)); });
}

int sqr(VALUE* stack, int top) {
    return DoubleFunction(stack, top, [](double x) { return x * x; });
}

int sqrt(VALUE* stack, int top) {
    if (!HasCells(stack, top, 2)) return 0;
    const double x = ArgumentDouble(stack[top]);
    if (0.0 > x) {
        // The result cell keeps the 0.0 it came with; the script goes on.
        ShowError(CString(), "sqrt: Negatives Argument");
        return 0;
    }
    stack[top - 1] = std::sqrt(x);
    return 1;
}

int abs(VALUE* stack, int top) {
    return DoubleFunction(stack, top, [](double x) { return std::fabs(x); });
}

int sign(VALUE* stack, int top) {
    return DoubleFunction(stack, top, [](double x) {
        if (x < -signBand) return -1.0;
        if (x > signBand) return 1.0;
        return 0.0;  // also for NaN
    });
}

int val(VALUE* stack, int top) {
    if (!HasCells(stack, top, 2)) return 0;
    // Copy first: the result cell and the argument are neighbours on the stack.
    const CString text = ArgumentText(stack[top]);
    char* end = nullptr;  // text behind the term is ignored
    stack[top - 1] = zahlAusTerm(text, &end);
    return 1;
}

int str(VALUE* stack, int top) {
    if (!HasCells(stack, top, 3)) return 0;
    // Negative digits count as 0 and large ones are capped (see FormatFixed),
    // so no printf format is ever built from script data.
    const CString text = FormatFixed(ArgumentDouble(stack[top - 1]), ArgumentInt(stack[top]));
    stack[top - 2].SetString(text);
    return 1;
}

}  // namespace BasisRoutinen
