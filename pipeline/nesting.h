// The bound on the depth of the recursive productions.
#pragma once

#include "qelkern/parser.h"

// Thrown by NestingGuard and caught by Parse, which reports it once the
// stack is unwound, so that the error display has the whole stack to use.
struct NestingTooDeep {};

constexpr const char* nestingMessage = "Zu tief verschachtelt.";

// The lowest address the productions may reach on the calling thread; null
// if the thread cannot tell, and then the count alone bounds the depth.
const char* StackFloor();

// One level of a production that can recurse: expression, statement, block.
// Every cycle of the grammar passes through one of them.
struct CParser::NestingGuard {
    explicit NestingGuard(CParser& owner);
    ~NestingGuard() { --parser.nesting; }
    NestingGuard(const NestingGuard&) = delete;
    NestingGuard& operator=(const NestingGuard&) = delete;

    CParser& parser;
};
