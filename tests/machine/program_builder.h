// Builds machine programs directly, without the compiler. The calls chain, so
// that one line holds a few instructions; the user interface is recorded.
#pragma once

#include <vector>

#include "qelkern/machine.h"
#include "support/test_support.h"

using Texts = std::vector<CString>;

inline VALUE Int(int number) { VALUE v; v = number; return v; }
inline VALUE Double(double number) { VALUE v; v = number; return v; }
inline VALUE Text(const CString& text) { VALUE v; v.SetString(text); return v; }

struct ProgramBuilder {
    ScopedRecordingUi ui;
    CInterpreter machine;
    CGenerator gen{&machine};

    ProgramBuilder& Ins(int f, int l, intptr_t a, const char* comment = "") {
        gen.Gen(f, l, a, comment);
        return *this;
    }
    ProgramBuilder& Lit(const VALUE& v, const char* comment = "") {
        gen.Gen(LIT, 0, v, comment);
        return *this;
    }
    ProgramBuilder& Lit(int number) { return Lit(Int(number)); }
    ProgramBuilder& Op(Operation o, const char* comment = "") { return Ins(OPR, 0, o, comment); }
    ProgramBuilder& Write(const char* label = "") { return Op(oprWrite, label); }
    // Main block frame with `variables` cells from offset 3.
    ProgramBuilder& Begin(int variables) { return Ins(INT, 0, 3 + variables, "main"); }

    // Runs the code as it is; gives the texts of the message boxes.
    Texts Run() {
        machine.Interpret();
        return ui.ui.Messages();
    }
    // Ends the main block with its RET first.
    Texts RunMain() { return Op(oprRet).Run(); }
    const VALUE& Cell(int index) const { return machine.stack[index]; }
};
