// The error record of a run and the diagnostic listener: places counted from 1
// in the file the error lies in, for compile, scanner and run-time errors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qelkern/diagnostics.h"
#include "support/test_support.h"

namespace {

// Three lines of prelude, so that a place counted in the joined text, or from 0,
// lands somewhere else.
const char* const prelude =
    "(* Vorspann *)\n"
    "CONST drei = 3;\n"
    "VAR teiler : INTEGER;\n";

class Collector : public CDiagnosticListener {
public:
    Collector() { pDiagnosticListener = this; }
    ~Collector() override { pDiagnosticListener = nullptr; }
    void OnDiagnostic(const CScriptError& diagnostic) override { seen.push_back(diagnostic); }
    std::vector<CScriptError> seen;
};

struct Place {
    ScriptErrorKind kind;
    int scriptLine;
    int scriptColumn;
    bool inPrelude;
    std::string message;
};

void ExpectPlace(const CScriptError& record, const Place& expected, const std::string& file) {
    EXPECT_EQ(record.kind, expected.kind);
    EXPECT_EQ(record.scriptLine, expected.scriptLine);
    EXPECT_EQ(record.scriptColumn, expected.scriptColumn);
    EXPECT_EQ(record.inPrelude, expected.inPrelude);
    EXPECT_EQ(record.message.str(), expected.message);
    EXPECT_EQ(record.file.str(), file);
}

}  // namespace

TEST(ErrorRecord, NamesTheFileLineAndColumnOfTheFirstError) {
    const std::string dir = MakeTempDir("error-record");
    WriteFileBytes(dir + "extern.qel", prelude);
    const struct {
        const char* script;
        Place place;
    } cases[] = {
        // The symbol the parser stood on: x in line 3, column 5.
        {"BEGIN\n  teiler := 1;\n    x := 2\nEND.\n",
         {ScriptErrorKind::Compile, 3, 5, false, "Dieser Bezeichner ist nicht vereinbart."}},
        // The statement whose code failed, inside a procedure called from line 4.
        {"PROCEDURE Teile();\nBEGIN\n  teiler := drei / teiler\nEND;\nBEGIN Teile() END.\n",
         {ScriptErrorKind::Runtime, 3, 3, false, "Division durch Null"}},
        {"BEGIN\n  teiler := 1.2.3\nEND.\n",
         {ScriptErrorKind::Scanner, 2, 13, false, "Fehler bei der Zahlenangabe."}},
        // Only the first error is kept; the second comes from the same typo.
        {"BEGIN\n  y := 1;\n  z := 2\nEND.\n",
         {ScriptErrorKind::Compile, 2, 3, false, "Dieser Bezeichner ist nicht vereinbart."}},
        {"BEGIN teiler := 1 END.\n", {ScriptErrorKind::None, 0, 0, false, ""}},
    };
    for (const auto& c : cases) {
        for (const bool showErrors : {true, false}) {
            SCOPED_TRACE(std::string(c.script) + (showErrors ? " shown" : " silent"));
            ScopedRecordingUi rec;
            const std::string path = dir + "skript.qel";
            WriteFileBytes(path, c.script);
            const int result = RunScript(dir.c_str(), CString(path), showErrors);
            EXPECT_EQ(result, c.place.kind == ScriptErrorKind::None ? 1 : 0);
            const CScriptError& record = GetLastScriptError();
            ExpectPlace(record, c.place, c.place.kind == ScriptErrorKind::None ? "" : path);
            // The joined text counts from 0 and from the prelude's first line.
            if (record.kind != ScriptErrorKind::None) {
                EXPECT_EQ(record.line, c.place.scriptLine + 2);
            }
        }
    }
}

TEST(ErrorRecord, AnErrorInThePreludeNamesThePrelude) {
    const std::string dir = MakeTempDir("error-record-prelude");
    WriteFileBytes(dir + "extern.qel", "VAR a : INTEGER;\nCONST b = ;\n");
    ScopedRecordingUi rec;
    std::string text = "BEGIN END.";
    EXPECT_EQ(RunScript(dir.c_str(), text.data(), static_cast<int>(text.size()), false, true), 0);
    ExpectPlace(GetLastScriptError(),
                {ScriptErrorKind::Compile, 2, 11, true, "Nach \"=\" muss eine Zahl folgen."},
                dir + "extern.qel");
}

TEST(DiagnosticListener, HearsWarningsAndEveryScannerErrorBeforeTheUserSeesThem) {
    ScopedRecordingUi rec;
    Collector collector;
    EXPECT_EQ(RunText("VAR i : INTEGER;\nBEGIN\n  i := 2.5;\n  i := 1.2.3 + 4..5\nEND.", false), 0);
    const ScriptErrorKind kinds[] = {ScriptErrorKind::Warning, ScriptErrorKind::Scanner,
                                     ScriptErrorKind::Scanner, ScriptErrorKind::Warning};
    ASSERT_EQ(collector.seen.size(), std::size(kinds));
    for (size_t i = 0; i < std::size(kinds); ++i) EXPECT_EQ(collector.seen[i].kind, kinds[i]) << i;
    EXPECT_EQ(collector.seen[0].scriptLine, 3);
    EXPECT_EQ(collector.seen[2].scriptColumn, 16);
    EXPECT_TRUE(collector.seen[0].file.IsEmpty()) << "a text without a file";
    // The warning is no error: the record holds the first scanner error.
    EXPECT_EQ(GetLastScriptError().kind, ScriptErrorKind::Scanner);
    EXPECT_EQ(GetLastScriptError().scriptColumn, 8);
    // showErrors false hides the warning box; the scanner shows its boxes always.
    EXPECT_EQ(rec.ui.Messages().size(), 2u);
}
