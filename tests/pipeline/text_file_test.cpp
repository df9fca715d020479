#include <gtest/gtest.h>

#include <string>

#include "support/test_support.h"

TEST(LeseTextAusDatei, DecodesAndEndsEveryLineWithALineFeed) {
    const std::string dir = MakeTempDir("lese-text");
    struct Case {
        const char* name;
        std::string bytes;
        const char* expected;
    };
    const Case cases[] = {
        {"utf8.qel", "K\xC3\xA4se\r\nzwei\r\n", "K\xE4se\nzwei\n"},
        {"latin1.qel", "K\xE4se\n\xDF", "K\xE4se\n\xDF\n"},
        {"no-final-end.qel", "a\nb", "a\nb\n"},
        {"blank-lines.qel", "\n\nx\n", "\n\nx\n"},
        {"empty.qel", "", ""},
    };
    for (const Case& c : cases) {
        WriteFileBytes(dir + c.name, c.bytes);
        CString text = "old contents";
        EXPECT_EQ(LeseTextAusDatei((dir + c.name).c_str(), text), 1) << c.name;
        EXPECT_EQ(text, c.expected) << c.name;
    }
}

TEST(LeseTextAusDatei, MissingFileLeavesTheTextAlone) {
    const std::string dir = MakeTempDir("lese-text-missing");
    CString text = "unchanged";
    EXPECT_EQ(LeseTextAusDatei((dir + "nothing-here.qel").c_str(), text), 0);
    EXPECT_EQ(text, "unchanged");
}
