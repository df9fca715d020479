// Small shared pieces of the productions: literal cells, type tests, the
// working state of a block, and the texts used in more than one place.
#pragma once

#include "pipeline/nesting.h"
#include "qelkern/parser.h"
#include "qelkern/scanner.h"
#include "qelkern/value.h"

inline VALUE IntegerCell(int number) {
    VALUE cell;
    cell = number;
    return cell;
}

inline VALUE DoubleCell(double number) {
    VALUE cell;
    cell = number;
    return cell;
}

inline VALUE StringCell(const CString& text) {
    VALUE cell;
    cell.SetString(text);
    return cell;
}

inline bool IsNumericType(int type) { return type == symInteger || type == symDouble; }

inline bool IsTypedefType(int type) { return type >= firstTypedefTag; }

inline bool Contains(const CWordArray& symbols, Symbol sym) {
    for (uint16_t s : symbols)
        if (s == sym) return true;
    return false;
}

// Gives an entry a declared type. The tag alone matters, but a cell tagged
// STRING must own a text, so each type gets a cell that is valid for it.
inline void SetDeclaredType(Object* entry, int type) {
    if (type == symString) {
        entry->value.SetString(CString());
    } else if (type == symDouble) {
        entry->value = 0.0;
    } else {
        entry->value = 0;
        entry->value.type = type;
    }
}

inline Object* ParameterAt(Object* routine, int index) {
    return static_cast<Object*>(routine->parameters[index]);
}

constexpr const char* noStringArithmetic = "Keine Rechenoperationen mit Zeichenketten.";
constexpr const char* parameterListMessage =
    "Function/Procedure: Schließende Klammer, Semicolon oder Doppelpunkt erwartet.";

// What one activation of `block` keeps for itself.
struct CParser::BlockFrame {
    CString name;
    int pendingCells = 3;  // the three link cells come first
    int nextAddress = 3;
    int openJump = 0;
    CObArray variables;
};

inline void CParser::ReadOn() { scanner->GetSym(); }
