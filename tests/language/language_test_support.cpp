#include "language/language_test_support.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace {

std::string Describe(const VALUE& cell) {
    if (cell.type == 57) return "s:" + cell.stringValue->str();
    char buffer[64];
    if (cell.type == 41) std::snprintf(buffer, sizeof buffer, "d:%g", cell.doubleValue);
    else if (cell.type == 40) std::snprintf(buffer, sizeof buffer, "i:%d", cell.intValue);
    else std::snprintf(buffer, sizeof buffer, "t%d:%d", cell.type, cell.intValue);
    return buffer;
}

int Merke(VALUE* stack, int top) {
    Recorded().push_back(Describe(stack[top]));
    return 1;
}

int Setze(VALUE* stack, int top) {
    stack[top] = 7;
    return 1;
}

}  // namespace

Record& Recorded() {
    static Record record;
    return record;
}

void RecordingEnvironment::InitPredefinedArray() {
    predefinedArray.Add(new CPredefined("merke", Merke));
    predefinedArray.Add(new CPredefined("merkeZahl", Merke));
    predefinedArray.Add(new CPredefined("setze", Setze));
    CBasisPredefinedUmgebung::InitPredefinedArray();
}

void RecordingEnvironment::Import(CScanner* scanner, CString first, CString second) {
    imports.push_back(first.str() + "|" + second.str());
    if (first == "text") scanner->InsertText(second);
}

ScopedEnvironment::ScopedEnvironment() : previous(pBasisPredefinedUmgebung) {
    pBasisPredefinedUmgebung = &environment;
    Recorded().clear();
}

ScopedEnvironment::~ScopedEnvironment() { pBasisPredefinedUmgebung = previous; }

Record RunRecorded(const std::string& body, int* result) {
    ScopedRecordingUi ui;
    ScopedEnvironment environment;
    int outcome = RunText("EXTERN PROCEDURE merke(x : STRING);\n"
                          "EXTERN PROCEDURE merkeZahl(x : INTEGER);\n" + body, true);
    if (result) *result = outcome;
    return Recorded();
}

std::string CompileError(const std::string& source) {
    ScopedRecordingUi ui;
    RunText(source, true, false);
    for (const UiEvent& event : ui.ui.events) {
        if (event.kind != UiEvent::TextDialog) continue;
        const std::string& text = event.text.str();
        size_t marker = text.find(FehlerMeldungStart);
        if (marker == std::string::npos) return "<kein Marker>";
        size_t start = text.find_first_not_of('!', marker + 3);
        size_t end = text.find("\r\n", start);
        return text.substr(start, end - start);
    }
    return "";
}

void ExpectErrors(const std::vector<std::pair<std::string, std::string>>& cases) {
    for (const auto& [source, message] : cases) {
        EXPECT_EQ(CompileError(source), message) << source;
        ScopedRecordingUi ui;
        EXPECT_EQ(RunText(source, false), 0) << source;
        EXPECT_TRUE(ui.ui.events.empty()) << source;
    }
}

int RunSilently(const std::string& source) {
    ScopedRecordingUi ui;
    const int result = RunText(source, true);
    EXPECT_TRUE(ui.ui.events.empty()) << source;
    return result;
}
