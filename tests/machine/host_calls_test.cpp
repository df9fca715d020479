#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "support/test_support.h"
#include "tests/machine/program_builder.h"

namespace {

using Texts = std::vector<CString>;

struct SeenByCallback {
    int top = -1;
    int resultType = 0;
    int first = 0;
    double second = 0;
    CString third;
    int calls = 0;
};
SeenByCallback seen;

// A function of three arguments that answers with a text.
int Describe(VALUE* stack, int top) {
    ++seen.calls;
    seen.top = top;
    seen.resultType = stack[top - 3].type;
    seen.first = stack[top - 2].intValue;
    seen.second = stack[top - 1].doubleValue;
    seen.third = *stack[top].stringValue;
    stack[top - 3].type = 57;
    stack[top - 3].stringValue = new CString("fertig");
    return 0;  // not looked at
}

int Throws(VALUE*, int) { throw std::runtime_error("kaputt"); }

int ThrowsFrameworkException(VALUE*, int) { throw new CQELException("kaputt"); }

}  // namespace

TEST(HostCalls, CallbackSeesItsArgumentsAndResultCell) {
    ScopedRecordingUi ui;
    seen = SeenByCallback();
    ProgramBuilder pb;
    pb.Begin(1);
    pb.Lit(ProgramBuilder::Double(0.0));
    pb.LitInt(11);
    pb.Lit(ProgramBuilder::Double(2.5));
    pb.Lit(ProgramBuilder::Text("drei"));
    pb.Ins(EXTCALL, 0, reinterpret_cast<intptr_t>(&Describe), "describe");
    pb.Ins(INT, 0, -3);
    pb.Ins(STO, 0, 3);
    pb.Finish();
    pb.Run();
    EXPECT_EQ(pb.machine.failed, 0);
    EXPECT_TRUE(ui.ui.events.empty());
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.top, 8);
    EXPECT_EQ(seen.resultType, 41);
    EXPECT_EQ(seen.first, 11);
    EXPECT_EQ(seen.second, 2.5);
    EXPECT_EQ(seen.third, "drei");
    EXPECT_EQ(static_cast<CString>(pb.machine.stack[4]), "fertig");
}

TEST(HostCalls, ThrowingCallbackEndsTheRunAsFailed) {
    for (PredefinedRoutine routine : {&Throws, &ThrowsFrameworkException}) {
        ScopedRecordingUi ui;
        ProgramBuilder pb;
        pb.Begin(0);
        pb.LitInt(1);
        pb.Ins(EXTCALL, 0, reinterpret_cast<intptr_t>(routine), "wirf");
        pb.Op(oprWrite);
        pb.Finish();
        pb.Run();
        ASSERT_EQ(ui.ui.events.size(), 1u);
        EXPECT_EQ(ui.ui.events[0].text, "Fehler in externer Routine wirf.");
        EXPECT_EQ(ui.ui.events[0].icon, CUserInterface::IconError);
        EXPECT_EQ(pb.machine.failed, 1);
        EXPECT_EQ(pb.machine.p, 3);
    }
    ScopedRecordingUi ui;
    ProgramBuilder pb;
    pb.Ins(EXTCALL, 0, 0);
    pb.Run();
    EXPECT_EQ(ui.ui.Messages(), Texts{"Fehler in externer Routine."});
}

TEST(HostCalls, WriteShowsNumbersOnly) {
    ScopedRecordingUi ui;
    ProgramBuilder pb;
    pb.Begin(0);
    pb.LitInt(5);
    pb.Op(oprWrite);
    pb.Lit(ProgramBuilder::Double(-0.25));
    pb.Op(oprWrite, "Summe");
    pb.Lit(ProgramBuilder::Text("5"));
    pb.Op(oprWrite);
    pb.Finish();
    pb.Run();
    EXPECT_EQ(pb.machine.failed, 0);
    EXPECT_EQ(ui.ui.Messages(),
              (Texts{"Zahl\n5", "Summe\n-0.250000", "Zahl\nunbekanntes Zahlenformat"}));
    for (const UiEvent& event : ui.ui.events) {
        EXPECT_EQ(event.icon, CUserInterface::IconInformation);
        EXPECT_EQ(event.caption, "");
    }
    EXPECT_EQ(pb.machine.t, 0) << "every Write popped its cell";
}

TEST(HostCalls, NumberEntryCancelledGivesZero) {
    ScopedRecordingUi ui;
    ui.ui.numberAnswers = {std::nullopt, 7, 3};
    ProgramBuilder pb;
    pb.Begin(3);
    pb.Op(oprReadInt);
    pb.Ins(STO, 0, 3);
    pb.Op(oprReadInt, "Anzahl?");
    pb.Ins(STO, 0, 4);
    pb.Op(oprReadDouble);
    pb.Ins(STO, 0, 5);
    pb.Finish();
    pb.Run();
    EXPECT_EQ(pb.machine.failed, 0);
    ASSERT_EQ(ui.ui.events.size(), 3u);
    EXPECT_EQ(ui.ui.events[0].text, "Wert=");
    EXPECT_TRUE(ui.ui.events[0].integerMode);
    EXPECT_EQ(ui.ui.events[1].text, "Anzahl?");
    EXPECT_FALSE(ui.ui.events[2].integerMode);
    const VALUE* cells = pb.machine.stack;
    EXPECT_EQ(cells[4].type, 40);
    EXPECT_EQ(cells[4].intValue, 0);
    EXPECT_EQ(cells[5].intValue, 7);
    EXPECT_EQ(cells[6].type, 41);
    EXPECT_EQ(cells[6].doubleValue, 3.0);
}
