#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "fuzz/edit_harness.h"
#include "support/test_support.h"

// The editor fuzzer's kept inputs, replayed through its own harness: the
// text stays what the actions made of it, and the colouring matches a fresh
// one of the same text.
TEST(FuzzEditCorpus, KeptInputsKeepTextAndColouringConsistent) {
    int replayed = 0;
    for (const auto& entry : std::filesystem::directory_iterator(QEL_SOURCE_DIR "/fuzz/corpus/edit")) {
        SCOPED_TRACE(entry.path().filename().string());
        const std::string bytes = ReadFileBytes(entry.path().string());
        EXPECT_EQ(fuzz::EditOne(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()), "");
        ++replayed;
    }
    EXPECT_GE(replayed, 4);
}

// The harness's checks see a colouring that went stale.
TEST(FuzzEditCorpus, TheHarnessNoticesAStaleColouring) {
    fuzz::FuzzEditor typed;
    typed.widget->UserTypes("BEGIN x END");
    fuzz::FuzzEditor fresh;
    fresh.edit.SetWindowText("BEGIN x END");
    const int coloured = fuzz::ColouredLength(fresh);
    EXPECT_EQ(coloured, 11);
    EXPECT_EQ(fuzz::Look(fresh, coloured), fuzz::Look(typed, coloured));
    CHARFORMAT cf;
    cf.dwMask = CFM_COLOR;
    cf.crTextColor = RGB(1, 2, 3);
    typed.edit.SetSel(0, 2);
    typed.edit.SetSelectionCharFormat(cf);
    EXPECT_NE(fuzz::Look(fresh, coloured), fuzz::Look(typed, coloured));
}
