// The host's limit on the memory of a script, and running out of memory.
#include <gtest/gtest.h>

#include <string>

#include "qelkern/runcontrol.h"
#include "support/test_support.h"

namespace {

const char* const outOfMemory = "Nicht genügend Speicher für das Skript.";

// Installs a run control with a memory limit for its life.
struct ScopedMemoryLimit {
    explicit ScopedMemoryLimit(size_t bytes) : previous(pRunControl) {
        control.maxMemoryBytes = bytes;
        pRunControl = &control;
    }
    ~ScopedMemoryLimit() { pRunControl = previous; }
    CRunControl control;
    CRunControl* const previous;
};

std::string ManyStatements(int count) {
    std::string source = "VAR x : INTEGER; BEGIN x := 0";
    for (int i = 0; i < count; ++i) source += "; x := x + 1";
    return source + " END.";
}

}  // namespace

TEST(MemoryLimit, EndsTheRunWithAMessage) {
    const struct {
        const char* what;
        std::string source;
    } cases[] = {
        {"texts", "VAR s : STRING; BEGIN s := \"x\"; LOOP s := s + s END END."},
        {"texts kept in an array",
         "VAR a : ARRAY [100] OF STRING; i : INTEGER; BEGIN a[0] := \"0123456789\"; "
         "LOOP FOR i := 1 TO 99 DO a[i] := a[i - 1] + a[i] END END END."},
        {"stack", "PROCEDURE p(); BEGIN p() END; BEGIN p() END."},
        {"code", ManyStatements(100000)},
    };
    for (const auto& c : cases) {
        ScopedRecordingUi rec;
        ScopedMemoryLimit limit(2 << 20);
        EXPECT_EQ(RunText(c.source), 0) << c.what;
        ASSERT_EQ(rec.ui.events.size(), 1u) << c.what;
        EXPECT_EQ(rec.ui.events[0].text, outOfMemory) << c.what;
        EXPECT_EQ(rec.ui.events[0].icon, CUserInterface::IconError) << c.what;
        EXPECT_EQ(limit.control.stopCause, StopCause::MemoryLimit) << c.what;
    }
}

TEST(MemoryLimit, ScriptsWithinItRunAsWithout) {
    ScopedRecordingUi rec;
    ScopedMemoryLimit limit(2 << 20);
    // Half a megabyte of text, a deep recursion and a long script fit.
    EXPECT_EQ(RunText("VAR s : STRING; i : INTEGER; BEGIN s := \"\"; "
                      "FOR i := 1 TO 250000 DO s := s + \"ab\" END END."),
              1);
    EXPECT_EQ(RunText("PROCEDURE p(n : INTEGER); BEGIN IF n > 0 THEN p(n - 1) END END; "
                      "BEGIN p(5000) END."),
              1);
    EXPECT_EQ(RunText(ManyStatements(5000)), 1);
    EXPECT_TRUE(rec.ui.events.empty());
    EXPECT_EQ(limit.control.stopCause, StopCause::None);
}
