// What the compiler knows that a paused run needs: where statements start
// and on which line, and which routine owns which code and frame layout.
// Copied out of the symbol table while compiling, so that it stays valid
// whatever becomes of the parser.
#pragma once

#include <vector>

#include "qelkern/debugger.h"
#include "qelkern/platform.h"

class CScanner;
class Object;

namespace qelkern {

// A variable's cells in its frame.
struct DebugSlot {
    CString name;
    CString typeName;  // as declared
    DebugVariableKind kind = DebugVariableKind::Local;
    int address = 0;    // offset from the frame base; an array's size cell
    int arraySize = 0;  // 0: a scalar
};

// A routine or the main block. Nested routines lie inside the code range
// of the block that declares them.
struct DebugRoutine {
    CString name;
    bool isMainBlock = false;
    int codeStart = 0;
    int codeEnd = 0;  // one past its RET
    std::vector<DebugSlot> slots;
};

// A statement's first instruction. Where statements start at one address
// (REPEAT and its first statement), only the innermost is kept.
struct StatementStart {
    int address = 0;
    int line = 0;     // in the joined text, from 0
    int routine = 0;  // index of the owning routine
};

class DebugInfo {
public:
    explicit DebugInfo(int preludeLineCount) : preludeLines(preludeLineCount) {}

    // Called by the compiler as it reads.
    void Statement(const CScanner& scanner, int address);
    void Routine(const Object& routine, const Object& scope, int codeEnd);
    void MainBlock(const Object& scope, int codeEnd);

    // The innermost routine whose code holds `address`; null outside the code.
    const DebugRoutine* RoutineAt(int address) const;
    int RoutineIndexAt(int address) const;
    // The statement that holds `address`: the last one that starts at or
    // before it in the same routine, else that routine's first; null if none.
    const StatementStart* StatementAt(int address) const;
    CDebugLocation LocationAt(int address) const;
    // Where a breakpoint on `requested` lands: the first line at or below it
    // in the same file that has a statement, and the address that line's
    // code starts at; a location of line 0 and -1 if there is none.
    CDebugLocation Place(const CDebugLocation& requested, int& address) const;

    CDebugLocation ToLocation(int joinedLine) const;

    const std::vector<StatementStart>& Statements() const { return statements; }
    const std::vector<DebugRoutine>& Routines() const { return routines; }

private:
    void AddRoutine(DebugRoutine routine, const Object& scope);
    void Finish();

    int preludeLines;
    std::vector<StatementStart> statements;  // by address
    std::vector<DebugRoutine> routines;
};

}  // namespace qelkern
