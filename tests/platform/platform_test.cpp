#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "support/test_support.h"

TEST(CStringTest, TextOperationsAndLatin1CaseMapping) {
    CString s("Grüße");
    EXPECT_EQ(s.GetLength(), 5);
    CString upper = s;
    upper.MakeUpper();
    EXPECT_EQ(upper, "GRÜßE");  // ß has no single-byte upper case
    EXPECT_EQ(CString("ÄÖÜ").MakeLower(), "äöü");
    EXPECT_EQ(CString("Begin").CompareNoCase("BEGIN"), 0);
    EXPECT_EQ(CString("äpfel").CompareNoCase("ÄPFEL"), 0);
    EXPECT_LT(CString("a").CompareNoCase("B"), 0);

    CString t("abcabc");
    EXPECT_EQ(t.Find('c'), 2);
    EXPECT_EQ(t.Find("ca", 3), -1);
    EXPECT_EQ(t.Find("bc", 2), 4);
    EXPECT_EQ(t.ReverseFind('a'), 3);
    EXPECT_EQ(t.Mid(2, 3), "cab");
    EXPECT_EQ(t.Mid(4, 99), "bc");   // clipped, not past the end
    EXPECT_EQ(t.Mid(-3, 2), "ab");
    EXPECT_EQ(t.Left(99), "abcabc");
    EXPECT_EQ(t.Right(2), "bc");
    EXPECT_EQ(t.Replace("b", "XY"), 2);
    EXPECT_EQ(t, "aXYcaXYc");

    CString f;
    f.Format("%d:\t%s %s", 7, "OPR", "+");
    EXPECT_EQ(f, "7:\tOPR +");
    CString longText;
    longText.Format("%s", std::string(1000, 'x').c_str());  // beyond the small buffer
    EXPECT_EQ(longText.GetLength(), 1000);
    EXPECT_EQ(CString('!', 3) + "x", "!!!x");
    EXPECT_EQ(CString("  a b  ").Trim(), "a b");
}

TEST(EncodingTest, Utf8AndLatin1AtTheBoundary) {
    EXPECT_EQ(DecodeToLatin1("Gr\xC3\xBC\xC3\x9F" "e"), "Gr\xFC\xDF" "e");
    EXPECT_EQ(DecodeToLatin1("a\xE2\x82\xAC" "b"), "a?b");             // euro sign is beyond Latin-1
    EXPECT_EQ(DecodeToLatin1("Gr\xFC\xDF" "e"), "Gr\xFC\xDF" "e");     // not UTF-8: taken as Latin-1
    EXPECT_EQ(DecodeToLatin1("\xEF\xBB\xBFx"), "x");                   // byte order mark dropped
    EXPECT_FALSE(IsValidUtf8("\xC0\x80"));                             // overlong form
    EXPECT_FALSE(IsValidUtf8("\xED\xA0\x80"));                         // surrogate
    EXPECT_EQ(Latin1ToUtf8("\xFC"), "\xC3\xBC");
    EXPECT_EQ(Utf8ToLatin1(Latin1ToUtf8(std::string("\x01\x7F\x80\xFF", 4))), std::string("\x01\x7F\x80\xFF", 4));
}

TEST(TextFileTest, ReadsLinesAsTextModeHasThemAndWritesUtf8) {
    const std::string dir = MakeTempDir("textfile");
    WriteFileBytes(dir + "in.txt", "eins\r\nzw\xC3\xB6i\nlone\rcr\nletzte");
    CStdioFile in;
    ASSERT_TRUE(in.Open((dir + "in.txt").c_str(), CStdioFile::modeRead | CStdioFile::typeText));
    std::vector<std::string> lines;
    CString line;
    while (in.ReadString(line)) lines.push_back(line.str());
    EXPECT_EQ(lines, (std::vector<std::string>{"eins", "zw\xF6i", "lone\rcr", "letzte"}));

    CStdioFile out;
    ASSERT_TRUE(out.Open((dir + "out.txt").c_str(), CStdioFile::modeCreate | CStdioFile::modeWrite));
    out.WriteString("Gr\xFC\xDF" "e\n");
    out.Close();
    EXPECT_EQ(ReadFileBytes(dir + "out.txt"), "Gr\xC3\xBC\xC3\x9F" "e\n");

    CStdioFile missing;
    EXPECT_FALSE(missing.Open((dir + "nichtda.txt").c_str(), CStdioFile::modeRead));
}

TEST(ParseWholeNumberTest, AcceptsOnlyWholeNumbersInRange) {
    int v = 0;
    EXPECT_TRUE(ParseWholeNumber(" -42 ", v));
    EXPECT_EQ(v, -42);
    EXPECT_TRUE(ParseWholeNumber("2147483647", v));
    EXPECT_EQ(v, 2147483647);
    EXPECT_TRUE(ParseWholeNumber("-2147483648", v));
    EXPECT_EQ(v, -2147483647 - 1);
    for (const char* bad : {"", "1.5", "12a", "2147483648", "--1", "+", "99999999999999999999"})
        EXPECT_FALSE(ParseWholeNumber(bad, v)) << bad;
}

// The console form writes to and reads from streams we can look into.
class ConsoleUiTest : public ::testing::Test {
protected:
    void SetUp() override {
        out = std::tmpfile();
        in = std::tmpfile();
    }
    void TearDown() override {
        std::fclose(out);
        std::fclose(in);
    }
    void Answer(const std::string& input) {
        std::fputs(input.c_str(), in);
        std::rewind(in);
    }
    std::string Output() {
        std::fflush(out);
        std::rewind(out);
        std::string text;
        int c;
        while ((c = std::fgetc(out)) != EOF) text += static_cast<char>(c);
        return text;
    }
    std::FILE* out = nullptr;
    std::FILE* in = nullptr;
};

// A caption heads the block alone: a greeting shown with the error icon is no error.
TEST_F(ConsoleUiTest, MessageBoxIsABlockUnderItsCaptionOrIconWordInUtf8) {
    CConsoleUserInterface ui(out, in);
    ui.ShowMessage("Stack\xFC" "berlauf.", "", CUserInterface::IconError);
    ui.ShowMessage("B 7", "A", CUserInterface::IconInformation);
    ui.ShowMessage("Summe 55", "Hallo, Welt", CUserInterface::IconError);
    EXPECT_EQ(Output(), "== Fehler ==\nStack\xC3\xBC" "berlauf.\n\n== A ==\nB 7\n\n"
                        "== Hallo, Welt ==\nSumme 55\n\n");
}

TEST_F(ConsoleUiTest, TextDialogShowsTheLinesAroundTheMarker) {
    CConsoleUserInterface ui(out, in);
    CString text = "l0\nl1\nl2\nl3\nl4\n<!>!!Fehler\r\nl5\nl6\nl7\n";
    ui.ShowTextDialog("Fehler Parser", text, 4, 11);
    EXPECT_EQ(Output(), "== Fehler Parser == (Zeile 4, Spalte 11)\n  l2\n  l3\n  l4\n  <!>!!Fehler\n  l5\n  l6\n\n");
}

TEST_F(ConsoleUiTest, NumberEntryRejectsWhatIsNoWholeNumberAndCancelsAtEndOfInput) {
    CConsoleUserInterface ui(out, in);
    Answer("1.5\n12\n");
    int value = 0;
    EXPECT_TRUE(ui.EnterNumber("Wert=", true, value));
    EXPECT_EQ(value, 12);
    EXPECT_NE(Output().find("Bitte eine ganze Zahl eingeben."), std::string::npos);
    EXPECT_FALSE(ui.EnterNumber("Wert=", false, value));  // input exhausted
}

TEST_F(ConsoleUiTest, FileDialogTakesAPathAndAddsTheDefaultExtension) {
    CConsoleUserInterface ui(out, in);
    const std::string dir = MakeTempDir("console-file");
    Answer(dir + "skript\n\n");
    CString path = "*.qel";
    ASSERT_TRUE(ui.FileDialog(false, "qel", "Scripte (*.qel)|*.qel||", OFN_OVERWRITEPROMPT, path));
    EXPECT_EQ(path, (dir + "skript.qel").c_str());
    EXPECT_FALSE(ui.FileDialog(true, "qel", "", OFN_FILEMUSTEXIST, path));  // empty answer: cancel
}
