// The symbols of the scanner. Their numbers are also the type tags of the
// whole system: 40 INTEGER, 41 DOUBLE, 43 ARRAY, 57 STRING, 60 and up TYPEDEF.
#pragma once

#include "qelkern/platform.h"

enum Symbol : int {
    symNull = 0,
    symTimes = 1,
    symDivide = 2,
    symPlus = 3,
    symMinus = 4,
    symEqual = 5,
    symNotEqual = 6,
    symLess = 7,
    symLessEqual = 8,
    symGreater = 9,
    symGreaterEqual = 10,
    symComma = 11,
    symRightParen = 12,
    symThen = 13,
    symElse = 14,
    symElsif = 15,
    symDo = 16,
    symUntil = 17,
    symLoop = 18,
    symFor = 19,
    symTo = 20,
    symDownto = 21,
    symLeftParen = 22,
    symBecomes = 23,
    symNumber = 24,
    symIdent = 25,
    symSemicolon = 26,
    symEnd = 27,
    symIf = 28,
    symWhile = 29,
    symRepeat = 30,
    symBegin = 31,
    symConst = 32,
    symVar = 33,
    symProcedure = 34,
    symFunction = 35,
    symPeriod = 36,
    symBreak = 37,
    symContinue = 38,
    symEof = 39,
    symInteger = 40,
    symDouble = 41,
    symColon = 42,
    symArray = 43,
    symOf = 44,
    symRightBracket = 45,
    symLeftBracket = 46,
    symHigh = 47,
    symBitAnd = 48,
    symBitOr = 49,
    symBitNot = 50,
    symAnd = 51,
    symOr = 52,
    symNot = 53,
    symExit = 54,
    symExtern = 55,
    symTypedef = 56,
    symString = 57,
    symImport = 58,
};

// First tag handed out to a TYPEDEF type.
constexpr int firstTypedefTag = 60;

// One row of the keyword table.
class QELKERN_API CKeySym {
public:
    CKeySym() = default;
    CKeySym(Symbol symbol, const char* text) : sym(symbol), name(text) {}
    ~CKeySym() = default;
    CKeySym(const CKeySym&) = default;
    CKeySym(CKeySym&&) = default;
    CKeySym& operator=(const CKeySym&) = default;
    CKeySym& operator=(CKeySym&&) = default;

    Symbol sym = symNull;
    CString name;
};
