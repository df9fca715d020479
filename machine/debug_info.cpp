#include "machine/debug_info.h"

#include <algorithm>
#include <climits>
#include <iterator>

#include "qelkern/parser.h"
#include "qelkern/scanner.h"

namespace qelkern {

namespace {

// Statements that compile to code of their own; a compound statement starts
// where its first statement does, and the empty statement has no code.
bool HasOwnCode(Symbol sym) {
    switch (sym) {
        case symIdent:
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

CString DeclaredTypeName(int type) {
    if (type == symString) return "string";
    VALUE tag;
    tag.type = type;
    return tag.GetTypeName();
}

DebugSlot SlotOf(const Object& variable) {
    DebugSlot slot;
    slot.name = variable.name;
    slot.address = variable.address;
    if (variable.Type() == symArray) {
        slot.arraySize = variable.arraySize;
        slot.typeName.Format("array [%d] of %s", variable.arraySize,
                             static_cast<const char*>(DeclaredTypeName(variable.elementType)));
    } else {
        slot.typeName = DeclaredTypeName(variable.Type());
    }
    // A function's result is named "(" and the function's name.
    if (slot.name.GetLength() > 0 && slot.name[0] == '(') {
        slot.name = slot.name.Mid(1);
        slot.kind = DebugVariableKind::Result;
    } else if (variable.isReference) {
        slot.kind = DebugVariableKind::VarParameter;
    } else if (variable.address < 0) {
        slot.kind = DebugVariableKind::Parameter;
    }
    return slot;
}

}  // namespace

void DebugInfo::Statement(const CScanner& scanner, int address) {
    if (!HasOwnCode(scanner.sym)) return;
    // An outer statement at the same address gives way to the inner one; a
    // start past `address` lies on code that a fixup has taken back.
    while (!statements.empty() && statements.back().address >= address) statements.pop_back();
    statements.push_back({address, scanner.symLine, 0});
}

void DebugInfo::Routine(const Object& routine, const Object& scope, int codeEnd) {
    DebugRoutine entry;
    entry.name = routine.name;
    entry.codeStart = routine.entryAddress;
    entry.codeEnd = codeEnd;
    AddRoutine(std::move(entry), scope);
}

void DebugInfo::MainBlock(const Object& scope, int codeEnd) {
    DebugRoutine entry;
    entry.name = "main";
    entry.isMainBlock = true;
    entry.codeEnd = codeEnd;
    AddRoutine(std::move(entry), scope);
    Finish();
}

void DebugInfo::AddRoutine(DebugRoutine routine, const Object& scope) {
    for (const Object* entry = scope.next; entry != nullptr; entry = entry->next)
        if (entry->objectClass == Var) routine.slots.push_back(SlotOf(*entry));
    routines.push_back(std::move(routine));
}

void DebugInfo::Finish() {
    const int codeEnd = routines.back().codeEnd;
    while (!statements.empty() && statements.back().address >= codeEnd) statements.pop_back();
    for (StatementStart& start : statements) start.routine = RoutineIndexAt(start.address);
}

int DebugInfo::RoutineIndexAt(int address) const {
    int best = -1;
    for (size_t i = 0; i < routines.size(); ++i) {
        const DebugRoutine& r = routines[i];
        if (address < r.codeStart || address >= r.codeEnd) continue;
        if (best < 0 || r.codeEnd - r.codeStart < routines[best].codeEnd - routines[best].codeStart)
            best = static_cast<int>(i);
    }
    return best;
}

const DebugRoutine* DebugInfo::RoutineAt(int address) const {
    const int index = RoutineIndexAt(address);
    return index < 0 ? nullptr : &routines[static_cast<size_t>(index)];
}

const StatementStart* DebugInfo::StatementAt(int address) const {
    const int routine = RoutineIndexAt(address);
    if (routine < 0) return nullptr;
    auto after = std::upper_bound(statements.begin(), statements.end(), address,
                                  [](int a, const StatementStart& s) { return a < s.address; });
    // A routine's own statements follow the code of its nested routines.
    if (after != statements.begin() && std::prev(after)->routine == routine) return &*std::prev(after);
    for (auto it = after; it != statements.end(); ++it)
        if (it->routine == routine) return &*it;
    return nullptr;
}

CDebugLocation DebugInfo::ToLocation(int joinedLine) const {
    if (joinedLine < preludeLines) return {DebugFile::Prelude, joinedLine + 1};
    return {DebugFile::Script, joinedLine - preludeLines + 1};
}

CDebugLocation DebugInfo::LocationAt(int address) const {
    const StatementStart* start = StatementAt(address);
    return start ? ToLocation(start->line) : CDebugLocation{};
}

CDebugLocation DebugInfo::Place(const CDebugLocation& requested, int& address) const {
    address = -1;
    if (requested.line < 1) return {requested.file, 0};
    const bool inPrelude = requested.file == DebugFile::Prelude;
    const long long first = inPrelude ? requested.line - 1LL : preludeLines + requested.line - 1LL;
    const long long end = inPrelude ? preludeLines : LLONG_MAX;
    long long line = LLONG_MAX;
    for (const StatementStart& start : statements) {
        if (start.line < first || start.line >= end) continue;
        if (start.line < line || (start.line == line && start.address < address)) {
            line = start.line;
            address = start.address;
        }
    }
    if (address < 0) return {requested.file, 0};
    return ToLocation(static_cast<int>(line));
}

}  // namespace qelkern
