// Listings of compiled code: the exact instruction sequences of each construct.
#include <gtest/gtest.h>

#include <string>

#include "language/language_test_support.h"

namespace {

// The listing of the instructions separated by "; ", numbered as the listing
// numbers them: "address:\tinstruction\n".
std::string Listing(const std::string& head, const std::string& body = "") {
    const std::string all = body.empty() ? head : head + "; " + body;
    std::string text;
    int address = 0;
    for (size_t start = 0, end = 0; end != std::string::npos; start = end + 2) {
        end = all.find("; ", start);
        text += std::to_string(address++) + ":\t" + all.substr(start, end - start) + "\n";
    }
    return text;
}

}  // namespace

TEST(Listing, IfBranchesMeetBehindTheStatement) {
    const std::string head = "VAR a, x : INTEGER; BEGIN ";
    const char* prologue = "INT 0, 5, \"main\"; LIT (int)0; STO 0, 3; LIT (int)0; STO 0, 4";
    EXPECT_EQ(ListingOf(head + "IF a THEN x := 1 ELSE x := 2 END END."),
              Listing(prologue, "LOD 0, 3; JPC 0, 10; LIT (int)1; STO 0, 4; JMP 0, 12; LIT (int)2; "
                                "STO 0, 4; OPR RET"));
    // Without ELSE: one JPC and no JMP.
    EXPECT_EQ(ListingOf(head + "IF a THEN x := 1 END END."),
              Listing(prologue, "LOD 0, 3; JPC 0, 9; LIT (int)1; STO 0, 4; OPR RET"));
    EXPECT_EQ(ListingOf(head + "IF a = 1 THEN x := 1 ELSIF a = 2 THEN x := 2 ELSE x := 3 END END."),
              Listing(prologue, "LOD 0, 3; LIT (int)1; OPR =; JPC 0, 12; LIT (int)1; STO 0, 4; "
                                "JMP 0, 21; LOD 0, 3; LIT (int)2; OPR =; JPC 0, 19; LIT (int)2; "
                                "STO 0, 4; JMP 0, 21; LIT (int)3; STO 0, 4; OPR RET"));
    // An empty branch keeps its jump: the JPC pops the condition, and the
    // false exit of an empty ELSE lands right behind the statement.
    EXPECT_EQ(ListingOf(head + "IF a THEN END END."),
              Listing(prologue, "LOD 0, 3; JPC 0, 7; OPR RET"));
    EXPECT_EQ(ListingOf(head + "IF a THEN x := 1 ELSE END END."),
              Listing(prologue, "LOD 0, 3; JPC 0, 10; LIT (int)1; STO 0, 4; JMP 0, 10; OPR RET"));
    EXPECT_EQ(ListingOf(head + "IF a THEN ELSIF x THEN END END."),
              Listing(prologue, "LOD 0, 3; JPC 0, 8; JMP 0, 10; LOD 0, 4; JPC 0, 10; OPR RET"));
}

TEST(Listing, Loops) {
    const char* prologue = "INT 0, 4, \"main\"; LIT (int)0; STO 0, 3";
    EXPECT_EQ(ListingOf("VAR i : INTEGER; BEGIN WHILE i < 3 DO i := i + 1; CONTINUE; BREAK END END."),
              Listing(prologue, "LOD 0, 3; LIT (int)3; OPR <; JPC 0, 14; LOD 0, 3; LIT (int)1; "
                                "OPR +; STO 0, 3; JMP 0, 3, \"continue\"; JMP 0, 14, \"break\"; "
                                "JMP 0, 3; OPR RET"));
    EXPECT_EQ(ListingOf("VAR i : INTEGER; BEGIN REPEAT CONTINUE; i := 1 UNTIL i END."),
              Listing(prologue, "JMP 0, 3, \"continue\"; LIT (int)1; STO 0, 3; LOD 0, 3; JPC 0, 3; "
                                "OPR RET"));
    EXPECT_EQ(ListingOf("VAR i : INTEGER; BEGIN LOOP BREAK END END."),
              Listing(prologue, "JMP 0, 5, \"break\"; JMP 0, 3; OPR RET"));
    EXPECT_EQ(ListingOf("VAR i : INTEGER; BEGIN FOR i := 1 TO 10 DO CONTINUE END END."),
              Listing(prologue, "LIT (int)1; STO 0, 3; LOD 0, 3, \"StartFor\"; LIT (int)10; "
                                "OPR <=; JPC 0, 14; JMP 0, 10, \"continue\"; LOD 0, 3; OPR ++; "
                                "STO 0, 3; JMP 0, 5; OPR RET"));
    EXPECT_EQ(ListingOf("VAR i : INTEGER; BEGIN FOR i := 2.5 DOWNTO 0 DO END END."),
              Listing(prologue, "LIT (double)2.500000; OPR intCast; STO 0, 3; "
                                "LOD 0, 3, \"StartFor\"; LIT (int)0; OPR >=; JPC 0, 14; LOD 0, 3; "
                                "OPR --; STO 0, 3; JMP 0, 6; OPR RET"));
}

TEST(Listing, ExpressionsAndTypes) {
    EXPECT_EQ(ListingOf("VAR d : DOUBLE; BEGIN d := -1 + 2 * -3 / (4 - 5) END."),
              Listing("INT 0, 4, \"main\"; LIT (double)0.000000; STO 0, 3; LIT (int)1; OPR NEGATE; "
                      "LIT (int)2; LIT (int)-3; OPR *; LIT (int)4; LIT (int)5; OPR -; OPR /; "
                      "OPR +; OPR doubleCast; STO 0, 3; OPR RET"));
    EXPECT_EQ(ListingOf("VAR i : INTEGER; BEGIN i := NOT 0.5; i := 1 BITAND 2.5 OR 3; "
                        "i := 1 <= 2; i := 1 >= 2; i := 1 # 2 END."),
              Listing("INT 0, 4, \"main\"; LIT (int)0; STO 0, 3; LIT (double)0.500000; "
                      "OPR intCast; OPR NOT; STO 0, 3; LIT (int)1; LIT (double)2.500000; "
                      "OPR intCast; OPR BITAND; LIT (int)3; OPR OR; STO 0, 3; LIT (int)1; "
                      "LIT (int)2; OPR <=; STO 0, 3; LIT (int)1; LIT (int)2; OPR >=; STO 0, 3; "
                      "LIT (int)1; LIT (int)2; OPR !=; STO 0, 3; OPR RET"));
    EXPECT_EQ(ListingOf("VAR s : STRING; BEGIN s := \"a\" + 1 END."),
              Listing("INT 0, 4, \"main\"; LIT \"\"; STO 0, 3; LIT \"a\"; LIT (int)1; OPR +; "
                      "STO 0, 3; OPR RET"));
}

TEST(Listing, ArraysInAFrame) {
    EXPECT_EQ(ListingOf("VAR x : INTEGER; a : ARRAY [2] OF DOUBLE; y : STRING; BEGIN END."),
              Listing("INT 0, 4, \"main\"; LIT (int)2, \"Arraygröße\"; INT 0, 2, \"main\"; "
                      "INT 0, 1, \"main\"; LIT (int)0; STO 0, 3; LIT \"\"; STO 0, 7; OPR RET"));
    EXPECT_EQ(ListingOf("VAR a, b : ARRAY [+2] OF STRING; i : INTEGER; "
                        "BEGIN a[i + 1] := \"x\"; a[0] := b[1]; i := HIGH b END."),
              Listing("INT 0, 3, \"main\"; LIT (int)2, \"Arraygröße\"; INT 0, 2, \"main\"; "
                      "LIT (int)2, \"Arraygröße\"; INT 0, 2, \"main\"; INT 0, 1, \"main\"; "
                      "LIT (int)0; STO 0, 9; LOD 0, 9; LIT (int)1; OPR +; LIT \"x\"; STOI 0, 3; "
                      "LIT (int)0; LIT (int)1; LODI 0, 6; STOI 0, 3; LOD 0, 6; OPR --; STO 0, 9; "
                      "OPR RET"));
    // Nothing pending behind the last array, and the scalar before it is
    // initialised all the same.
    EXPECT_EQ(ListingOf("VAR x : INTEGER; a : ARRAY [2] OF DOUBLE; BEGIN END."),
              Listing("INT 0, 4, \"main\"; LIT (int)2, \"Arraygröße\"; INT 0, 2, \"main\"; "
                      "LIT (int)0; STO 0, 3; OPR RET"));
    // A routine behind an array is skipped by the second jump.
    EXPECT_EQ(ListingOf("VAR a : ARRAY [1] OF INTEGER; PROCEDURE p(); BEGIN END; BEGIN p() END."),
              Listing("INT 0, 3, \"main\"; LIT (int)1, \"Arraygröße\"; INT 0, 1, \"main\"; "
                      "JMP 0, 6; INT 0, 3, \"proc. p\"; OPR RET; CALL 0, 4; OPR RET"));
}

TEST(Listing, DeclarationsSpreadOverSections) {
    EXPECT_EQ(ListingOf("VAR a : INTEGER; VAR b : INTEGER; PROCEDURE p(); BEGIN END; "
                        "VAR c : INTEGER; BEGIN c := a + b END."),
              Listing("JMP 0, 3, \"main\"; INT 0, 3, \"proc. p\"; OPR RET; INT 0, 6, \"main\"; "
                      "LIT (int)0; STO 0, 3; LIT (int)0; STO 0, 4; LIT (int)0; STO 0, 5; LOD 0, 3; "
                      "LOD 0, 4; OPR +; STO 0, 5; OPR RET"));
    // TYPEDEF variables are not initialised; the semicolon between groups may be left out.
    EXPECT_EQ(ListingOf("TYPEDEF h : INTEGER; VAR a : h b : DOUBLE; BEGIN END."),
              Listing("INT 0, 5, \"main\"; LIT (double)0.000000; STO 0, 4; OPR RET"));
}

TEST(Listing, CallsPushAndTakeBack) {
    // A function's result cell is pushed first and stored after the call.
    EXPECT_EQ(ListingOf("VAR x : INTEGER; FUNCTION f(a : INTEGER) : INTEGER; "
                        "BEGIN f := a + 1 END; BEGIN x := f(2) END."),
              Listing("JMP 0, 7, \"main\"; INT 0, 3, \"func. f\"; LOD 0, -1; LIT (int)1; OPR +; "
                      "STO 0, -2; OPR RET; INT 0, 4, \"main\"; LIT (int)0; STO 0, 3; LIT (int)0; "
                      "LIT (int)2; CALL 0, 1; INT 0, -1; STO 0, 3; OPR RET"));
    EXPECT_EQ(ListingOf("VAR x : DOUBLE; PROCEDURE p(a : INTEGER; VAR b : DOUBLE; c : STRING); "
                        "BEGIN END; BEGIN p(1, x, \"s\") END."),
              Listing("JMP 0, 3, \"main\"; INT 0, 3, \"proc. p\"; OPR RET; INT 0, 4, \"main\"; "
                      "LIT (double)0.000000; STO 0, 3; LIT (int)1; LOD 0, 3; LIT \"s\"; CALL 0, 1; "
                      "INT 0, -1; STO 0, 3; INT 0, -1; OPR RET"));
    // A VAR scalar is taken back, a value array only dropped.
    EXPECT_EQ(ListingOf("VAR x : INTEGER; y : ARRAY [2] OF INTEGER; "
                        "PROCEDURE p(VAR a : INTEGER; b : ARRAY [2] OF INTEGER); BEGIN END; "
                        "BEGIN p(x, y) END."),
              Listing("INT 0, 4, \"main\"; LIT (int)2, \"Arraygröße\"; INT 0, 2, \"main\"; "
                      "JMP 0, 6; INT 0, 3, \"proc. p\"; OPR RET; LIT (int)0; STO 0, 3; LOD 0, 3; "
                      "LIT (int)2, \"Arraygröße\"; LIT (int)0; LODI 0, 4; LIT (int)1; LODI 0, 4; "
                      "CALL 0, 4; INT 0, -3; STO 0, 3; OPR RET"));
    EXPECT_EQ(ListingOf("VAR y : ARRAY [2] OF INTEGER; "
                        "PROCEDURE q(VAR a : ARRAY [2] OF INTEGER); BEGIN END; BEGIN q(y) END."),
              Listing("INT 0, 3, \"main\"; LIT (int)2, \"Arraygröße\"; INT 0, 2, \"main\"; "
                      "JMP 0, 6; INT 0, 3, \"proc. q\"; OPR RET; LIT (int)2, \"Arraygröße\"; "
                      "LIT (int)0; LODI 0, 3; LIT (int)1; LODI 0, 3; CALL 0, 4; LIT (int)1; "
                      "SWAP 0, 0; STOI 0, 3; LIT (int)0; SWAP 0, 0; STOI 0, 3; INT 0, -1; "
                      "OPR RET"));
}

TEST(Listing, ParameterAndResultOffsets) {
    // The last parameter ends at -1, an array's address is its size cell,
    // and the result cell lies below all parameters.
    EXPECT_EQ(ListingOf("FUNCTION f(a, b : INTEGER; VAR c : DOUBLE; d : ARRAY [2] OF STRING) "
                        ": INTEGER; BEGIN f := a; f := b; c := c; d[0] := d[1] END; BEGIN END."),
              Listing("JMP 0, 13, \"main\"; INT 0, 3, \"func. f\"; LOD 0, -6; STO 0, -7; "
                      "LOD 0, -5; STO 0, -7; LOD 0, -4; STO 0, -4; LIT (int)0; LIT (int)1; "
                      "LODI 0, -3; STOI 0, -3; OPR RET; INT 0, 3, \"main\"; OPR RET"));
    EXPECT_EQ(ListingOf("FUNCTION f() : DOUBLE; BEGIN f := 1 END; BEGIN END."),
              Listing("JMP 0, 6, \"main\"; INT 0, 3, \"func. f\"; LIT (int)1; OPR doubleCast; "
                      "STO 0, -1; OPR RET; INT 0, 3, \"main\"; OPR RET"));
}

TEST(Listing, StaticLinksOfNestedRoutines) {
    // Data access: l = level of the use minus level of the declaration;
    // calls: l = level of the call minus the level that declares the callee.
    EXPECT_EQ(ListingOf("VAR g : INTEGER; PROCEDURE a(); VAR x : INTEGER; "
                        "  PROCEDURE b(); BEGIN g := x; a() END; BEGIN b() END; BEGIN a() END."),
              Listing("JMP 0, 12, \"main\"; JMP 0, 7, \"proc. a\"; INT 0, 3, \"proc. b\"; "
                      "LOD 1, 3; STO 2, 3; CALL 2, 1; OPR RET; INT 0, 4, \"proc. a\"; LIT (int)0; "
                      "STO 0, 3; CALL 0, 2; OPR RET; INT 0, 4, \"main\"; LIT (int)0; STO 0, 3; "
                      "CALL 0, 1; OPR RET"));
}

TEST(Listing, HostCalls) {
    ScopedEnvironment environment;
    // A STRING argument is made a text unless it is a string literal; a
    // text for an INTEGER becomes a number.
    EXPECT_EQ(ListingOf("EXTERN PROCEDURE merke(x : STRING); "
                        "EXTERN FUNCTION merkeZahl(x : INTEGER) : INTEGER; "
                        "VAR s : STRING; "
                        "BEGIN merke(\"a\"); merke(s); merke(merkeZahl(\"5\")) END."),
              Listing("INT 0, 4, \"main\"; LIT \"\"; STO 0, 3; LIT \"a\"; EXTCALL, \"merke\"; "
                      "INT 0, -1; LOD 0, 3; LIT \"\"; OPR +; EXTCALL, \"merke\"; INT 0, -1; "
                      "LIT (int)0; LIT \"5\"; OPR intCast; EXTCALL, \"merkeZahl\"; INT 0, -1; "
                      "LIT \"\"; OPR +; EXTCALL, \"merke\"; INT 0, -1; OPR RET"));
}
