// The host's side of the language: the table of native routines, the
// environment object that hosts derive from, and the editors' word lists.
#pragma once

#include "qelkern/parser.h"
#include "qelkern/platform.h"
#include "qelkern/scanner.h"
#include "qelkern/value.h"

class CDocument;

// One row of the routine table: the name scripts declare with EXTERN, and the callback.
class QELKERN_API CPredefined : public CObject {
public:
    CPredefined(CString routineName, PredefinedRoutine callback) : name(routineName), routine(callback) {}
    ~CPredefined() override;

    CString name;
    PredefinedRoutine routine;
};

// The routine table; owns its rows.
class QELKERN_API CPredefinedArray : public CObArray {
public:
    CPredefinedArray() = default;
    ~CPredefinedArray() override;
    CPredefinedArray(const CPredefinedArray&) = delete;
    CPredefinedArray& operator=(const CPredefinedArray&) = delete;
};

class QELKERN_API CBasisPredefinedUmgebung : public CObject {
public:
    CBasisPredefinedUmgebung();
    ~CBasisPredefinedUmgebung() override;

    // Fills the table; the base version adds the 13 built-in routines.
    virtual void InitPredefinedArray();
    // An entry for hosts; the library never calls it.
    virtual void InitScript(CStdioFile& file, CDocument* document);
    // Global names for the editors, as a blank-framed word list.
    virtual CString AddConstants(CStringArray& symbols);
    // Keywords for the editors, as a blank-framed word list.
    virtual CString AddKeywords(CStringArray& words);
    // Called for each IMPORT declaration with its two strings; may splice
    // text into the scanner with InsertText. The base version does nothing.
    virtual void Import(CScanner* scanner, CString first, CString second);

    CPredefinedArray predefinedArray;
};

// The environment of the process, set by the host before the first compile.
QELKERN_API extern CBasisPredefinedUmgebung* pBasisPredefinedUmgebung;
// Set by the built-in SetSuccess; read by the host after a run.
QELKERN_API extern int _VarSuccess;
// The editors' word lists.
QELKERN_API extern CString szKeywords;
QELKERN_API extern CString szConstants;
QELKERN_API extern CStringArray Keywords;
QELKERN_API extern CStringArray GlobaleSymbole;

// The callback registered under `name` (case ignored), or null. Fills an
// empty table through InitPredefinedArray first. Null environment: null.
QELKERN_API PredefinedRoutine FindPredefined(CString name);
