// Hash lookup for the symbol table and the type table. Names are compared
// without regard to case, so they are keyed by their folded spelling.
#pragma once

#include <string>
#include <unordered_map>

#include "qelkern/parser.h"

// The spelling under which CString::CompareNoCase finds a name equal: Latin-1
// letters folded to lower case, up to the first NUL.
std::string FoldedName(const CString& name);

struct CParser::NameIndex {
    using Names = std::unordered_map<std::string, Object*>;

    // The first entry of each name, per scope Head.
    std::unordered_map<const Object*, Names> scopes;
    // The names of a scope, or null if it has none; the last scope asked
    // for is kept at hand, mostly the innermost one.
    Names* NamesOf(const Object* scope);
    Names& NamesToDeclareIn(const Object* scope);
    const Object* lastScope = nullptr;
    Names* lastNames = nullptr;

    // Index in PredefinedTypen of the first row of each name and tag. Rows are
    // only ever appended while a parser lives, so the index follows the table
    // by its new rows and starts again when the table was emptied.
    std::unordered_map<std::string, int> typesByName;
    std::unordered_map<int, int> typesBySymbol;
    int indexedRows = 0;
    const CPredefinedTyp* indexedRoot = nullptr;

    void FollowTypeTable();
    CPredefinedTyp* TypeByName(const CString& name);
    CPredefinedTyp* TypeBySymbol(int symbol);
};
