// A headless debugger host drives scripts through breakpoints and steps and
// checks what each pause shows: the line, the call stack, the variables.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "support/test_support.h"

namespace {

std::string Join(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
}

std::string LineText(const CDebugLocation& at) {
    return (at.file == DebugFile::Prelude ? "P" : "") + std::to_string(at.line);
}

std::string ValueText(const CDebugValue& cell) {
    const std::string text = cell.text.str();
    return cell.value.type == 57 ? "\"" + text + "\"" : text;
}

// "x=1 VAR y=[1,2] s=\"a\"" for the variables of one frame.
std::string VariablesText(const CDebugPause& pause, size_t frame) {
    std::string text;
    for (const CDebugVariable& variable : pause.Variables(frame)) {
        if (!text.empty()) text += " ";
        if (variable.kind == DebugVariableKind::VarParameter) text += "VAR ";
        text += variable.name.str() + "=";
        if (!variable.isArray) {
            text += ValueText(variable.value);
            continue;
        }
        std::string elements;
        for (const CDebugValue& element : variable.elements)
            elements += (elements.empty() ? "" : ",") + ValueText(element);
        text += "[" + elements + "]";
    }
    return text;
}

// "5 q@5^2 q@5 p@9 main@14 | k=0": the line, the call stack, the innermost
// frame's variables. "^2": the enclosing block's activation is frame 2, not
// the caller's.
std::string PauseText(const CDebugPause& pause) {
    std::string text = LineText(pause.location);
    for (size_t i = 0; i < pause.frames.size(); ++i) {
        const CDebugFrame& frame = pause.frames[i];
        text += " " + frame.routine.str() + "@" + LineText(frame.location);
        if (frame.outerFrame >= 0 && static_cast<size_t>(frame.outerFrame) != i + 1)
            text += "^" + std::to_string(frame.outerFrame);
        if (frame.isMainBlock != (i + 1 == pause.frames.size())) text += "!main";
    }
    const std::string variables = VariablesText(pause, 0);
    return variables.empty() ? text : text + " | " + variables;
}

class TestDebugger : public CDebugger {
public:
    DebugCommand OnPause(const CDebugPause& pause) override {
        reasons.push_back(pause.reason);
        stops.push_back(PauseText(pause));
        if (inspect) inspect(pause);
        if (stops.size() > 100) return DebugCommand::Stop;  // a runaway test ends
        if (next >= commands.size()) return DebugCommand::Continue;
        return commands[next++];
    }
    void OnBreakpointMoved(const CDebugBreakpoint& breakpoint) override { moved.push_back(breakpoint); }

    std::vector<DebugCommand> commands;  // one per pause; Continue when they run out
    size_t next = 0;
    std::function<void(const CDebugPause&)> inspect;
    std::vector<std::string> stops;
    std::vector<DebugReason> reasons;
    std::vector<CDebugBreakpoint> moved;
};

struct ScopedDebugger {
    ScopedDebugger() { pDebugger = &debugger; }
    ~ScopedDebugger() { pDebugger = nullptr; }
    TestDebugger debugger;
};

int RunWithPrelude(const std::string& prelude, const std::string& script) {
    static const std::string dir = MakeTempDir("debugger-prelude");
    WriteFileBytes(dir + "extern.qel", prelude);
    std::string text = script;
    return RunScript(dir.c_str(), text.data(), static_cast<int>(text.size()), true, true);
}

using enum DebugCommand;

// A recursive function with a nested procedure that changes a main-block
// variable through a VAR parameter.
const std::string recursion = Join({
    "VAR r : INTEGER; t : STRING;",                // 1
    "FUNCTION fak(n : INTEGER) : INTEGER;",        // 2
    "  PROCEDURE merke(VAR x : STRING);",          // 3
    "  BEGIN",                                     // 4
    "    x := x + \"*\"",                          // 5
    "  END;",                                      // 6
    "BEGIN",                                       // 7
    "  merke(t);",                                 // 8
    "  IF n <= 1 THEN fak := 1",                   // 9
    "  ELSE fak := n * fak(n - 1) END",            // 10
    "END;",                                        // 11
    "BEGIN",                                       // 12
    "  r := fak(3);",                              // 13
    "  t := t + \"!\"",                            // 14
    "END.",                                        // 15
});

// A procedure with a nested recursive procedure that reaches the outer
// procedure's VAR parameter through its static link.
const std::string nested = Join({
    "VAR a, b : INTEGER;",                         // 1
    "PROCEDURE p(VAR x : INTEGER);",               // 2
    "  PROCEDURE q(k : INTEGER);",                 // 3
    "  BEGIN",                                     // 4
    "    IF k > 0 THEN q(k - 1) END;",             // 5
    "    x := x + k",                              // 6
    "  END;",                                      // 7
    "BEGIN",                                       // 8
    "  q(1);",                                     // 9
    "  x := x * 10",                               // 10
    "END;",                                        // 11
    "BEGIN",                                       // 12
    "  a := 1;",                                   // 13
    "  p(a);",                                     // 14
    "  b := a",                                    // 15
    "END.",                                        // 16
});

struct Session {
    const char* name;
    const std::string& script;
    std::vector<int> breakpoints;
    DebugCommand start;
    std::vector<DebugCommand> commands;
    std::vector<std::string> stops;
};

}  // namespace

TEST(Debugger, BreakpointsAndStepsShowLinesStacksAndVariables) {
    const Session sessions[] = {
        {"each activation of the recursion has its own values",
         recursion, {5, 14}, Continue, {},
         {"5 merke@5 fak@8 main@13 | VAR x=\"\"",
          "5 merke@5 fak@8^3 fak@10 main@13 | VAR x=\"*\"",
          "5 merke@5 fak@8^4 fak@10^4 fak@10 main@13 | VAR x=\"**\"",
          "14 main@14 | r=6 t=\"***\""}},
        {"step into, over and out through nested routines",
         nested, {}, StepInto,
         {StepOver, StepInto, StepInto, StepInto, StepOver, StepOut, StepOut, StepOver, Continue},
         {"13 main@13 | a=0 b=0",
          "14 main@14 | a=1 b=0",
          "9 p@9 main@14 | VAR x=1",
          "5 q@5 p@9 main@14 | k=1",
          "5 q@5^2 q@5 p@9 main@14 | k=0",
          "6 q@6^2 q@5 p@9 main@14 | k=0",
          "6 q@6 p@9 main@14 | k=1",
          "10 p@10 main@14 | VAR x=2",
          "15 main@15 | a=20 b=0"}},
        {"step over a call runs it whole, a breakpoint inside still stops",
         nested, {13, 6}, Continue, {StepOver, StepOver, StepOut, StepOut},
         {"13 main@13 | a=0 b=0",
          "14 main@14 | a=1 b=0",
          "6 q@6^2 q@5 p@9 main@14 | k=0",
          "6 q@6 p@9 main@14 | k=1",
          "10 p@10 main@14 | VAR x=2"}},
        {"step out of the main block runs to the end",
         nested, {}, StepInto, {StepOut}, {"13 main@13 | a=0 b=0"}},
    };
    for (const Session& session : sessions) {
        ScopedRecordingUi ui;
        ScopedDebugger scoped;
        TestDebugger& debugger = scoped.debugger;
        for (int line : session.breakpoints) debugger.SetBreakpoint(DebugFile::Script, line);
        debugger.startCommand = session.start;
        debugger.commands = session.commands;
        EXPECT_EQ(RunText(session.script), 1) << session.name;
        EXPECT_EQ(debugger.stops, session.stops) << session.name;
        EXPECT_TRUE(ui.ui.events.empty()) << session.name;
    }
}

TEST(Debugger, ShowsDeclaredTypesAndEveryValueAsItIs) {
    const std::string script = Join({
        "TYPEDEF farbe : INTEGER;",                                                  // 1
        "CONST rot : farbe = 3;",                                                    // 2
        "VAR z : ARRAY [3] OF INTEGER; s : STRING; d : DOUBLE; f : farbe;",          // 3
        "    w : ARRAY [2] OF STRING;",                                              // 4
        "FUNCTION zeige(VAR a : ARRAY [3] OF INTEGER; v : ARRAY [2] OF STRING;",     // 5
        "               c : farbe) : DOUBLE;",                                       // 6
        "BEGIN",                                                                     // 7
        "  a[0] := 9",                                                               // 8
        "END;",                                                                      // 9
        "BEGIN",                                                                     // 10
        "  z[1] := 5; s := \"Grüße\"; d := 2; f := rot; w[1] := \"b\";",             // 11
        "  d := zeige(z, w, f)",                                                     // 12
        "END.",                                                                      // 13
    });
    ScopedDebugger scoped;
    TestDebugger& debugger = scoped.debugger;
    debugger.SetBreakpoint(DebugFile::Script, 8);
    std::vector<CDebugVariable> routine, main;
    debugger.inspect = [&](const CDebugPause& pause) {
        routine = pause.Variables(0);
        main = pause.Variables(pause.frames.size() - 1);
        EXPECT_TRUE(pause.Variables(pause.frames.size()).empty());
    };
    ASSERT_EQ(RunText(script), 1);
    ASSERT_EQ(debugger.stops, (std::vector<std::string>{
        // Arrays are not initialised: fresh cells hold integer 0.
        "8 zeige@8 main@12 | VAR a=[0,5,0] v=[0,\"b\"] c=3 zeige=0.0"}));
    ASSERT_EQ(routine.size(), 4u);
    EXPECT_EQ(routine[0].typeName, "array [3] of integer");
    EXPECT_EQ(routine[1].typeName, "array [2] of string");
    EXPECT_EQ(routine[1].kind, DebugVariableKind::Parameter);
    EXPECT_EQ(routine[1].elements[0].typeName, "integer");
    EXPECT_EQ(routine[1].elements[1].typeName, "string");
    EXPECT_EQ(routine[2].typeName, "farbe");
    EXPECT_EQ(routine[2].value.typeName, "farbe");
    EXPECT_EQ(routine[3].kind, DebugVariableKind::Result);
    EXPECT_EQ(routine[3].typeName, "double");
    ASSERT_EQ(main.size(), 5u);
    EXPECT_EQ(main[1].value.text, "Grüße");
    EXPECT_EQ(main[2].value.text, "2.0");
    EXPECT_EQ(main[2].value.value.type, 41);
    EXPECT_EQ(main[3].value.typeName, "farbe");
    EXPECT_EQ(main[3].value.text, "3");
}

TEST(Debugger, BreakpointsMoveToTheNextLineWithCode) {
    const std::string script = Join({
        "VAR i : INTEGER;",        // 1
        "BEGIN",                   // 2
        "  (* nichts *)",          // 3
        "",                        // 4
        "  i := 1;",               // 5
        "  WHILE i < 3 DO",        // 6
        "    i := i + 1",          // 7
        "  END",                   // 8
        "END.",                    // 9
    });
    ScopedDebugger scoped;
    TestDebugger& debugger = scoped.debugger;
    for (int line : {3, 6, 8}) debugger.SetBreakpoint(DebugFile::Script, line);
    debugger.SetBreakpoint(DebugFile::Prelude, 1);
    EXPECT_EQ(RunText(script), 1);
    // The loop's condition is a statement start of its own, met on each pass.
    EXPECT_EQ(debugger.stops, (std::vector<std::string>{"5 main@5 | i=0", "6 main@6 | i=1",
                                                        "6 main@6 | i=2", "6 main@6 | i=3"}));
    std::vector<std::string> moved;
    for (const CDebugBreakpoint& b : debugger.moved)
        moved.push_back(LineText(b.requested) + ">" + std::to_string(b.placed.line));
    EXPECT_EQ(moved, (std::vector<std::string>{"3>5", "8>0", "P1>0"}));
    EXPECT_EQ(debugger.Breakpoints()[0].placed.line, 5);

    // Breakpoints set while paused take effect at once; an unchanged
    // placement is not told again.
    debugger.stops.clear();
    debugger.moved.clear();
    for (int line : {6, 8}) debugger.ClearBreakpoint(DebugFile::Script, line);
    debugger.ClearBreakpoint(DebugFile::Prelude, 1);
    debugger.inspect = [&](const CDebugPause&) {
        debugger.ClearBreakpoint(DebugFile::Script, 3);
        debugger.SetBreakpoint(DebugFile::Script, 7);
    };
    EXPECT_EQ(RunText(script), 1);
    EXPECT_EQ(debugger.stops, (std::vector<std::string>{"5 main@5 | i=0", "7 main@7 | i=1",
                                                        "7 main@7 | i=2"}));
    EXPECT_TRUE(debugger.moved.empty());
}

TEST(Debugger, WorksInThePrelude) {
    const std::string prelude = Join({
        "VAR zaehler : INTEGER;",         // P1
        "PROCEDURE zaehle();",            // P2
        "BEGIN",                          // P3
        "  zaehler := zaehler + 1",       // P4
        "END;",                           // P5
    });
    const std::string script = Join({"BEGIN", "  zaehle();", "  zaehle()", "END."});
    ScopedDebugger scoped;
    TestDebugger& debugger = scoped.debugger;
    debugger.SetBreakpoint(DebugFile::Prelude, 4);
    debugger.SetBreakpoint(DebugFile::Script, 3);
    EXPECT_EQ(RunWithPrelude(prelude, script), 1);
    EXPECT_EQ(debugger.stops, (std::vector<std::string>{
        "P4 zaehle@P4 main@2", "3 main@3 | zaehler=1", "P4 zaehle@P4 main@3"}));
}

TEST(Debugger, StopEndsTheRunWithoutAMessage) {
    ScopedRecordingUi ui;
    ScopedDebugger scoped;
    TestDebugger& debugger = scoped.debugger;
    debugger.startCommand = StepInto;
    debugger.commands = {StepOver, Stop};
    // Run on, the division would show its message box.
    EXPECT_EQ(RunText(Join({"VAR i : INTEGER;", "BEGIN", "  i := 1;", "  i := 2;", "  i := i / 0", "END."})), 0);
    EXPECT_EQ(debugger.stops, (std::vector<std::string>{"3 main@3 | i=0", "4 main@4 | i=1"}));
    EXPECT_TRUE(ui.ui.events.empty());
    EXPECT_EQ(GetLastScriptError().kind, ScriptErrorKind::Stopped);
    EXPECT_EQ(GetLastScriptError().cause, StopCause::Cancelled);

    // The next run starts afresh and runs to its end.
    debugger.stops.clear();
    debugger.startCommand = Continue;
    EXPECT_EQ(RunText("VAR i : INTEGER; BEGIN i := 1 END."), 1);
    EXPECT_TRUE(debugger.stops.empty());
}

TEST(Debugger, RuntimeErrorReachesTheHookBeforeItsMessageBox) {
    const std::string script = Join({
        "VAR d : INTEGER;",                        // 1
        "FUNCTION teile(x : INTEGER) : INTEGER;",  // 2
        "BEGIN",                                   // 3
        "  teile := x / d",                        // 4
        "END;",                                    // 5
        "BEGIN",                                   // 6
        "  d := 0;",                               // 7
        "  d := teile(7)",                         // 8
        "END.",                                    // 9
    });
    ScopedRecordingUi ui;
    ScopedDebugger scoped;
    TestDebugger& debugger = scoped.debugger;
    std::string message;
    size_t boxesBefore = 1;
    debugger.inspect = [&](const CDebugPause& pause) {
        message = pause.message.str();
        boxesBefore = ui.ui.events.size();
    };
    debugger.commands = {StepInto};  // not looked at: the run ends
    EXPECT_EQ(RunText(script), 0);
    EXPECT_EQ(debugger.stops, (std::vector<std::string>{"4 teile@4 main@8 | x=7 teile=0"}));
    EXPECT_EQ(debugger.reasons, (std::vector<DebugReason>{DebugReason::RuntimeError}));
    EXPECT_EQ(message, "Division durch Null");
    EXPECT_EQ(boxesBefore, 0u);
    EXPECT_EQ(ui.ui.Messages(), (std::vector<CString>{"Division durch Null"}));

    // Entering a routine overflows the stack: the new frame's links are
    // there, its variables are not.
    debugger.stops.clear();
    debugger.inspect = [&](const CDebugPause& pause) {
        ASSERT_GT(pause.frames.size(), 1000u);
        EXPECT_EQ(pause.frames[1].location.line, 3);
        EXPECT_TRUE(pause.frames.back().isMainBlock);
        const std::vector<CDebugVariable> innermost = pause.Variables(0);
        ASSERT_EQ(innermost.size(), 2u);
        EXPECT_EQ(innermost[0].value.text, CString(std::to_string(pause.frames.size() - 2).c_str()));
        EXPECT_FALSE(innermost[1].available);
        EXPECT_EQ(pause.Variables(1)[1].value.text, "lokal");
    };
    EXPECT_EQ(RunText(Join({"PROCEDURE p(n : INTEGER); VAR s : STRING;", "BEGIN s := \"lokal\";",
                            "  p(n + 1) END;", "BEGIN p(0) END."})),
              0);
    EXPECT_EQ(debugger.stops.size(), 1u);
    EXPECT_EQ(ui.ui.Messages().back(), "Stacküberlauf.");
}

// A host's window thread sets a breakpoint in a loop that is already
// running, then the hook stops the run; a stop request alone ends it too.
TEST(Debugger, OtherThreadsAndRunLimitsReachARunningScript) {
    const std::string endless = Join({"VAR i : INTEGER;", "BEGIN", "  LOOP", "    i := i + 1", "  END", "END."});
    ScopedRecordingUi ui;
    ScopedDebugger scoped;
    TestDebugger& debugger = scoped.debugger;
    debugger.commands = {Stop};
    std::thread window([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        debugger.SetBreakpoint(DebugFile::Script, 4);
    });
    EXPECT_EQ(RunText(endless), 0);
    window.join();
    ASSERT_EQ(debugger.stops.size(), 1u);
    EXPECT_EQ(debugger.reasons[0], DebugReason::Breakpoint);

    debugger.ClearAllBreakpoints();
    debugger.stops.clear();
    // A run clears the requests when it starts, so they are repeated.
    std::atomic<bool> ended{false};
    std::thread stopper([&] {
        while (!ended) {
            debugger.RequestStop();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    });
    EXPECT_EQ(RunText(endless), 0);
    ended = true;
    stopper.join();
    EXPECT_TRUE(debugger.stops.empty());

    // The host's step limit holds under the debugger, to the instruction:
    // three to start, five per pass, and the budget ends within the 2000th.
    CRunControl control;
    control.maxSteps = 10000;
    pRunControl = &control;
    EXPECT_EQ(RunText(endless), 0);
    pRunControl = nullptr;
    EXPECT_EQ(debugger.stops, (std::vector<std::string>{"4 main@4 | i=1999"}));
    EXPECT_EQ(debugger.reasons.back(), DebugReason::RuntimeError);
    EXPECT_EQ(ui.ui.Messages(), (std::vector<CString>{"Skript abgebrochen: Schrittgrenze erreicht."}));
}
