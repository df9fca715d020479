// The qel command: options, exit status and the JSON user interface.
#include <gtest/gtest.h>

#include "support/test_support.h"
#include "tests/cli/command.h"

using Lines = std::vector<std::string>;

namespace {

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string EmptyDir() {
    static const std::string dir = MakeTempDir("cli-empty");
    return dir;
}

// Runs `text` with the JSON interface; the examples' prelude declares the built-ins.
CommandResult Json(const std::string& text, const std::string& prelude = ExamplesDir(),
                   const std::string& input = "") {
    return RunQel({"--ui", "json", "--prelude-dir", prelude, "-e", text}, input);
}

}  // namespace

TEST(QelCommand, HelpAndUsageErrors) {
    for (const char* option : {"--help", "-h"}) {
        const CommandResult help = RunQel({option});
        EXPECT_EQ(help.exitCode, 0) << option;
        EXPECT_TRUE(Contains(help.out, "Usage: qel") && Contains(help.out, "--prelude-dir"));
        EXPECT_EQ(help.err, "");
    }
    // Usage errors exit with 2 and say what is wrong, on standard error only.
    const std::string dir = MakeTempDir("cli-usage");
    const std::pair<Lines, const char*> cases[] = {
        {{}, "no script"},
        {{"--bogus", dir + "x.qel"}, "unknown option --bogus"},
        {{dir + "fehlt.qel"}, "fehlt.qel"},
        {{dir}, "directory"},
        {{"--ui", "xml", "-e", "BEGIN END."}, "xml"},
        {{"-e", "BEGIN END.", "--prelude-dir"}, "--prelude-dir"},
        {{"-e", "BEGIN END.", dir + "x.qel"}, "not both"},
        {{"--quiet=ja", "-e", "BEGIN END."}, "--quiet"},
        {{"--ui", "json", dir + "fehlt.qel"}, "cannot read"},
        {{"--listing", dir + "fehlt/code.asm", "-e", "BEGIN END."}, "cannot write listing"},
        {{"--prelude-dir", dir + "fehlt", "-e", "BEGIN END."}, "prelude directory"},
        {{"--listing-lines", "-e", "BEGIN END."}, "needs --listing"},
        {{"--max-steps", "0", "-e", "BEGIN END."}, "--max-steps needs a whole number"},
        {{"--max-steps=12x", "-e", "BEGIN END."}, "not '12x'"},
        {{"--timeout", "-1", "-e", "BEGIN END."}, "--timeout needs"},
        {{"--timeout", "0", "-e", "BEGIN END."}, "--timeout needs"},
        {{"--max-memory", "99999999999999999999", "-e", "BEGIN END."}, "--max-memory needs"},
    };
    for (const auto& [args, says] : cases) {
        const CommandResult run = RunQel(args);
        EXPECT_EQ(run.exitCode, 2) << says;
        EXPECT_TRUE(Contains(run.err, says)) << run.err;
        EXPECT_EQ(run.out, "") << says;
    }
}

TEST(QelCommand, JsonWritesMessagesInUtf8ThenTheResult) {
    const CommandResult run = Json(Utf8("BEGIN MeldungInt(\"Grüße\", \"Wert\", 7); SetSuccess(5); "
                                        "ErrorMsg(\"a\\\"b\", \"c\\\\d\nzwei\\tTab\") END."));
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.OutLines(),
              (Lines{MessageLine("Grüße", "Wert 7"),
                     R"({"event":"message","icon":"error","caption":"a\"b","text":"c\\d\nzweitTab"})",
                     ResultLine(1, 5)}));
    // The console is the default interface.
    const CommandResult console = RunQel({"--prelude-dir", ExamplesDir(), "-e",
                                          Utf8("BEGIN ErrorMsg(\"Titel\", \"Grüße\") END.")});
    EXPECT_EQ(console.exitCode, 0) << console.err;
    EXPECT_EQ(console.out, Utf8("== Titel ==\nGrüße\n\n"));
}

// The dialog and the boxes stay as they were; the place of the error comes
// beside them, counted from 1 in the user's own file, on stderr and in JSON.
TEST(QelCommand, ErrorsExitWithOneAndNameTheirPlace) {
    const CommandResult compile = Json("BEGIN\n  x := 1\nEND.", EmptyDir());
    EXPECT_EQ(compile.exitCode, 1);
    EXPECT_EQ(compile.OutLines(),
              (Lines{R"({"event":"text-dialog","title":"Fehler Parser","text":"BEGIN\n  x := 1\n)"
                     R"(<!>!Dieser Bezeichner ist nicht vereinbart.\r\nEND.","line":1,"column":46,)"
                     R"("file":"<-e>","script_line":2,"script_column":3,)"
                     R"("message":"Dieser Bezeichner ist nicht vereinbart."})",
                     MessageLine("", "Fehler im Parser"), ResultLine(0, 0, "compile")}));
    EXPECT_EQ(compile.err, "<-e>:2:3: Fehler: Dieser Bezeichner ist nicht vereinbart.\n");

    const CommandResult run = Json("VAR a : INTEGER;\nBEGIN a := 0;\n  a := 1 / a END.", EmptyDir());
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.OutLines(),
              (Lines{MessageLine("", "Division durch Null"),
                     R"({"event":"runtime-error","file":"<-e>","script_line":3,"script_column":3,)"
                     R"("message":"Division durch Null"})",
                     ResultLine(0, 0, "run")}));
    EXPECT_EQ(run.err, "<-e>:3:3: Fehler: Division durch Null\n");
    // The stack overflows at the entry of a routine: the place is the call.
    const CommandResult deep = Json("PROCEDURE r(n : INTEGER);\nBEGIN\n  r(n)\nEND;\nBEGIN\n  r(0)\nEND.", EmptyDir());
    EXPECT_EQ(deep.err, Utf8("<-e>:3:3: Fehler: Stacküberlauf.\n"));

    // A script file behind a prelude of four lines; an error in the prelude
    // names the prelude. Warnings and scanner errors get their lines too.
    const std::string dir = MakeTempDir("cli-places");
    WriteFileBytes(dir + "extern.qel", "(* eins *)\n(* zwei *)\nVAR d : DOUBLE;\nVAR i : INTEGER;\n");
    WriteFileBytes(dir + "script.qel", "BEGIN\n  d := 1.5;\n  i := d;\n  i := 1;\n   y := 2\nEND.\n");
    const CommandResult file = RunQel({dir + "script.qel"});
    EXPECT_EQ(file.exitCode, 1);
    EXPECT_EQ(file.err, Utf8(("script.qel:3:9: Warnung: Zuweisung von DOUBLE an INTEGER, Wertverlust möglich.\n" +
                              dir + "script.qel:5:4: Fehler: Dieser Bezeichner ist nicht vereinbart.\n")
                                 .insert(0, dir).c_str()));
    WriteFileBytes(dir + "extern.qel", "VAR d : DOUBLE;\nVAR i : INTEGER;\nCONST b = ;\n");
    const CommandResult prelude = RunQel({"--quiet", dir + "script.qel"});
    EXPECT_EQ(prelude.exitCode, 1);
    EXPECT_EQ(prelude.err, "") << "--quiet shows no compile errors, on no channel";
    const CommandResult shown = RunQel({"--ui", "json", dir + "script.qel"});
    EXPECT_EQ(shown.err, dir + "extern.qel:3:11: Fehler: Nach \"=\" muss eine Zahl folgen.\n");
    const CommandResult scanner = RunQel({"-", "--prelude-dir", EmptyDir()}, "BEGIN\n  \"offen\nEND.");
    // The open string swallows the rest, so the parser stands on it as well.
    EXPECT_EQ(scanner.err, "<stdin>:2:3: Fehler: Ende der Zeichenkette fehlt.\n"
                           "<stdin>:2:3: Fehler: Hier wird \";\" oder END erwartet.\n");
}

TEST(QelCommand, CompileOnlyDoesNotRunAndWritesTheListing) {
    // From a file and from -e: the message box never comes. The statement's
    // code is marked with its place in the script, not in the joined text.
    const std::string dir = MakeTempDir("cli-compile-only");
    const char* text = "BEGIN MeldungInt(\"nie\", \"gezeigt\", 1) END.\n";
    WriteFileBytes(dir + "meldung.qel", text);
    for (const Lines& source : {Lines{dir + "meldung.qel"}, Lines{"-e", text}}) {
        Lines args = {"--compile-only", "--listing", dir + "code.asm", "--listing-lines",
                      "--ui", "json", "--prelude-dir", ExamplesDir()};
        args.insert(args.end(), source.begin(), source.end());
        const CommandResult run = RunQel(args);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_EQ(run.OutLines(), Lines{ResultLine(1, 0)});
        EXPECT_TRUE(Contains(ReadFileBytes(dir + "code.asm"), "; 1:7\n"));
        EXPECT_TRUE(Contains(ReadFileBytes(dir + "code.asm"), "EXTCALL, \"MeldungInt\""));
        WriteFileBytes(dir + "code.asm", "");
    }
}

TEST(QelCommand, NumberEntryAnswersComeFromStandardInput) {
    const char* script =
        "EXTERN FUNCTION EingabeInt(prompt : STRING) : INTEGER;\n"
        "EXTERN FUNCTION EingabeDouble(prompt : STRING) : DOUBLE;\n"
        "VAR n : INTEGER; d : DOUBLE;\n"
        "BEGIN n := EingabeInt(\"Anzahl?\"); d := EingabeDouble(\"Preis?\");\n"
        "  MeldungDouble(\"Summe\", \"n+d\", n + d); n := EingabeInt(\"\"); SetSuccess(n + 100)\n"
        "END.";
    // "abc" and "2.5" are no whole numbers and are passed over; then input ends.
    const CommandResult run = Json(script, ExamplesDir(), "abc\n 7 \n2.5\n-3\r\n");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.OutLines(), (Lines{NumberEntryLine("integer", "Anzahl?", "7"),
                                     NumberEntryLine("double", "Preis?", "-3"),
                                     MessageLine("Summe", "n+d 4.000000"),
                                     NumberEntryLine("integer", "Wert=", "null"), ResultLine(1, 100)}));
}

TEST(QelCommand, PreludeComesFromTheScriptsDirectoryOrTheOneGiven) {
    const std::string withPrelude = MakeTempDir("cli-prelude");
    const std::string without = MakeTempDir("cli-no-prelude");
    // A file name is passed on as it is, not converted from UTF-8.
    const std::string name = Utf8("Übung.qel");
    WriteFileBytes(withPrelude + "extern.qel", "EXTERN PROCEDURE ErrorMsg(caption, text : STRING);\n");
    const std::string body = Utf8("BEGIN ErrorMsg(\"aus\", \"Vorspann ß\") END.\n");
    WriteFileBytes(withPrelude + name, body);
    WriteFileBytes(without + name, body);
    const Lines shown = {MessageLine("aus", "Vorspann ß"), ResultLine(1, 0)};

    EXPECT_EQ(RunQel({"--ui", "json", withPrelude + name}, "", without).OutLines(), shown);
    EXPECT_EQ(RunQel({"--ui", "json", name}, "", withPrelude).OutLines(), shown);
    EXPECT_EQ(RunQel({"--ui", "json", "-e", body}, "", withPrelude).OutLines(), shown);
    const std::string dirWithoutSlash = withPrelude.substr(0, withPrelude.size() - 1);
    EXPECT_EQ(RunQel({"--ui", "json", "--prelude-dir", dirWithoutSlash, without + name}).OutLines(),
              shown);
    // Without it ErrorMsg is unknown; --quiet hides the compile error.
    const CommandResult missing = RunQel({"--quiet", "--ui", "json", without + name}, "", withPrelude);
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.OutLines(), Lines{ResultLine(0, 0, "compile")});
}

TEST(QelCommand, LimitsStopAnEndlessLoopAtItsStatement) {
    const std::pair<Lines, const char*> cases[] = {
        {{"--max-steps", "5000"}, "Skript abgebrochen: Schrittgrenze erreicht."},
        {{"--timeout=0.2"}, "Skript abgebrochen: Zeitgrenze erreicht."},
    };
    for (const auto& [limit, message] : cases) {
        Lines args = {"--prelude-dir", EmptyDir(), "--ui", "json", "-e",
                      "VAR i : INTEGER;\nBEGIN\n  LOOP\n    i := i + 1\n  END\nEND."};
        args.insert(args.begin(), limit.begin(), limit.end());
        const CommandResult run = RunQel(args);
        EXPECT_EQ(run.exitCode, 1) << message;
        EXPECT_EQ(run.err, std::string("<-e>:4:5: Fehler: ") + message + "\n");
        EXPECT_EQ(run.OutLines().back(), ResultLine(0, 0, "run"));
    }
}
