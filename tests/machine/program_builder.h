// Builds machine programs directly, without the compiler.
#pragma once

#include <string>

#include "qelkern/machine.h"

struct ProgramBuilder {
    CInterpreter machine;
    CGenerator gen{&machine};

    static VALUE Int(int number) {
        VALUE v;
        v = number;
        return v;
    }
    static VALUE Double(double number) {
        VALUE v;
        v = number;
        return v;
    }
    static VALUE Text(const char* text) {
        VALUE v;
        v.SetString(text);
        return v;
    }

    void Lit(const VALUE& v, const char* comment = "") { gen.Gen(LIT, 0, v, comment); }
    void LitInt(int number) { Lit(Int(number)); }
    void Op(Operation operation, const char* comment = "") { gen.Gen(OPR, 0, operation, comment); }
    void Ins(Opcode f, int l, intptr_t a, const char* comment = "") { gen.Gen(f, l, a, comment); }

    // Main block frame with `variables` cells from offset 3, ended by Finish().
    void Begin(int variables) { Ins(INT, 0, 3 + variables, "main"); }
    void Finish() { Op(oprRet); }
    void Run() { machine.Interpret(); }
};
