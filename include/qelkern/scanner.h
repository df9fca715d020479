// The script runner and the scanner.
#pragma once

#include "qelkern/platform.h"
#include "qelkern/symbols.h"
#include "qelkern/value.h"

class QELKERN_API CScanner : public CObject {
public:
    CScanner(char* text, int length);
    ~CScanner() override;
    CScanner(const CScanner&) = delete;
    CScanner& operator=(const CScanner&) = delete;

    void GetSym();
    void GetCh();
    // Splices text into the stream behind the look-ahead character.
    void InsertText(CString text);
    void Mark(CString message);
    void EnterKW(Symbol sym, const char* text);
    void Identifier();
    void Number();
    void comment();
    void string();

    static constexpr int keywordCapacity = 40;

    int eof = 0;
    char ch = 0;
    int keywordCount = 0;
    CKeySym keywords[keywordCapacity];
    std::vector<char> buffer;
    int index = 0;
    int line = 0;
    int position = 0;
    int length = 0;
    int errorFound = 0;
    CString id;
    Symbol sym = symNull;
    VALUE value;
    int nextType = firstTypedefTag;
    // Where the current symbol starts, counted as `line` and `position`.
    int symLine = 0;
    int symPosition = 0;
};

QELKERN_API int RunScript(CString dir, char* text, int length, bool showErrors, bool run);
QELKERN_API int RunScript(CString dir, char* text, int length, bool showErrors);
QELKERN_API int RunScript(CString dir, CString file, bool showErrors);
QELKERN_API int LeseTextAusDatei(CString path, CString& text);
QELKERN_API int Test(CString dir);
QELKERN_API int istIdentifierAnfang(char c);
QELKERN_API int istIdentifierZeichen(char c);

// The library's handle; on Linux the address of the library's own code,
// recorded when the shared library is loaded.
QELKERN_API extern void* hQELKernInstance;
