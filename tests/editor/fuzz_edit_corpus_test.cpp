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
    fuzz::ColourAfresh(fresh, "BEGIN x END");
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

// The reference colours the text as a whole: setting a text colours first the
// lines around the caret, to the length of the caret's line, and the plain
// text behind the last token keeps that look ("abs" of "absA" a constant).
TEST(FuzzEditCorpus, TheReferenceColouringSeesWholeWords) {
    const std::string text = "\xff\xff X\xc2\xff\r V absA";
    fuzz::FuzzEditor set;
    set.edit.SetWindowText(text.c_str());
    fuzz::FuzzEditor fresh;
    fuzz::ColourAfresh(fresh, text);
    const auto plain = std::make_pair(COLORREF{0}, false);
    EXPECT_NE(fuzz::Look(set, 14)[10], plain);
    EXPECT_EQ(fuzz::Look(fresh, 14)[10], plain);
}
