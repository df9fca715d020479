// The declarations that tie a script to its host: EXTERN routines, TYPEDEF
// types derived from INTEGER, and IMPORT, which hands two strings to the host.
#include <memory>

#include "language/productions.h"
#include "qelkern/environment.h"

// false: an error that ends the enclosing block. No code is emitted.
bool CParser::ExternDeclaration() {
    ReadOn();
    if (scanner->sym != symProcedure && scanner->sym != symFunction) {
        err("PROCEDURE oder FUNCTION erwartet.");
        return false;
    }
    bool isFunction = scanner->sym == symFunction;
    ReadOn();
    CString wanted;
    if (scanner->sym == symIdent) {
        wanted = scanner->id;
        ReadOn();
    } else {
        err(4);
    }
    Object* routine = NewObj(isFunction ? Func : Proc);
    routine->procLevel = level;
    // The parameters need a scope only to be told apart.
    NewBlock();
    int resultAddress = -1;
    ProcFuncArgumentDeklaration(routine, resultAddress);
    DoneBlock();
    if (isFunction && !FunctionType(routine)) return false;
    if (!pBasisPredefinedUmgebung) {
        err("Keine Umgebung für EXTERN gesetzt.");
        return false;
    }
    routine->externalRoutine = FindPredefined(wanted);
    if (!routine->externalRoutine) {
        err("Externer Verweis kann nicht aufgelöst werden.");
        return false;
    }
    if (scanner->sym == symSemicolon)
        ReadOn();
    else
        err(5);
    return true;
}

// The row enters the table only when the whole declaration was read, so a
// type can never be its own base. A failed declaration uses up its number.
int CParser::Typedef() {
    auto row = std::make_unique<CPredefinedTyp>(scanner->nextType++);
    ReadOn();
    if (scanner->sym != symIdent) {
        err("Bezeichner erwartet.");
        return 0;
    }
    row->name = scanner->id;
    ReadOn();
    if (scanner->sym != symColon) {
        err("Doppelpunkt erwartet.");
        return 0;
    }
    ReadOn();
    if (scanner->sym == symInteger) {
        scanner->id = "integer";  // the keyword names the root row
    } else if (scanner->sym != symIdent) {
        err("Bezeichner erwartet.");
        return 0;
    }
    row->base = GetPredefinedTyp(scanner->id);
    if (!row->base) {
        err("Basisname unbekannt.");
        return 0;
    }
    ReadOn();
    if (scanner->sym != symSemicolon) {
        err("Semicolon erwartet.");
        return 0;
    }
    PredefinedTypen.Add(row.release());
    ReadOn();
    return 1;
}

namespace {

const CString* StringLiteral(const CScanner& scanner) {
    return scanner.sym == symNumber ? scanner.value.GetStringPtr() : nullptr;
}

}  // namespace

// The host's Import may splice text into the scanner; it is read next.
int CParser::Import() {
    ReadOn();
    const CString* text = StringLiteral(*scanner);
    if (!text) {
        err("Zeichenkette erwartet");
        return 0;
    }
    CString first = *text;
    ReadOn();
    text = StringLiteral(*scanner);
    if (!text) {
        err("Zeichenkette erwartet");
        return 0;
    }
    CString second = *text;
    if (!pBasisPredefinedUmgebung) {
        err("Keine Umgebung für IMPORT gesetzt.");
        return 0;
    }
    pBasisPredefinedUmgebung->Import(scanner, first, second);
    ReadOn();
    return 1;
}
