// The example scripts and the example host run and show what they should.
#include <gtest/gtest.h>

#include "tests/cli/command.h"

using Lines = std::vector<std::string>;

TEST(Examples, ScriptsShowTheirResults) {
    const struct {
        const char* name;
        const char* input;
        Lines shown;
    } cases[] = {
        {"hello.qel", "",
         {MessageLine("Hallo, Welt", "Die Summe von 1 bis 10 ist 55"), ResultLine(1, 0)}},
        {"loops.qel", "",
         {MessageLine("WHILE", "ggT(1071, 462) = 21"), MessageLine("REPEAT", "7! = 5040"),
          MessageLine("LOOP", "Erste Zweierpotenz über 1000: 1024"),
          MessageLine("FOR", "Summe der ungeraden Zahlen bis 19: 100"),
          MessageLine("DOWNTO", "10 9 8 7 6 5 4 3 2 1 Start!"), ResultLine(1, 0)}},
        {"arrays.qel", "",
         {MessageLine("Sortiert", "0 1 2 3 4 5 6 7 "),
          MessageLine("Array", "Summe der Elemente: 28"),
          MessageLine("Namen", "Anna, Bernd, Cäcilie"), ResultLine(1, 0)}},
        {"procedures.qel", "",
         {MessageLine("Rekursion", "10! = 3628800"),
          MessageLine("Rekursion", "Fibonacci(20) = 6765"),
          MessageLine("Geschachtelt", "Primzahlen bis 100: 25"),
          MessageLine("VAR-Parameter", "x nach dem Tausch: 2"), ResultLine(1, 0)}},
        {"strings.qel", "",
         {MessageLine("Zeichenketten", "Grüß Gott, Jürgen!"),
          MessageLine("Vergleich", "Jürgen steht vor Karl"),
          MessageLine("str und val", "Das Doppelte von 3.75 ist 7.50"),
          MessageLine("str ohne Stellen", "Gerundet: 8"),
          MessageLine("Wurzel", "sqrt(2) = 1.414214"), ResultLine(1, 0)}},
        {"maths.qel", "",
         {MessageLine("Trigonometrie", "sin(30°) = 0.500000"),
          MessageLine("Trigonometrie", "cos(60°) = 0.500000"),
          MessageLine("Trigonometrie", "tan(45°) = 1.000000"),
          MessageLine("Hypotenuse", "zu 3 und 4: 5.000000"),
          MessageLine("Betrag", "von -2.5: 2.500000"),
          MessageLine("Vorzeichen", "von -7: -1.000000"), ResultLine(1, 42)}},
        {"input.qel", "3\n250\n",
         {NumberEntryLine("integer", "Wie viele Stück?", "3"),
          NumberEntryLine("double", "Preis pro Stück in Cent?", "250"),
          MessageLine("Rechnung", "Summe in Euro: 7.500000"), ResultLine(1, 0)}},
    };
    for (const auto& c : cases) {
        const CommandResult run = RunQel({"--ui", "json", ExamplesDir() + c.name}, c.input);
        EXPECT_EQ(run.exitCode, 0) << c.name << "\n" << run.err;
        EXPECT_EQ(run.OutLines(), c.shown) << c.name;
    }
}

TEST(Examples, HostProgramEmbedsTheLibrary) {
    const std::string host = std::string(QEL_BINARY_DIR) + "/examples/host/qel-host-example";
    const CommandResult run = RunCommand(host, {ExamplesDir() + "host/demo.qel"});
    ASSERT_NE(run.exitCode, -1) << "build the target qel-host-example first";
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_EQ(run.out, Utf8("[Host] Verdoppelt: 42\n"
                            "[Host] Hallo, Jürgen!\n"
                            "RunScript: 1, Erfolgscode: 42\n"));
}
