// Hash lookup for the symbol table and the type table.
#include "pipeline/name_index.h"

namespace {

// As CString::CompareNoCase folds.
unsigned char LowerLatin1(unsigned char c) {
    if (c >= 'A' && c <= 'Z') return static_cast<unsigned char>(c + 32);
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return static_cast<unsigned char>(c + 32);
    return c;
}

}  // namespace

std::string FoldedName(const CString& name) {
    const std::string_view spelling = name.view();
    std::string folded(spelling.size(), '\0');
    for (size_t i = 0; i < spelling.size(); ++i) {
        if (spelling[i] == 0) {
            folded.resize(i);
            break;
        }
        folded[i] = static_cast<char>(LowerLatin1(static_cast<unsigned char>(spelling[i])));
    }
    return folded;
}

CParser::NameIndex::Names* CParser::NameIndex::NamesOf(const Object* scope) {
    if (scope == lastScope) return lastNames;
    auto found = scopes.find(scope);
    Names* names = found == scopes.end() ? nullptr : &found->second;
    if (names) {
        lastScope = scope;
        lastNames = names;
    }
    return names;
}

CParser::NameIndex::Names& CParser::NameIndex::NamesToDeclareIn(const Object* scope) {
    Names& names = scopes[scope];
    lastScope = scope;
    lastNames = &names;
    return names;
}

void CParser::NameIndex::FollowTypeTable() {
    const int rows = PredefinedTypen.GetSize();
    const CPredefinedTyp* root = rows > 0 ? PredefinedTypen[0] : nullptr;
    if (rows < indexedRows || root != indexedRoot) {
        typesByName.clear();
        typesBySymbol.clear();
        indexedRows = 0;
        indexedRoot = root;
    }
    for (; indexedRows < rows; ++indexedRows) {
        const CPredefinedTyp* row = PredefinedTypen[indexedRows];
        typesByName.emplace(FoldedName(row->name), indexedRows);
        typesBySymbol.emplace(row->symbol, indexedRows);
    }
}

CPredefinedTyp* CParser::NameIndex::TypeByName(const CString& name) {
    FollowTypeTable();
    auto hit = typesByName.find(FoldedName(name));
    return hit == typesByName.end() ? nullptr : PredefinedTypen[hit->second];
}

CPredefinedTyp* CParser::NameIndex::TypeBySymbol(int symbol) {
    FollowTypeTable();
    auto hit = typesBySymbol.find(symbol);
    return hit == typesBySymbol.end() ? nullptr : PredefinedTypen[hit->second];
}
