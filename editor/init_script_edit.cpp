#include <memory>

#include "qelkern/editor.h"
#include "qelkern/environment.h"
#include "qelkern/machine.h"
#include "qelkern/parser.h"
#include "qelkern/scanner.h"

namespace {
void AppendWord(CString& list, const CString& word) { list += " " + word + " "; }

// name(a:integer, b:double):string
CString SignatureOf(const Object& routine) {
    CString signature = routine.name + "(";
    for (int i = 0; i < routine.parameters.GetSize(); ++i) {
        const auto* parameter = static_cast<const Object*>(routine.parameters[i]);
        if (i > 0) signature += ", ";
        if (parameter) signature += parameter->name + ":" + parameter->value.GetTypeName();
    }
    signature += ")";
    if (routine.objectClass == Func) signature += ":" + routine.value.GetTypeName();
    return signature;
}

void GatherGlobalNames(const CParser& parser) {
    for (const Object* entry = parser.firstObject; entry; entry = entry->next) {
        const ObjectClass kind = entry->objectClass;
        if (kind == Const || kind == Var || kind == Proc || kind == Func) AppendWord(szConstants, entry->name);
        if (kind == Proc || kind == Func)
            GlobaleSymbole.Add(SignatureOf(*entry));
        else
            GlobaleSymbole.Add(entry->name);
    }
}

// The words of the language, learnt by compiling the prelude with the real
// scanner and parser; the code is not run.
void GatherWords(const CString& preludeFile) {
    if (pBasisPredefinedUmgebung) {
        szConstants = pBasisPredefinedUmgebung->AddConstants(GlobaleSymbole);
        szKeywords = pBasisPredefinedUmgebung->AddKeywords(Keywords);
    }
    CString text;
    if (!preludeFile.IsEmpty() && !LeseTextAusDatei(preludeFile, text)) text.Empty();
    text += ".";

    auto scanner = std::make_unique<CScanner>(const_cast<char*>(static_cast<const char*>(text)), text.GetLength());
    auto interpreter = std::make_unique<CInterpreter>();
    auto generator = std::make_unique<CGenerator>(interpreter.get());
    auto parser = std::make_unique<CParser>(scanner.get(), generator.get(), true);
    bool parsed = true;
    try {
        parser->Parse();
    } catch (CException* exception) {
        exception->Delete();
        parsed = false;
    } catch (...) {
        parsed = false;
    }
    if (parsed) {
        for (int i = 0; i < scanner->keywordCount && i < CScanner::keywordCapacity; ++i) {
            AppendWord(szKeywords, scanner->keywords[i].name);
            Keywords.Add(scanner->keywords[i].name);
        }
        GatherGlobalNames(*parser);
    }
    parser.reset();
    interpreter.reset();
    generator.reset();
    scanner.reset();
}
}  // namespace

void InitTWScriptEdit(CTWScriptEdit* edit, CDialog* dialog, int controlId, CString preludeFile) {
    if (szKeywords.IsEmpty()) GatherWords(preludeFile);
    if (!edit) return;
    edit->SubclassDlgItem(static_cast<UINT>(controlId), dynamic_cast<CWnd*>(dialog));
    edit->Initialize();
    edit->SetCaseSensitive(0);
    edit->SetStringQuotes("\"");
    edit->ClearKeywords();
    edit->ClearConstants();
    edit->AddKeywords(szKeywords);
    edit->AddConstants(szConstants);
    edit->SetSLComment("(*", "*)");
    edit->FormatAll();
}
