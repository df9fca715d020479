// Copies of a text share its characters; no copy may see another's edits.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "platform/memory_budget.h"
#include "qelkern/platform.h"

namespace {

struct Edit {
    const char* name;
    std::function<void(CString&)> apply;
    const char* result;  // of "abcdef"
};

const std::vector<Edit>& Edits() {
    static const std::vector<Edit> edits = {
        {"SetAt", [](CString& s) { s.SetAt(0, 'X'); }, "Xbcdef"},
        {"MakeUpper", [](CString& s) { s.MakeUpper(); }, "ABCDEF"},
        {"append", [](CString& s) { s += "gh"; }, "abcdefgh"},
        {"append itself", [](CString& s) { s += s; }, "abcdefabcdef"},
        {"Replace", [](CString& s) { s.Replace("cd", "-"); }, "ab-ef"},
        {"Insert", [](CString& s) { s.Insert(1, "_"); }, "a_bcdef"},
        {"Delete", [](CString& s) { s.Delete(0, 2); }, "cdef"},
        {"TrimRight", [](CString& s) { s.Delete(5); s += "  "; s.TrimRight(); }, "abcde"},
        {"Format", [](CString& s) { s.Format("%d", 5); }, "5"},
        {"Empty", [](CString& s) { s.Empty(); }, ""},
    };
    return edits;
}

// "abcdef" with room behind it, as texts built by appending have.
CString Grown() {
    CString text("a");
    for (char c : std::string("bcdef")) text += c;
    return text;
}

}  // namespace

TEST(CStringSharing, AnEditReachesOnlyTheEditedCopy) {
    for (const Edit& edit : Edits()) {
        // Each side of a pair edits once: the other keeps its text and its
        // const char*. `longer` has grown in place behind both.
        for (bool editOriginal : {false, true}) {
            CString original = Grown();
            CString copy = original;
            CString longer = original;
            longer += "!";
            const char* seen = original;
            edit.apply(editOriginal ? original : copy);
            const CString& edited = editOriginal ? original : copy;
            const CString& other = editOriginal ? copy : original;
            EXPECT_EQ(edited, edit.result) << edit.name;
            EXPECT_EQ(other, "abcdef") << edit.name;
            if (!editOriginal) EXPECT_STREQ(seen, "abcdef") << edit.name;
            EXPECT_STREQ(static_cast<const char*>(other), "abcdef") << edit.name;
            EXPECT_EQ(longer, "abcdef!") << edit.name;
        }
    }
}

TEST(CStringSharing, SharersAppendApart) {
    CString base = Grown();
    CString a = base, b = base;
    a += "1";  // grows in place at the tip
    b += "2";  // the tip has moved on: b makes its own buffer
    EXPECT_EQ(a, "abcdef1");
    EXPECT_EQ(b, "abcdef2");
    EXPECT_STREQ(static_cast<const char*>(base), "abcdef") << "a shorter sharer is terminated";

    // A pointer handed out pins the end of the text it points to.
    CString pinned = Grown();
    const char* pointer = pinned;
    CString later = pinned;
    later += "x";
    EXPECT_STREQ(pointer, "abcdef");
    EXPECT_EQ(later, "abcdefx");

    CString zeros(std::string_view("a\0b", 3));
    EXPECT_EQ((zeros + zeros).view(), std::string_view("a\0ba\0b", 6));
    EXPECT_EQ(CString("x") + 'y' + "z" + CString("!"), "xyz!");
}

// Copies of one text on several threads, each building on its own.
TEST(CStringSharing, CopiesLiveOnDifferentThreads) {
    const CString shared = Grown();
    std::vector<std::string> built(4);
    std::vector<std::thread> threads;
    for (size_t i = 0; i < built.size(); ++i)
        threads.emplace_back([&shared, &built, i] {
            CString mine = shared;
            for (int n = 0; n < 20000; ++n) {
                CString step = mine;
                step += static_cast<char>('0' + i);
                mine = step;
            }
            built[i] = mine.str();
        });
    for (std::thread& thread : threads) thread.join();
    for (size_t i = 0; i < built.size(); ++i)
        EXPECT_EQ(built[i], "abcdef" + std::string(20000, static_cast<char>('0' + i)));
    EXPECT_EQ(shared, "abcdef");
}

TEST(CStringSharing, TextsAreChargedToTheActiveBudget) {
    qelkern::MemoryBudget budget(4096);
    {
        CString text(std::string(1000, 'x'));
        CString copy = text;  // shares: no charge
        EXPECT_GE(budget.Used(), 1000u);
        EXPECT_LT(budget.Used(), 1100u);
        // Past the limit the text stays as it was.
        EXPECT_THROW(copy += CString(std::string(4000, 'y')), qelkern::MemoryLimitExceeded);
        EXPECT_EQ(copy, text);
    }
    EXPECT_EQ(budget.Used(), 0u);
    EXPECT_TRUE(budget.Exceeded());
}

// Short texts are copied on assignment, into the buffer the target holds
// alone where it can; that must never let two strings see each other's
// edits, and a copy that finds no memory falls back to sharing.
TEST(CStringSharing, ShortAssignmentsCopyApartAndNeverFail) {
    CString cell("Mueller, Berta");
    const CString first("Meier, Anton"), second("Meier, Anna");
    for (const CString* source : {&first, &second, &first}) {
        cell = *source;
        cell.SetAt(0, 'X');
        EXPECT_EQ(source->GetAt(0), 'M');
        EXPECT_EQ(cell.view().substr(1), source->view().substr(1));
    }
    CString sharer = cell;  // the buffer is no longer the cell's alone
    cell = second;
    EXPECT_EQ(sharer, "Xeier, Anton");
    EXPECT_EQ(cell, "Meier, Anna");

    const CString outside("short");
    qelkern::MemoryBudget budget(16);
    CString target;
    target = outside;
    EXPECT_EQ(target, "short");
    EXPECT_EQ(budget.Used(), 0u);
    EXPECT_FALSE(budget.Exceeded()) << "a copy not made is no failure of the script";
}
