#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/machine/program_builder.h"

namespace {

CString seen;

// A function of three arguments that answers with a text.
int Describe(VALUE* stack, int top) {
    seen.AppendFormat("top %d, result tag %d: %d %s %s;", top, stack[top - 3].type, stack[top - 2].intValue,
                      static_cast<const char*>(CString(stack[top - 1])),
                      static_cast<const char*>(*stack[top].stringValue));
    stack[top - 3].type = 57;
    stack[top - 3].stringValue = new CString("fertig");
    return 0;  // not looked at
}

int Throws(VALUE*, int) { throw std::runtime_error("kaputt"); }

int ThrowsFrameworkException(VALUE*, int) { throw new CQELException("kaputt"); }

}  // namespace

TEST(HostCalls, CallbackSeesItsArgumentsAndResultCell) {
    seen.Empty();
    ProgramBuilder pb;
    pb.Begin(1).Lit(Double(0.0)).Lit(11).Lit(Double(2.5)).Lit(Text("drei"));
    pb.Ins(EXTCALL, 0, reinterpret_cast<intptr_t>(&Describe), "describe").Ins(INT, 0, -3).Ins(STO, 0, 3);
    EXPECT_EQ(pb.RunMain(), Texts{});
    EXPECT_EQ(seen, "top 8, result tag 41: 11 2.500000 drei;");
    EXPECT_EQ(CString(pb.Cell(4)), "fertig");
}

TEST(HostCalls, FailingCallbackEndsTheRun) {
    const struct {
        PredefinedRoutine routine;
        const char* name;
        const char* message;
    } cases[] = {
        {&Throws, "wirf", "Fehler in externer Routine wirf."},
        {&ThrowsFrameworkException, "wirf", "Fehler in externer Routine wirf."},
        {nullptr, "", "Fehler in externer Routine."},
    };
    for (const auto& c : cases) {
        ProgramBuilder pb;
        pb.Begin(0).Lit(1).Ins(EXTCALL, 0, reinterpret_cast<intptr_t>(c.routine), c.name).Write();
        EXPECT_EQ(pb.RunMain(), Texts{c.message});
        EXPECT_EQ(pb.ui.ui.events[0].icon, CUserInterface::IconError);
        EXPECT_EQ(pb.machine.failed, 1);
        EXPECT_EQ(pb.machine.p, 3);
    }
}

TEST(HostCalls, WriteShowsNumbersOnly) {
    ProgramBuilder pb;
    pb.Begin(0).Lit(5).Write().Lit(Double(-0.25)).Write("Summe").Lit(Text("5")).Write();
    EXPECT_EQ(pb.RunMain(), (Texts{"Zahl\n5", "Summe\n-0.250000", "Zahl\nunbekanntes Zahlenformat"}));
    for (const UiEvent& event : pb.ui.ui.events) {
        EXPECT_EQ(event.icon, CUserInterface::IconInformation);
        EXPECT_EQ(event.caption, "");
    }
    EXPECT_EQ(pb.machine.t, 0) << "every Write popped its cell";
}

TEST(HostCalls, NumberEntryCancelledGivesZero) {
    ProgramBuilder pb;
    pb.ui.ui.numberAnswers = {std::nullopt, 7, 3};
    pb.Begin(3).Op(oprReadInt).Ins(STO, 0, 3).Op(oprReadInt, "Anzahl?").Ins(STO, 0, 4);
    EXPECT_EQ(pb.Op(oprReadDouble).Ins(STO, 0, 5).RunMain(), Texts{});
    const auto& events = pb.ui.ui.events;
    ASSERT_EQ(events.size(), 3u);
    EXPECT_EQ(events[0].text, "Wert=");
    EXPECT_TRUE(events[0].integerMode);
    EXPECT_EQ(events[1].text, "Anzahl?");
    EXPECT_FALSE(events[2].integerMode);
    EXPECT_EQ((Texts{CString(pb.Cell(4)), CString(pb.Cell(5)), CString(pb.Cell(6))}),
              (Texts{"0", "7", "3.000000"}));
}
