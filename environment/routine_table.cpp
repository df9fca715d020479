// The table of predefined routines and the module-level state that hosts and
// the editors share with the library.
#include "qelkern/environment.h"

CBasisPredefinedUmgebung* pBasisPredefinedUmgebung = nullptr;
int _VarSuccess = 0;
CString szKeywords;
CString szConstants;
CStringArray Keywords;
CStringArray GlobaleSymbole;

CPredefined::~CPredefined() = default;

CPredefinedArray::~CPredefinedArray() {
    for (int i = 0; i < GetSize(); ++i) delete (*this)[i];
    RemoveAll();
}

PredefinedRoutine FindPredefined(CString name) {
    // No environment means no host routines: the caller reports the name as
    // unresolved instead of following a null pointer.
    CBasisPredefinedUmgebung* environment = pBasisPredefinedUmgebung;
    if (environment == nullptr) return nullptr;

    CPredefinedArray& table = environment->predefinedArray;
    if (table.GetSize() == 0) environment->InitPredefinedArray();

    // Walk the live table by index: a host may have added rows since the last lookup.
    for (int i = 0; i < table.GetSize(); ++i) {
        const auto* row = dynamic_cast<const CPredefined*>(table[i]);
        if (row != nullptr && row->name.CompareNoCase(name) == 0) return row->routine;
    }
    return nullptr;
}
