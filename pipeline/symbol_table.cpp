// The symbol table: scopes as a Head with a chain of entries, searched
// from the innermost scope outward, names compared without regard to case.
// Each scope also has a hash of its names, so that a block of many
// declarations costs no more per name than a small one.
#include <memory>

#include "pipeline/name_index.h"
#include "qelkern/parser.h"

Object::~Object() = default;

// Every entry is owned by allObjects before anything else can fail.
Object* CParser::Own(std::unique_ptr<Object> entry) {
    allObjects.Add(entry.get());
    return entry.release();
}

void CParser::NewBlock() {
    Object* head = Own(std::make_unique<Object>());
    head->objectClass = Head;
    head->lastInScope = head;
    head->outerScope = topScope;
    if (firstObject == nullptr) firstObject = head;
    topScope = head;
    ++level;
}

void CParser::DoneBlock() {
    if (topScope == nullptr) return;
    topScope = topScope->outerScope;
    --level;
}

Object* CParser::NewObj(ObjectClass c) {
    std::string key = FoldedName(scanner->id);
    NameIndex::Names* scopeNames = topScope ? &nameIndex->NamesToDeclareIn(topScope) : nullptr;
    if (scopeNames && scopeNames->count(key)) err(22);
    Object* obj = Own(std::make_unique<Object>());
    obj->name = scanner->id;
    obj->objectClass = c;
    obj->level = level;
    // Without an open scope the entry is still owned, but nobody can find it.
    if (topScope != nullptr) {
        topScope->lastInScope->next = obj;
        topScope->lastInScope = obj;
        scopeNames->emplace(std::move(key), obj);  // a second one is never found
    }
    return obj;
}

Object* CParser::find(CString name) { return FindName(name); }

Object* CParser::FindName(const CString& name) {
    const std::string key = FoldedName(name);
    for (Object* scope = topScope; scope != nullptr; scope = scope->outerScope) {
        NameIndex::Names* scopeNames = nameIndex->NamesOf(scope);
        if (scopeNames == nullptr) continue;
        auto hit = scopeNames->find(key);
        if (hit != scopeNames->end()) return hit->second;
    }
    err(11);
    return undefinedObject;
}
