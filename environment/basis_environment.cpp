// The environment object that hosts derive from; the base brings the built-ins.
#include "environment/basis_routines.h"
#include "qelkern/environment.h"

CBasisPredefinedUmgebung::CBasisPredefinedUmgebung() = default;

CBasisPredefinedUmgebung::~CBasisPredefinedUmgebung() = default;

void CBasisPredefinedUmgebung::InitPredefinedArray() {
    // No guard: a second call appends a second, unreachable set of rows.
    for (const BasisRoutine& row : BasisRoutinen::table)
        predefinedArray.Add(new CPredefined(row.name, row.routine));
}

void CBasisPredefinedUmgebung::InitScript(CStdioFile&, CDocument*) {}

CString CBasisPredefinedUmgebung::AddConstants(CStringArray&) { return CString(); }

CString CBasisPredefinedUmgebung::AddKeywords(CStringArray&) { return CString(); }

void CBasisPredefinedUmgebung::Import(CScanner*, CString, CString) {}
