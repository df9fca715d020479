// The symbol table: scopes as a Head with a chain of entries, searched
// from the innermost scope outward, names compared without regard to case.
#include "qelkern/parser.h"

Object::~Object() = default;

void CParser::NewBlock() {
    Object* head = new Object();
    allObjects.Add(head);
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
    if (topScope != nullptr) {
        for (Object* entry = topScope->next; entry != nullptr; entry = entry->next) {
            if (entry->name.CompareNoCase(scanner->id) == 0) {
                err(22);
                break;
            }
        }
    }
    Object* obj = new Object();
    allObjects.Add(obj);
    obj->name = scanner->id;
    obj->objectClass = c;
    obj->level = level;
    // Without an open scope the entry is still owned, but nobody can find it.
    if (topScope != nullptr) {
        topScope->lastInScope->next = obj;
        topScope->lastInScope = obj;
    }
    return obj;
}

Object* CParser::find(CString name) {
    for (Object* scope = topScope; scope != nullptr; scope = scope->outerScope) {
        for (Object* entry = scope->next; entry != nullptr; entry = entry->next) {
            if (entry->name.CompareNoCase(name) == 0) return entry;
        }
    }
    err(11);
    return undefinedObject;
}
