// The statement dispatcher and lists of statements: assignment, compound,
// IF, and the jumps BREAK, CONTINUE and EXIT.
#include <algorithm>
#include <cstdint>

#include "language/productions.h"
#include "machine/debug_info.h"
#include "qelkern/machine.h"

namespace {

// More than a step of the store's growth, so that the plan comes before the store is full.
constexpr int64_t planMargin = 20000;

bool StartsStatement(Symbol sym) {
    switch (sym) {
    case symIdent:
    case symBegin:
    case symIf:
    case symWhile:
    case symRepeat:
    case symFor:
    case symLoop:
    case symBreak:
    case symContinue:
    case symExit:
        return true;
    default:
        return false;
    }
}

}  // namespace

void CParser::statement() {
    if (!ok) return;
    WriteString("statement");
    // Statements are the unit of the generator's table of source places.
    generator->MarkSource(scanner->symLine, scanner->symPosition);
    NestingGuard depth(*this);
    PlanCodeStore();
    if (debugInfo) debugInfo->Statement(*scanner, generator->Label());
    switch (scanner->sym) {
    case symIdent:
        IdentifierStatement();
        break;
    case symBegin:
        CompoundStatement();
        break;
    case symIf:
        IfStatement();
        break;
    case symWhile:
        whileSchleife();
        break;
    case symRepeat:
        repeatSchleife();
        break;
    case symFor:
        forSchleife();
        break;
    case symLoop:
        loopSchleife();
        break;
    case symBreak:
        JumpOut(breakList, "BREAK ohne umschliessende Schleife", "break");
        break;
    case symContinue:
        JumpOut(continueList, "CONTINUE ohne umschliessende Schleife", "continue");
        break;
    case symExit:
        JumpOut(exitList, "EXIT ohne umschliessende Prozedure/Funktion", "exit");
        break;
    default:
        break;  // the empty statement
    }
}

// Semicolons are optional between the statements of a list. A symbol that
// neither starts a statement nor stops the list would make no progress, so
// it ends the compile here, also at the end of the text.
void CParser::statements(const CWordArray& stopSymbols) {
    while (ok) {
        bool hadStatement = StartsStatement(scanner->sym);
        statement();
        if (scanner->sym == symSemicolon) {
            ReadOn();
        } else if (!Contains(stopSymbols, scanner->sym) && !StartsStatement(scanner->sym)) {
            err(hadStatement ? 19 : 10);
            return;
        }
        if (Contains(stopSymbols, scanner->sym)) return;
    }
}

// A store that outgrows its reservation moves, and on a long text it would
// move a dozen times. Once the reservation is nearly full it is made for the
// rest of the text at the rate of code per byte read so far, and a quarter
// larger at least, so that a rate that rises late still costs a constant per
// instruction. An odd start (a big array copied early) must not claim too
// much: at most eightfold at once, or one instruction for every two bytes of
// text. Reserving takes address space, not memory, and charges nothing.
void CParser::PlanCodeStore() {
    const int64_t room = generator->CodeRoom();
    const int64_t used = generator->cx;
    if (used + planMargin < room) return;
    const int64_t read = scanner->index;
    const int64_t total = scanner->length;
    if (read <= 0 || total < read) return;
    const int64_t projected = (used * total / read) * 17 / 16 + planMargin;
    generator->ForeseeCode(std::max(std::min(projected, std::max(8 * room, total / 2)),
                                    room + room / 4 + planMargin));
}

void CParser::IdentifierStatement() {
    Object* entry = FindName(scanner->id);
    // Inside its body a function's name on the left is its result cell.
    if (entry->objectClass == Func) entry = find("(" + scanner->id);
    if (entry->objectClass == Proc) {
        RoutineCall(entry);
        ReadOn();
    } else if (entry->objectClass == Var) {
        Assignment(entry);
    } else {
        err(12);
    }
}

void CParser::CompoundStatement() {
    ReadOn();
    statement();
    while (scanner->sym == symSemicolon) {
        ReadOn();
        statement();
    }
    if (scanner->sym == symEnd)
        ReadOn();
    else
        err(17);
}

void CParser::Becomes() {
    if (scanner->sym == symBecomes) {
        ReadOn();
    } else if (scanner->sym == symEqual) {
        ReadOn();
        err(13);
    } else {
        err(13);
    }
}

void CParser::Assignment(Object* target) {
    bool isArray = target->Type() == symArray;
    if (isArray) ArrayDereferenzierung();
    ReadOn();
    Becomes();
    Symbol source = expression();
    Symbol wanted = isArray ? target->elementType : static_cast<Symbol>(target->Type());
    if (!(IsNumericType(wanted) && IsNumericType(source)) && !GleicherTyp(wanted, source))
        err("Typen sind nicht kompatibel");
    GenTypeCast(wanted, source);
    generator->Gen(isArray ? STOI : STO, LevelOf(target), target->address);
}

void CParser::Then() {
    if (scanner->sym == symThen)
        ReadOn();
    else
        err(16);
}

// Sets a jump's target to the next instruction and keeps it in the code.
// fixup(at) would remove a jump that is the last instruction, and in an IF
// that changes the meaning: a removed JPC leaves its condition on the stack,
// and a removed ELSE jump leaves the false exit one instruction too far.
void CParser::PatchToHere(int at) {
    CUIntArray jump;
    jump.Add(static_cast<unsigned>(at));
    generator->fixup(&jump, generator->Label());
}

void CParser::IfStatement() {
    CUIntArray branchEnds;
    ReadOn();
    expression();
    Then();
    int pending = generator->Label();
    generator->Gen(JPC, 0, 0);
    statements(stopElseElsifEnd);
    while (scanner->sym == symElsif) {
        branchEnds.Add(static_cast<unsigned>(generator->Label()));
        generator->Gen(JMP, 0, 0);
        PatchToHere(pending);
        ReadOn();
        expression();
        Then();
        pending = generator->Label();
        generator->Gen(JPC, 0, 0);
        statements(stopElseElsifEnd);
    }
    if (scanner->sym == symElse) {
        int elseJump = generator->Label();
        generator->Gen(JMP, 0, 0);
        PatchToHere(pending);
        pending = elseJump;
        ReadOn();
        statements(stopEnd);
    }
    if (scanner->sym != symEnd) err("IF erwartet abschliessendes END.");
    ReadOn();
    PatchToHere(pending);
    generator->fixup(&branchEnds, generator->Label());
}

// BREAK, CONTINUE and EXIT: a jump that the enclosing loop or routine patches.
void CParser::JumpOut(CUIntArray* list, const char* message, const char* comment) {
    if (!list) {
        err(message);
    } else {
        list->Add(static_cast<unsigned>(generator->Label()));
        generator->Gen(JMP, 0, 0, comment);
    }
    ReadOn();
}
