// The environment seen from a compiled script: EXTERN, host routines, IMPORT.
#include <gtest/gtest.h>

#include "support/test_support.h"

namespace {

int Verdopple(VALUE* stack, int top) {
    stack[top] = static_cast<int>(stack[top]) * 2;
    return 1;
}

class HostUmgebung : public CBasisPredefinedUmgebung {
public:
    void InitPredefinedArray() override {
        predefinedArray.Add(new CPredefined("Verdopple", Verdopple));
        CBasisPredefinedUmgebung::InitPredefinedArray();
    }
    void Import(CScanner* scanner, CString first, CString second) override {
        imports.Add(first + "/" + second);
        scanner->InsertText(" EXTERN PROCEDURE Verdopple(VAR x : INTEGER); ");
    }
    CStringArray imports;
};

class EnvironmentScripts : public ::testing::Test {
protected:
    void SetUp() override {
        previous = pBasisPredefinedUmgebung;
        pBasisPredefinedUmgebung = &environment;
        savedSuccess = _VarSuccess;
    }
    void TearDown() override {
        pBasisPredefinedUmgebung = previous;
        _VarSuccess = savedSuccess;
    }

    HostUmgebung environment;
    ScopedRecordingUi recording;
    CBasisPredefinedUmgebung* previous = nullptr;
    int savedSuccess = 0;
};

}  // namespace

TEST_F(EnvironmentScripts, BuiltinsAnswerCompiledCalls) {
    const int result = RunText(
        "EXTERN FUNCTION SQRT(x : DOUBLE) : DOUBLE;\n"
        "EXTERN FUNCTION Str(x : DOUBLE; digits : INTEGER) : STRING;\n"
        "EXTERN FUNCTION val(text : STRING) : DOUBLE;\n"
        "EXTERN PROCEDURE errormsg(caption, text : STRING);\n"
        "EXTERN PROCEDURE SetSuccess(code : INTEGER);\n"
        "VAR d : DOUBLE;\n"
        "BEGIN\n"
        "  d := SQRT(-1) + 2;\n"
        "  errormsg(\"Ergebnis\", Str(d, 1) + \"|\" + Str(val(\"3.14159 m\"), 2));\n"
        "  SetSuccess(17)\n"
        "END.\n");
    EXPECT_EQ(result, 1);
    const std::vector<CString> expected = {"sqrt: Negatives Argument", "2.0|3.14"};
    EXPECT_EQ(recording.ui.Messages(), expected);
    EXPECT_EQ(_VarSuccess, 17);
}

TEST_F(EnvironmentScripts, HostRoutinesAndImportReachTheScript) {
    const int result = RunText(
        "IMPORT \"test\" \"verdopple\"\n"
        "EXTERN PROCEDURE ErrorMsg(caption, text : STRING);\n"
        "VAR n : INTEGER;\n"
        "BEGIN n := 5; Verdopple(n); Verdopple(n); ErrorMsg(\"n\", \"\" + n) END.\n");
    EXPECT_EQ(result, 1);
    ASSERT_EQ(environment.imports.GetSize(), 1);
    EXPECT_EQ(environment.imports[0], "test/verdopple");
    const std::vector<CString> expected = {"20"};
    EXPECT_EQ(recording.ui.Messages(), expected);
}

TEST_F(EnvironmentScripts, UnknownOrUnreachableRoutinesStopTheCompile) {
    EXPECT_EQ(RunText("EXTERN PROCEDURE nichtda(); BEGIN END.", false), 0);
    pBasisPredefinedUmgebung = nullptr;
    EXPECT_EQ(RunText("EXTERN FUNCTION sin(x : DOUBLE) : DOUBLE; BEGIN END.", false), 0);
    EXPECT_EQ(RunText("IMPORT \"a\" \"b\" BEGIN END.", false), 0);
    EXPECT_TRUE(recording.ui.events.empty());
}
