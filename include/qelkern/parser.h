// The one-pass compiler: symbol table, type rules, error reporting and the
// productions of the language.
#pragma once

#include <memory>

#include "qelkern/machine.h"
#include "qelkern/platform.h"
#include "qelkern/scanner.h"
#include "qelkern/symbols.h"
#include "qelkern/value.h"

class CGenerator;
class CScanner;
namespace qelkern {
class DebugInfo;
}

enum ObjectClass : int { Const = 0, Var = 1, Proc = 2, Func = 3, Head = 4 };

// The callback of a routine that the host provides (see environment.h).
typedef int (*PredefinedRoutine)(VALUE* stack, int top);

// One entry of the symbol table.
class QELKERN_API Object : public CObject {
public:
    Object() = default;
    ~Object() override;

    // The declared type of the entry, read from the tag of `value`.
    int Type() const { return value.type; }

    CString name;
    Object* next = nullptr;
    ObjectClass objectClass = Var;
    VALUE value;
    Symbol elementType = symNull;
    int isReference = 0;
    int level = 0;
    int address = 0;
    int procLevel = 0;
    int entryAddress = 0;
    int arraySize = 0;
    Object* lastInScope = nullptr;
    Object* outerScope = nullptr;
    CPtrArray parameters;
    PredefinedRoutine externalRoutine = nullptr;
};

// One row of the table of TYPEDEF types; the root row is "integer".
class QELKERN_API CPredefinedTyp : public CObject {
public:
    explicit CPredefinedTyp(int tag) : symbol(tag) {}
    ~CPredefinedTyp() override;

    CString name;
    CPredefinedTyp* base = nullptr;
    int symbol;
};

// Owns its rows. Emptied by each new CScanner, the root row put in by each CParser.
class QELKERN_API CPredefinedTypArray : public CArrayT<CPredefinedTyp*> {
public:
    ~CPredefinedTypArray() override;
    void DeleteAll();
};
QELKERN_API extern CPredefinedTypArray PredefinedTypen;

// The start of the marker line that the error display puts under an error.
QELKERN_API extern const char* const FehlerMeldungStart;

// Shows a compile error: the text with a marker line under the error, in the
// text dialog of the user interface, then throws a CQELException pointer.
// With `show` false it does nothing.
QELKERN_API void ZeigeFehlerText(CString title, CString text, CScanner* scanner, bool show);

class QELKERN_API CParser : public CObject {
public:
    CParser(CScanner* scanner, CGenerator* generator, bool showErrors);
    ~CParser() override;
    CParser(const CParser&) = delete;
    CParser& operator=(const CParser&) = delete;

    // Compiles the whole text. Expressions, statements and routines nest at
    // most `maxNesting` levels together; deeper text is the compile error
    // "Zu tief verschachtelt." like any other. The recursion runs on a stack
    // of its own, on the calling thread, so the depth does not depend on the
    // caller's stack (without one, on the caller's stack, with room kept).
    void Parse();
    static constexpr int maxNesting = 10000;
    void EndParser();
    void WriteString(const char* production);
    void test(Symbol s, int n);

    void err(unsigned short n);
    void err(CString text);
    void warning(CString text);

    Object* NewObj(ObjectClass c);
    Object* find(CString name);
    void NewBlock();
    void DoneBlock();

    // Declarations
    void block(CString name);
    void ConstDeclaration();
    int Typedef();
    int Import();
    void ProcFuncArgumentDeklaration(Object* routine, int& nextAddress);
    void ProcFuncVariablenDeklaration(CPtrArray& names);

    // Statements
    void statements(const CWordArray& stopSymbols);
    void statement();
    void whileSchleife();
    void repeatSchleife();
    void loopSchleife();
    void forSchleife();
    Object* ForAssignment();
    void ProcFuncArgument(Object* routine, CPtrArray& list);
    void ProcFuncReferenze(Object* routine, CPtrArray& list);

    // Expressions; each returns the type of the value it leaves on the stack.
    Symbol expression();
    Symbol SimpleExpression();
    Symbol term();
    Symbol factor();
    void ArrayDereferenzierung();

    // Types
    int GetTyp(Symbol& t);
    CPredefinedTyp* GetPredefinedTyp(CString name);
    int GleicherTyp(Symbol a, Symbol b);
    void GenTypeCast(Symbol target, Symbol source);

    int ok = 1;
    Object* topScope = nullptr;
    Object* undefinedObject = nullptr;
    Object* firstObject = nullptr;
    int level = 0;
    CScanner* scanner;
    CGenerator* generator;
    CStringArray errorTexts;
    CWordArray stopElseElsifEnd;
    CWordArray stopEnd;
    CWordArray stopUntil;
    CUIntArray* breakList = nullptr;
    CUIntArray* continueList = nullptr;
    CUIntArray* exitList = nullptr;
    bool showErrors;

private:
    // Every Object the parser made, for the destructor.
    CArrayT<Object*> allObjects;
    Object* Own(std::unique_ptr<Object> entry);
    // find without a copy of the name: the productions look up every name
    // they read.
    Object* FindName(const CString& name);

    // Helpers of the productions (language/).
    struct BlockFrame;
    int LevelOf(const Object* entry) const { return level - entry->level; }
    void ReadOn();
    bool Declarations(BlockFrame& frame);
    void ConstSection();
    void TypeConstant(Object* constant, Symbol declared);
    bool VarSection(BlockFrame& frame);
    bool ArrayVariables(BlockFrame& frame, CPtrArray& group);
    bool ArrayType(int& size, Symbol& elementType, const char* elementTypeMessage);
    bool ClaimCells(int& nextAddress, long long cells);
    void ReservePendingCells(BlockFrame& frame);
    void InitialiseVariables(const BlockFrame& frame);
    bool RoutineDeclaration();
    bool FunctionType(Object* routine);
    void DeclareResultVariable(Object* function, int address);
    void AssignParameterAddresses(Object* routine, int& nextAddress);
    bool ExternDeclaration();
    void IdentifierStatement();
    void CompoundStatement();
    void Assignment(Object* target);
    void Becomes();
    void IfStatement();
    void Then();
    void PatchToHere(int at);
    void JumpOut(CUIntArray* list, const char* message, const char* comment);
    Symbol PrefixExpression();
    Symbol LogicalChain(Symbol left);
    Symbol IdentifierFactor();
    Symbol NegativeLiteral();
    Symbol High();
    void RoutineCall(Object* routine);
    void ValueArgument(Object* routine, Object* parameter);
    bool VariableArgument(Object* routine, Object* parameter, CPtrArray& list);
    void PushArrayCopy(Object* variable, bool hostStrings);
    void TakeBack(Object* variable);
    void HostStringCell();

    // Depth of the productions that can recurse (language/productions.h).
    struct NestingGuard;
    int nesting = 0;
    const char* stackFloor = nullptr;
    void PlanCodeStore();
    // Hash lookup of names per scope and of the type table's rows
    // (pipeline/name_index.h).
    struct NameIndex;
    std::unique_ptr<NameIndex> nameIndex;
public:
    // Where statements, routines and frames lie, for a debugger; null: not recorded.
    qelkern::DebugInfo* debugInfo = nullptr;
};
