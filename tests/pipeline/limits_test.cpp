#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <string>
#include <vector>

#include "support/test_support.h"

namespace {

std::string Repeat(const std::string& piece, int times) {
    std::string text;
    text.reserve(piece.size() * static_cast<size_t>(times));
    for (int i = 0; i < times; ++i) text += piece;
    return text;
}

// A script whose one construct nests `depth` levels deep.
struct Construct {
    const char* name;
    std::function<std::string(int depth)> script;
};

const std::string declarations =
    "VAR x, i : INTEGER; a : ARRAY [2] OF INTEGER;\n"
    "FUNCTION f(v : INTEGER) : INTEGER; BEGIN f := v END;\n";

std::string Body(const std::string& body) { return declarations + "BEGIN " + body + " END."; }

const std::vector<Construct> constructs = {
    {"parentheses", [](int n) { return Body("x := " + Repeat("(", n) + "1" + Repeat(")", n)); }},
    {"signs", [](int n) { return Body("x := " + Repeat("-(", n) + "1" + Repeat(")", n)); }},
    {"NOT", [](int n) { return Body("x := " + Repeat("NOT (", n) + "1" + Repeat(")", n)); }},
    {"calls", [](int n) { return Body("x := " + Repeat("f(", n) + "1" + Repeat(")", n)); }},
    {"indices", [](int n) { return Body("x := " + Repeat("a[", n) + "0" + Repeat("]", n)); }},
    {"IF", [](int n) { return Body(Repeat("IF x = 0 THEN ", n) + "x := 1 " + Repeat("END ", n)); }},
    {"ELSE", [](int n) { return Body(Repeat("IF x = 0 THEN ELSE ", n) + "x := 1 " + Repeat("END ", n)); }},
    {"WHILE", [](int n) { return Body(Repeat("WHILE x < 1 DO ", n) + "x := 1 " + Repeat("END ", n)); }},
    {"FOR", [](int n) { return Body(Repeat("FOR i := 1 TO 2 DO ", n) + "x := 1 " + Repeat("END ", n)); }},
    {"LOOP", [](int n) { return Body(Repeat("LOOP ", n) + "BREAK " + Repeat("END ", n)); }},
    {"REPEAT", [](int n) { return Body(Repeat("REPEAT ", n) + "x := 1 " + Repeat("UNTIL x = 1 ", n)); }},
    {"BEGIN", [](int n) { return Body(Repeat("BEGIN ", n) + "x := 1" + Repeat(" END", n)); }},
    {"routines", [](int n) {
         return Repeat("PROCEDURE p(); ", n) + "VAR x : INTEGER; BEGIN x := 1 END;" +
                Repeat(" BEGIN END;", n - 1) + " BEGIN END.";
     }},
};

// Runs `work` on a thread with a stack of `bytes`, as a host may start one.
void OnThreadWithStack(size_t bytes, const std::function<void()>& work) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, bytes);
    pthread_t thread;
    auto run = [](void* job) -> void* {
        (*static_cast<const std::function<void()>*>(job))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

}  // namespace

// Each construct compiles 1,000 levels deep, and far deeper it is a compile
// error like any other, also on a host thread with a small stack.
TEST(Limits, NestingIsBoundedByACompileError) {
    ScopedRecordingUi rec;
    OnThreadWithStack(size_t{1} << 20, [&] {
        for (const Construct& c : constructs) {
            SCOPED_TRACE(c.name);
            rec.ui.events.clear();
            EXPECT_EQ(RunText(c.script(1000), true, false), 1);
            EXPECT_TRUE(rec.ui.events.empty());

            EXPECT_EQ(RunText(c.script(3 * CParser::maxNesting), true, false), 0);
            ASSERT_EQ(rec.ui.events.size(), 2u);
            EXPECT_EQ(rec.ui.events[0].kind, UiEvent::TextDialog);
            EXPECT_NE(rec.ui.events[0].text.str().find("!Zu tief verschachtelt.\r\n"), std::string::npos);
            EXPECT_EQ(rec.ui.events[1].text, "Fehler im Parser");
            EXPECT_EQ(RunText(c.script(3 * CParser::maxNesting), false, false), 0);
            EXPECT_EQ(rec.ui.events.size(), 2u) << "nothing shown when errors are hidden";
        }
    });
    EXPECT_EQ(RunText(constructs[0].script(CParser::maxNesting - 10), false, false), 1);
    EXPECT_EQ(RunText(constructs[0].script(CParser::maxNesting), false, false), 0);
}

// Names are hashed per scope: many of them in one block, found without
// regard to case (Latin-1 umlauts too) and refused when declared twice.
TEST(Limits, ManyNamesInOneBlock) {
    const int count = 30000;
    std::string script = "VAR Äpfel : INTEGER;\n";
    for (int i = 0; i < count; ++i) script += "v" + std::to_string(i) + " : INTEGER;\n";
    script += "BEGIN\n";
    for (int i = 0; i < count; ++i)
        script += "V" + std::to_string(i) + " := v" + std::to_string(count - 1 - i) + " + 1;\n";
    EXPECT_EQ(RunText(script + "äPFEL := 1 END.", false, false), 1);
    EXPECT_EQ(RunText(script + "Äpfel := v" + std::to_string(count) + " END.", false, false), 0);

    ScopedRecordingUi rec;
    EXPECT_EQ(RunText("VAR Maß, x : INTEGER; MASS : DOUBLE; BEGIN maß := 1 END.", true, false), 1);
    EXPECT_EQ(RunText("VAR x, ÄPFEL : INTEGER; äpfel : DOUBLE; BEGIN END.", true, false), 0);
    ASSERT_FALSE(rec.ui.events.empty());
    EXPECT_NE(rec.ui.events[0].text.str().find("!Ein Bezeichner darf nur einmal vereinbart werden."),
              std::string::npos);
}
