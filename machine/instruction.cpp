#include <cstdint>

#include "machine/conversions.h"
#include "machine/name_tables.h"
#include "qelkern/machine.h"

namespace {

constexpr const char* instructionTexts[instructionNameCount] = {
    "LIT", "OPR", "LOD", "STO", "CALL", "INT", "JMP", "JPC", "LODI", "STOI", "SWAP", "EXTCALL",
};

constexpr const char* operationTexts[operationNameCount] = {
    "RET",     "NEGATE",  "+",      "-",          "*",          "/",     "=",
    "!=",      "<",       ">=",     ">",          "<=",         "ReadInt", "Write",
    "--",      "++",      "intCast", "doubleCast", "ReadDouble", "BITOR", "BITAND",
    "BITNOT",  "OR",      "AND",    "NOT",
};

}  // namespace

CString InstructionNames[instructionNameCount];
CString OperationNames[operationNameCount];

void FillNameTables() {
    for (int i = 0; i < instructionNameCount; ++i) InstructionNames[i] = instructionTexts[i];
    for (int i = 0; i < operationNameCount; ++i) OperationNames[i] = operationTexts[i];
}

namespace {

// Filled at load as well, so that a listing can be made before the first
// interpreter exists. Defined after the tables, so they are constructed first.
[[maybe_unused]] const bool nameTablesFilledAtLoad = (FillNameTables(), true);

}  // namespace

Instruction::~Instruction() = default;

Instruction& Instruction::operator=(const Instruction& other) {
    if (this == &other) return *this;
    f = other.f;
    l = other.l;
    a = other.a;
    value = other.value;
    comment = other.comment;
    return *this;
}

namespace {

// Code that was not made by the compiler may hold numbers beyond the tables.
const char* NameOf(const CString* table, int count, intptr_t number) {
    return number >= 0 && number < count ? static_cast<const char*>(table[number]) : "?";
}

CString LiteralHead(int index, const char* name, const VALUE& value) {
    CString head;
    switch (value.type) {
        case 40: head.Format("%d:\t%s (int)%d", index, name, value.intValue); break;
        case 41:
            head.Format("%d:\t%s (double)%s", index, name,
                        static_cast<const char*>(qelkern::FormatFixed(value.doubleValue)));
            break;
        case 57: {
            const CString* text = value.GetStringPtr();
            head.Format("%d:\t%s \"%s\"", index, name, text ? static_cast<const char*>(*text) : "");
            break;
        }
        default: head.Format("%d:\t%s (?)%d", index, name, value.intValue); break;
    }
    return head;
}

}  // namespace

CString Instruction::GetText(int index) const {
    const char* name = NameOf(InstructionNames, instructionNameCount, f);
    CString line;
    switch (f) {
        case LIT: line = LiteralHead(index, name, value); break;
        case OPR:
            line.Format("%d:\t%s %s", index, name, NameOf(OperationNames, operationNameCount, a));
            break;
        case EXTCALL: line.Format("%d:\t%s", index, name); break;
        default: line.Format("%d:\t%s %d, %d", index, name, l, static_cast<int>(a)); break;
    }
    if (!comment.IsEmpty()) line.AppendFormat(", \"%s\"", static_cast<const char*>(comment));
    line += '\n';
    return line;
}
