// The loops WHILE, REPEAT, LOOP and FOR, with the targets of their BREAK
// and CONTINUE jumps.
#include "language/productions.h"
#include "qelkern/machine.h"

namespace {

// Makes a loop's own BREAK and CONTINUE lists current for its lifetime, so
// that both jumps belong to the innermost loop, and restores the outer ones.
class LoopJumps {
public:
    explicit LoopJumps(CParser& owner)
        : parser(owner), outerBreaks(owner.breakList), outerContinues(owner.continueList) {
        owner.breakList = &breaks;
        owner.continueList = &continues;
    }
    ~LoopJumps() {
        parser.breakList = outerBreaks;
        parser.continueList = outerContinues;
    }
    LoopJumps(const LoopJumps&) = delete;
    LoopJumps& operator=(const LoopJumps&) = delete;

    void Land(int breakTarget, int continueTarget) {
        parser.generator->fixup(&breaks, breakTarget);
        parser.generator->fixup(&continues, continueTarget);
    }

private:
    CParser& parser;
    CUIntArray* outerBreaks;
    CUIntArray* outerContinues;
    CUIntArray breaks;
    CUIntArray continues;
};

}  // namespace

void CParser::whileSchleife() {
    LoopJumps jumps(*this);
    int start = generator->Label();
    ReadOn();
    expression();
    int exitJump = generator->Label();
    generator->Gen(JPC, 0, 0);
    if (scanner->sym == symDo)
        ReadOn();
    else
        err(18);
    statements(stopEnd);
    if (scanner->sym != symEnd) err("WHILE erwartet abschliessendes END.");
    ReadOn();
    generator->Gen(JMP, 0, start);
    generator->fixup(exitJump);
    jumps.Land(generator->Label(), start);
}

// CONTINUE repeats the body without testing the condition.
void CParser::repeatSchleife() {
    LoopJumps jumps(*this);
    ReadOn();
    int start = generator->Label();
    statements(stopUntil);
    if (scanner->sym != symUntil) err("REPEAT erwartet abschliessendes UNTIL.");
    ReadOn();
    expression();
    generator->Gen(JPC, 0, start);
    jumps.Land(generator->Label(), start);
}

void CParser::loopSchleife() {
    LoopJumps jumps(*this);
    ReadOn();
    int start = generator->Label();
    statements(stopEnd);
    if (scanner->sym != symEnd) err("LOOP erwartet abschliessendes END.");
    generator->Gen(JMP, 0, start);
    jumps.Land(generator->Label(), start);
    ReadOn();
}

Object* CParser::ForAssignment() {
    if (scanner->sym != symIdent) {
        err("FOR erwartet Zuweisung an Schleifenvariable");
        return nullptr;
    }
    Object* variable = FindName(scanner->id);
    if (variable->objectClass != Var) {
        err("FOR erwartet Zuweisung an Schleifenvariable");
        return nullptr;
    }
    if (variable->Type() != symInteger) {
        err("Schleifenvariable muss ein INTEGER sein.");
        return nullptr;
    }
    ReadOn();
    Becomes();
    Symbol start = expression();
    GenTypeCast(static_cast<Symbol>(variable->Type()), start);
    generator->Gen(STO, LevelOf(variable), variable->address);
    return variable;
}

// The limit is evaluated before each pass; CONTINUE lands on the step.
void CParser::forSchleife() {
    LoopJumps jumps(*this);
    ReadOn();
    Object* variable = ForAssignment();
    if (!variable) {
        err("FOR erwartet Zuweisung an INTEGER-VARIABLE.");
        return;
    }
    int distance = LevelOf(variable);
    Symbol direction = scanner->sym;
    bool upward = direction == symTo;
    if (direction != symTo && direction != symDownto) err("FOR erwartet TO oder DOWNTO.");
    ReadOn();
    int start = generator->Label();
    generator->Gen(LOD, distance, variable->address, "StartFor");
    expression();
    generator->Gen(OPR, 0, upward ? oprLessEqual : oprGreaterEqual);
    int exitJump = generator->Label();
    generator->Gen(JPC, 0, 0);
    if (scanner->sym != symDo) err("FOR erwartet DO.");
    ReadOn();
    statements(stopEnd);
    if (scanner->sym != symEnd) err("FOR erwartet abschliessendes END.");
    int step = generator->Label();
    generator->Gen(LOD, distance, variable->address);
    generator->Gen(OPR, 0, upward ? oprIncrement : oprDecrement);
    generator->Gen(STO, distance, variable->address);
    generator->Gen(JMP, 0, start);
    generator->fixup(exitJump);
    jumps.Land(generator->Label(), step);
    ReadOn();
}
