// The table of TYPEDEF types and the rules by which types meet.
#include "pipeline/name_index.h"
#include "qelkern/machine.h"
#include "qelkern/parser.h"

CPredefinedTypArray PredefinedTypen;

CPredefinedTyp::~CPredefinedTyp() = default;

CPredefinedTypArray::~CPredefinedTypArray() { DeleteAll(); }

void CPredefinedTypArray::DeleteAll() {
    for (CPredefinedTyp* row : *this) delete row;
    RemoveAll();
}

namespace {

bool isNumeric(int type) { return type == symInteger || type == symDouble; }

}  // namespace

int CParser::GetTyp(Symbol& t) {
    t = scanner->sym;
    if (t == symDouble || t == symInteger || t == symArray || t == symString) return 1;
    if (t != symIdent) return 0;
    CPredefinedTyp* row = GetPredefinedTyp(scanner->id);
    if (row == nullptr) return 0;
    t = static_cast<Symbol>(row->symbol);
    return 1;
}

CPredefinedTyp* CParser::GetPredefinedTyp(CString name) { return nameIndex->TypeByName(name); }

// Directed: walks from `b` toward the root, so a derived value may stand where
// its base is wanted and not the other way round. The chain of a table of n
// rows has at most n links; more would mean a cycle.
int CParser::GleicherTyp(Symbol a, Symbol b) {
    int current = b;
    for (int steps = 0; steps <= PredefinedTypen.GetSize(); ++steps) {
        if (a == current) return 1;
        CPredefinedTyp* row = nameIndex->TypeBySymbol(current);
        if (row == nullptr || row->base == nullptr) return 0;
        current = row->base->symbol;
    }
    return 0;
}

void CParser::GenTypeCast(Symbol target, Symbol source) {
    if (target == symInteger && source == symDouble)
        warning("Zuweisung von DOUBLE an INTEGER, Wertverlust möglich.");
    if (target == source) return;
    if (isNumeric(target) && isNumeric(source)) {
        generator->Gen(OPR, 0, target == symInteger ? oprIntCast : oprDoubleCast);
        return;
    }
    if (target != symString && source != symString && !GleicherTyp(target, source))
        err("Typen sind nicht kompatibel.");
}
