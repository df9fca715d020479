// Listings of compiled code: the exact instruction sequences of each construct.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "language/language_test_support.h"

namespace {

// Numbers the lines as the listing does: "address:\tline\n".
std::string Listing(std::initializer_list<const char*> lines) {
    std::string text;
    int address = 0;
    for (const char* line : lines) text += std::to_string(address++) + ":\t" + line + "\n";
    return text;
}

}  // namespace

TEST(Listing, WorkedExamples) {
    EXPECT_EQ(ListingOf("CONST c = 2; VAR x : INTEGER; BEGIN x := c + 3 END."),
              Listing({"INT 0, 4, \"main\"", "LIT (int)0", "STO 0, 3", "LIT (int)2", "LIT (int)3",
                       "OPR +", "STO 0, 3", "OPR RET"}));
    EXPECT_EQ(ListingOf("VAR x : INTEGER; PROCEDURE p(); BEGIN x := 1 END; BEGIN p() END."),
              Listing({"JMP 0, 5, \"main\"", "INT 0, 3, \"proc. p\"", "LIT (int)1", "STO 1, 3",
                       "OPR RET", "INT 0, 4, \"main\"", "LIT (int)0", "STO 0, 3", "CALL 0, 1",
                       "OPR RET"}));
    EXPECT_EQ(ListingOf("VAR x : INTEGER; FUNCTION f(a : INTEGER) : INTEGER; "
                        "BEGIN f := a + 1 END; BEGIN x := f(2) END."),
              Listing({"JMP 0, 7, \"main\"", "INT 0, 3, \"func. f\"", "LOD 0, -1", "LIT (int)1",
                       "OPR +", "STO 0, -2", "OPR RET", "INT 0, 4, \"main\"", "LIT (int)0",
                       "STO 0, 3", "LIT (int)0", "LIT (int)2", "CALL 0, 1", "INT 0, -1",
                       "STO 0, 3", "OPR RET"}));
}
