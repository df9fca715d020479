// The parser's frame: construction, the top of the parse, error reporting.
#include "qelkern/parser.h"


#include "pipeline/name_index.h"
#include "pipeline/nesting.h"
#include "pipeline/own_stack.h"
#include "machine/debug_info.h"
#include "qelkern/userinterface.h"
#include "pipeline/script_error.h"

namespace {

const char* const numberedErrors[] = {
    "",
    "Verwende \"=\" anstatt \":=\".",
    "Nach \"=\" muss eine Zahl folgen.",
    "Nach dem Bezeichner muss \"=\" folgen.",
    "Nach CONST, VAR, oder PROCEDURE muss ein Bezeichner folgen.",
    "Strichpunkt (oder Komma) fehlt.",
    "Ein Ausdruck kann nicht mit diesem Symbol beginnen.",
    "Schliessende Klammer fehlt.",
    "Der vorangehende Operator kann nicht mit diesem Symbol enden.",
    "Hier wird ein Punkt erwartet.",
    "Inkorrektes Symbol in einer Anweisung.",
    "Dieser Bezeichner ist nicht vereinbart.",
    "Zuweisungen zu Konstanten und Prozeduren sind nicht erlaubt.",
    "Zuweisungsoperator ist \":=\".",
    "Nach \"CALL\" muss ein Bezeichner folgen.",
    "Aufruf(call) einer Konstanten oder Variablen ist nicht erlaubt.",
    "Hier wird THEN erwartet.",
    "Hier wird \";\" oder END erwartet.",
    "Hier wird DO erwartet.",
    "Auf diese Anweisung folgt ein inkorrekt verwendetes Symbol.",
    "Hier wird eine Relation erwartet.",
    "Ein Ausdruck darf keinen Prozedurbezeichner enthalten.",
    "Ein Bezeichner darf nur einmal vereinbart werden.",
    "Zahl ist zu gross.",
};

const char* const errorTitle = "Fehler Parser";

// With showErrors false the compile goes on after an error, and its echoes
// would call err again.
void ReportFirstError(int ok, const CScanner& scanner, const CString& text) {
    if (ok) qelkern::ReportDiagnostic(ScriptErrorKind::Compile, scanner.symLine, scanner.symPosition, text);
}

}  // namespace

CParser::CParser(CScanner* scannerToRead, CGenerator* generatorToFill, bool showErrorsToUser)
    : scanner(scannerToRead),
      generator(generatorToFill),
      showErrors(showErrorsToUser),
      nameIndex(std::make_unique<NameIndex>()) {
    auto root = std::make_unique<CPredefinedTyp>(symInteger);
    root->name = "integer";
    PredefinedTypen.Add(root.get());
    root.release();  // the table owns its rows

    for (const char* text : numberedErrors) errorTexts.Add(text);
    stopElseElsifEnd.Add(symElse);
    stopElseElsifEnd.Add(symElsif);
    stopElseElsifEnd.Add(symEnd);
    stopEnd.Add(symEnd);
    stopUntil.Add(symUntil);

    undefinedObject = new Object();
    undefinedObject->objectClass = Var;
    level = 0;
}

CParser::~CParser() {
    delete undefinedObject;
    for (Object* obj : allObjects) delete obj;
    allObjects.RemoveAll();
}

void CParser::Parse() {
    const auto parse = [this](const char* floor) {
        Object* const outerScope = topScope;
        const int outerLevel = level;
        nesting = 0;
        stackFloor = floor;
        try {
            scanner->GetSym();
            NewBlock();
            block("main");
            if (debugInfo) debugInfo->MainBlock(*topScope, generator->Label());
            DoneBlock();
        } catch (const NestingTooDeep&) {
            topScope = outerScope;
            level = outerLevel;
            err(nestingMessage);
            return;
        }
        if (scanner->sym != symPeriod) err(9);
    };
    if (!RunOnOwnStack(parse)) parse(StackFloor());
}

void CParser::EndParser() {}

void CParser::WriteString(const char*) {}

void CParser::test(Symbol, int) {}

void CParser::err(unsigned short n) {
    CString text = n < errorTexts.GetSize() ? errorTexts[n] : CString("<unbekannter Fehler>");
    ReportFirstError(ok, *scanner, text);
    ok = 0;
    ZeigeFehlerText(errorTitle, text, scanner, showErrors);
}

void CParser::err(CString text) {
    ReportFirstError(ok, *scanner, text);
    ok = 0;
    ZeigeFehlerText(errorTitle, text, scanner, showErrors);
}

void CParser::warning(CString text) {
    qelkern::ReportDiagnostic(ScriptErrorKind::Warning, scanner->symLine, scanner->symPosition, text);
    if (!showErrors) return;
    CString message;
    message.Format("Warnung Parser: Zeile: %d Position: %d: %s\n", scanner->line,
                   scanner->position, static_cast<const char*>(text));
    GetUserInterface().ShowMessage(message, "", CUserInterface::IconInformation);
}
