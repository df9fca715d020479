// The qel command: options, exit status and the JSON user interface.
#include <filesystem>

#include <gtest/gtest.h>

#include "support/test_support.h"
#include "tests/cli/command.h"
#include "tests/cli/json_lines.h"

using Lines = std::vector<std::string>;

namespace {

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string EmptyDir() {
    static const std::string dir = MakeTempDir("cli-empty");
    return dir;
}

}  // namespace

TEST(QelCommand, HelpGoesToStandardOutput) {
    for (const char* option : {"--help", "-h"}) {
        const CommandResult help = RunQel({option});
        EXPECT_EQ(help.exitCode, 0) << option;
        EXPECT_TRUE(Contains(help.out, "Usage: qel")) << help.out;
        EXPECT_TRUE(Contains(help.out, "--prelude-dir"));
        EXPECT_EQ(help.err, "");
    }
}

TEST(QelCommand, UsageErrorsExitWithTwoAndSaySo) {
    const std::string dir = MakeTempDir("cli-usage");
    struct Case {
        std::vector<std::string> args;
        const char* says;
    } cases[] = {
        {{}, "no script"},
        {{"--bogus", dir + "x.qel"}, "unknown option --bogus"},
        {{dir + "fehlt.qel"}, "fehlt.qel"},
        {{dir}, "directory"},
        {{"--ui", "xml", "-e", "BEGIN END."}, "xml"},
        {{"-e", "BEGIN END.", "--prelude-dir"}, "--prelude-dir"},
        {{"-e", "BEGIN END.", dir + "x.qel"}, "not both"},
        {{"--quiet=ja", "-e", "BEGIN END."}, "--quiet"},
        {{"--ui", "json", dir + "fehlt.qel"}, "cannot read"},
    };
    for (const Case& c : cases) {
        const CommandResult run = RunQel(c.args);
        EXPECT_EQ(run.exitCode, 2) << c.says;
        EXPECT_TRUE(Contains(run.err, c.says)) << run.err;
        EXPECT_EQ(run.out, "") << c.says;
    }
}

TEST(QelCommand, JsonWritesMessagesThenTheResult) {
    const CommandResult run =
        RunQel({"--ui", "json", "--prelude-dir", ExamplesDir(), "-e",
                "BEGIN MeldungInt(\"Titel\", \"Wert\", 7); SetSuccess(5); "
                "ErrorMsg(\"a\\\"b\", \"c\\\\d\nzwei\\tTab\") END."});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    const Lines expected = {
        MessageLine("Titel", "Wert 7"),
        R"({"event":"message","icon":"error","caption":"a\"b","text":"c\\d\nzweitTab"})",
        ResultLine(1, 5),
    };
    EXPECT_EQ(run.OutLines(), expected);
}

TEST(QelCommand, JsonShowsACompileErrorInTheTextDialog) {
    const CommandResult run =
        RunQel({"--ui", "json", "--prelude-dir", EmptyDir(), "-e", "BEGIN\n  x := 1\nEND."});
    EXPECT_EQ(run.exitCode, 1);
    const Lines lines = run.OutLines();
    ASSERT_EQ(lines.size(), 3u) << run.out;
    EXPECT_EQ(lines[0],
              R"({"event":"text-dialog","title":"Fehler Parser","text":"BEGIN\n  x := 1\n)"
              R"(<!>!Dieser Bezeichner ist nicht vereinbart.\r\nEND.","line":1,"column":46})");
    EXPECT_TRUE(Contains(lines[1], R"("event":"message","icon":"error")")) << lines[1];
    EXPECT_TRUE(Contains(lines[1], R"("text":"Fehler im Parser"})")) << lines[1];
    EXPECT_EQ(lines[2], ResultLine(0, 0));
}

TEST(QelCommand, QuietHidesCompileErrorsAndCompileOnlyDoesNotRun) {
    const CommandResult quiet =
        RunQel({"--quiet", "--ui", "json", "--prelude-dir", EmptyDir(), "-e", "BEGIN x := 1 END."});
    EXPECT_EQ(quiet.exitCode, 1);
    EXPECT_EQ(quiet.OutLines(), Lines{ResultLine(0, 0)});

    const std::string script = MakeTempDir("cli-compile-only") + "meldung.qel";
    WriteFileBytes(script, "BEGIN MeldungInt(\"nie\", \"gezeigt\", 1) END.\n");
    for (const std::vector<std::string>& args :
         {std::vector<std::string>{"--compile-only", "--ui", "json", "--prelude-dir", ExamplesDir(),
                                   script},
          std::vector<std::string>{"--compile-only", "--ui", "json", "--prelude-dir", ExamplesDir(),
                                   "-e", "BEGIN MeldungInt(\"nie\", \"gezeigt\", 1) END."}}) {
        const CommandResult run = RunQel(args);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_EQ(run.OutLines(), Lines{ResultLine(1, 0)});
    }
}

TEST(QelCommand, NumberEntryAnswersComeFromStandardInput) {
    const char* script =
        "EXTERN FUNCTION EingabeInt(prompt : STRING) : INTEGER;\n"
        "EXTERN FUNCTION EingabeDouble(prompt : STRING) : DOUBLE;\n"
        "VAR n : INTEGER; d : DOUBLE;\n"
        "BEGIN\n"
        "  n := EingabeInt(\"Anzahl?\");\n"
        "  d := EingabeDouble(\"Preis?\");\n"
        "  MeldungDouble(\"Summe\", \"n+d\", n + d);\n"
        "  n := EingabeInt(\"\");\n"
        "  SetSuccess(n + 100)\n"
        "END.";
    // "abc" and "2.5" are no whole numbers and are passed over; then input ends.
    const CommandResult run = RunQel(
        {"--ui", "json", "--prelude-dir", ExamplesDir(), "-e", script}, "abc\n 7 \n2.5\n-3\r\n");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    const Lines expected = {
        NumberEntryLine("integer", "Anzahl?", "7"),
        NumberEntryLine("double", "Preis?", "-3"),
        MessageLine("Summe", "n+d 4.000000"),
        NumberEntryLine("integer", "Wert=", "null"),
        ResultLine(1, 100),
    };
    EXPECT_EQ(run.OutLines(), expected);
}

TEST(QelCommand, TextIsUtf8OutsideTheEngine) {
    const CommandResult run = RunQel({"--ui", "json", "--prelude-dir", ExamplesDir(), "-e",
                                      Utf8("BEGIN ErrorMsg(\"Grüße\", \"Übung, Maß\") END.")});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.OutLines(), (Lines{MessageLine("Grüße", "Übung, Maß"), ResultLine(1, 0)}));

    // A file name is passed on as it is, not converted.
    const std::string dir = MakeTempDir("cli-utf8");
    const std::string script = dir + Utf8("Übung.qel");
    WriteFileBytes(dir + "extern.qel", "EXTERN PROCEDURE ErrorMsg(caption, text : STRING);\n");
    WriteFileBytes(script, Utf8("BEGIN ErrorMsg(\"Größe\", \"ß\") END.\n"));
    const CommandResult file = RunQel({"--ui", "json", script});
    EXPECT_EQ(file.exitCode, 0) << file.err;
    EXPECT_EQ(file.OutLines(), (Lines{MessageLine("Größe", "ß"), ResultLine(1, 0)}));
}

TEST(QelCommand, PreludeComesFromTheScriptsDirectoryOrTheOneGiven) {
    const std::string withPrelude = MakeTempDir("cli-prelude");
    const std::string without = MakeTempDir("cli-no-prelude");
    WriteFileBytes(withPrelude + "extern.qel",
                   "EXTERN PROCEDURE ErrorMsg(caption, text : STRING);\n");
    const char* body = "BEGIN ErrorMsg(\"aus\", \"Vorspann\") END.\n";
    WriteFileBytes(withPrelude + "s.qel", body);
    WriteFileBytes(without + "s.qel", body);
    const Lines shown = {MessageLine("aus", "Vorspann"), ResultLine(1, 0)};

    EXPECT_EQ(RunQel({"--ui", "json", withPrelude + "s.qel"}, "", without).OutLines(), shown);
    EXPECT_EQ(RunQel({"--ui", "json", "s.qel"}, "", withPrelude).OutLines(), shown);
    EXPECT_EQ(RunQel({"--ui", "json", "-e", body}, "", withPrelude).OutLines(), shown);
    std::string dirWithoutSlash = withPrelude;
    dirWithoutSlash.pop_back();
    EXPECT_EQ(RunQel({"--ui", "json", "--prelude-dir", dirWithoutSlash, without + "s.qel"})
                  .OutLines(),
              shown);

    const CommandResult missing = RunQel({"--quiet", "--ui", "json", without + "s.qel"}, "", withPrelude);
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.OutLines(), Lines{ResultLine(0, 0)});
}

TEST(QelCommand, ListingFileReceivesTheCode) {
    const std::string listing = MakeTempDir("cli-listing") + "code.asm";
    const CommandResult run = RunQel({"--compile-only", "--listing", listing, "--prelude-dir",
                                      EmptyDir(), "-e", "VAR i : INTEGER; BEGIN i := 1 END."});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    const std::string code = ReadFileBytes(listing);
    EXPECT_TRUE(Contains(code, "INT 0, 4, \"main\"")) << code;
    EXPECT_TRUE(Contains(code, "STO")) << code;
}

TEST(QelCommand, RunTimeErrorExitsWithOne) {
    const CommandResult run = RunQel({"--ui", "json", "--prelude-dir", EmptyDir(), "-e",
                                      "VAR a : INTEGER; BEGIN a := 0; a := 1 / a END."});
    EXPECT_EQ(run.exitCode, 1);
    const Lines lines = run.OutLines();
    ASSERT_EQ(lines.size(), 2u) << run.out;
    EXPECT_TRUE(Contains(lines[0], "Division durch Null")) << lines[0];
    EXPECT_EQ(lines[1], ResultLine(0, 0));
}

TEST(QelCommand, ConsoleIsTheDefaultInterface) {
    const CommandResult run = RunQel({"--prelude-dir", ExamplesDir(), "-e",
                                      Utf8("BEGIN ErrorMsg(\"Titel\", \"Grüße\") END.")});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "Titel")) << run.out;
    EXPECT_TRUE(Contains(run.out, Utf8("Grüße"))) << run.out;
    EXPECT_FALSE(Contains(run.out, "\"event\""));
}
