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

/// Compiles and runs a script on the caller's thread.
///
/// The prelude `dir` + "extern.qel" is read (a missing one is no error) and
/// put in front of the script; both form one text, and the scanner's line
/// numbers count from the prelude's first line.
/// @param dir        prefix of the prelude's path: a directory with its
///                   closing '/', or "" for the current directory
/// @param text       the script, Latin-1; read up to its first NUL and never
///                   beyond `length`
/// @param length     bytes of `text`
/// @param showErrors show compile errors to the user (the error dialog and
///                   "Fehler im Parser"); scanner and run-time errors are
///                   shown in any case
/// @param run        false: compile only
/// @return 1 on success, 0 after a scanner, compile or run-time error.
///         GetLastScriptError() (diagnostics.h) then says what and where.
/// Runs must not overlap: the engine's tables are shared by the process.
QELKERN_API int RunScript(CString dir, char* text, int length, bool showErrors, bool run);
/// The same with `run` true.
QELKERN_API int RunScript(CString dir, char* text, int length, bool showErrors);
/// Reads the script from `file` (UTF-8 or Latin-1) and runs it. A file that
/// cannot be read is an empty script. The error record names `file`.
QELKERN_API int RunScript(CString dir, CString file, bool showErrors);
/// Reads a text file into `text` with every line ended by "\n", converting
/// UTF-8 to Latin-1. @return 1, or 0 with `text` unchanged if it cannot be opened.
QELKERN_API int LeseTextAusDatei(CString path, CString& text);
/// Asks for a script through the file dialog and runs it with the prelude
/// from `dir`. @return the result of RunScript, 0 when cancelled.
QELKERN_API int Test(CString dir);
/// 1 if `c` may begin a name: a letter, '_' or a German umlaut (Latin-1).
QELKERN_API int istIdentifierAnfang(char c);
/// 1 if `c` may continue a name: istIdentifierAnfang or a digit.
QELKERN_API int istIdentifierZeichen(char c);

// The library's handle; on Linux the address of the library's own code,
// recorded when the shared library is loaded.
QELKERN_API extern void* hQELKernInstance;
