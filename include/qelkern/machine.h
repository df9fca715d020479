// The stack machine: instructions, the code generator that fills the code
// store, and the interpreter that owns the code store and the stack.
#pragma once

#include <cstdint>

#include "qelkern/platform.h"
#include "qelkern/value.h"

// Opcodes (Instruction::f).
enum Opcode : int {
    LIT = 0,
    OPR = 1,
    LOD = 2,
    STO = 3,
    CALL = 4,
    INT = 5,
    JMP = 6,
    JPC = 7,
    LODI = 8,
    STOI = 9,
    SWAP = 10,
    EXTCALL = 11,
};

// Sub-operations of OPR (Instruction::a).
enum Operation : int {
    oprRet = 0,
    oprNegate = 1,
    oprPlus = 2,
    oprMinus = 3,
    oprTimes = 4,
    oprDivide = 5,
    oprEqual = 6,
    oprNotEqual = 7,
    oprLess = 8,
    oprGreaterEqual = 9,
    oprGreater = 10,
    oprLessEqual = 11,
    oprReadInt = 12,
    oprWrite = 13,
    oprDecrement = 14,
    oprIncrement = 15,
    oprIntCast = 16,
    oprDoubleCast = 17,
    oprReadDouble = 18,
    oprBitOr = 19,
    oprBitAnd = 20,
    oprBitNot = 21,
    oprOr = 22,
    oprAnd = 23,
    oprNot = 24,
};

constexpr int instructionNameCount = 12;
constexpr int operationNameCount = 25;
QELKERN_API extern CString InstructionNames[instructionNameCount];
QELKERN_API extern CString OperationNames[operationNameCount];

// Name of the listing file; empty (the default) switches the listing off.
QELKERN_API extern CString DebugListingFile;
// With the listing on: a line "; FILE:LINE:COLUMN" before each statement's code.
QELKERN_API extern bool DebugListingLines;

class QELKERN_API Instruction : public CObject {
public:
    Instruction() = default;
    Instruction(const Instruction& other) = default;
    ~Instruction() override;
    Instruction& operator=(const Instruction& other);

    // The listing line of this instruction at address `index`, with its line feed.
    CString GetText(int index) const;

    uint8_t f = 0;
    int l = 0;
    // Address, offset, count or OPR sub-operation; in EXTCALL the callback,
    // which is why it is as wide as a pointer.
    intptr_t a = 0;
    VALUE value = MakeNoValue();
    CString comment;

private:
    static VALUE MakeNoValue() { VALUE v; v.type = 0; return v; }
};

class CInterpreter;
class CRunControl;
namespace qelkern { class StackCells; class CodeStore; }

// Thrown (as a pointer) on the compiler's error path only.
class QELKERN_API CQELException : public CException {
public:
    explicit CQELException(const CString& text);
    ~CQELException() override;
    bool GetErrorMessage(char* buffer, unsigned maxLength) const override;
    const CString& GetText() const { return text; }

private:
    CString text;
};

class QELKERN_API CGenerator : public CObject {
public:
    explicit CGenerator(CInterpreter* interpreter);
    ~CGenerator() override;

    void Gen(int f, int l, intptr_t a, CString comment = CString());
    void Gen(int f, int l, VALUE value, CString comment = CString());
    int Label() const { return cx; }
    void fixup(int at);
    void fixup(CUIntArray* list, int target);
    void TesteCode(int n);
    void err(CString text);
    void DebugFlushToFile();
    // Grows the code store to hold `capacity` instructions, if it holds fewer.
    void ReserveCode(int64_t capacity);
    // Reserves address space, so that the store can grow to `capacity`
    // instructions without moving; takes no memory and charges nothing.
    void ForeseeCode(int64_t capacity);
    // The instructions the store can grow to without moving.
    int64_t CodeRoom() const;
    // The table from code address to source place, filled while compiling and
    // read only after a run: the code of a statement starts here, at
    // `line` and `position` of the joined text as the scanner counts them.
    void MarkSource(int line, int position);
    // The place of the statement whose code holds `address`; false: unknown.
    bool SourceOf(int address, int& line, int& position) const;

    int failed = 0;
    int cx = 0;
    CInterpreter* interpreter;
    CStdioFile listFile;

private:
    // The highest address that a fixup has made a jump target; a jump just
    // before such a target must stay, or that target would move.
    int highestPatchedTarget = -1;

    void WritePlaceLines(int address, size_t& nextMark);
    void MoveCodeStore(size_t wanted, size_t needed);

    struct SourceMark {
        int address;
        int line;
        int position;
    };
    std::vector<SourceMark> sourceMarks;  // ascending addresses
};

class QELKERN_API CInterpreter : public CObject {
public:
    CInterpreter();
    ~CInterpreter() override;
    CInterpreter(const CInterpreter&) = delete;
    CInterpreter& operator=(const CInterpreter&) = delete;

    void Interpret();
    int base(int l);
    int TesteStack(int n);
    void err(CString text);

    // Filled by CGenerator. Only the texts that Gen writes are released with
    // the store: a host that patches an instruction itself gives it no text.
    Instruction* code;
    int p = 0;
    int b = 0;
    int t = 0;
    VALUE* stack;
    int failed = 0;
    int codeCapacity = 10000;
    int stackCapacity = 10000;
    int stackLimit = 1047552;
    // The host's limits for the runs of this interpreter: pRunControl when it
    // was made; null: none.
    CRunControl* control;
    CString errorText;  // the message of the run-time error, for the error record

private:
    // The generator grows the store in place.
    friend class CGenerator;

    qelkern::StackCells* cells;
    qelkern::CodeStore* codeStore;
};
