// The library's entry for compiling and running a script.
#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "platform/memory_budget.h"
#include "machine/debug_run.h"
#include "qelkern/machine.h"
#include "qelkern/parser.h"
#include "qelkern/runcontrol.h"
#include "qelkern/scanner.h"
#include "qelkern/userinterface.h"
#include "pipeline/script_error.h"
#include "platform/text_lines.h"

namespace {

// The objects of one run. The scanner is made first because it empties the
// type table that the parser's constructor fills; they die in the order
// parser, interpreter, generator, scanner, also when an exception passes.
struct ScriptRun {
    // The scanner takes the joined text over instead of a copy of it.
    ScriptRun(std::vector<char>&& text, bool showErrors)
        : scanner(TakingScanner(std::move(text))),
          interpreter(new CInterpreter()),
          generator(new CGenerator(interpreter.get())),
          parser(new CParser(scanner.get(), generator.get(), showErrors)) {}

    ~ScriptRun() {
        parser.reset();
        interpreter.reset();
        generator.reset();
        scanner.reset();
    }

    std::unique_ptr<CScanner> scanner;
    std::unique_ptr<CInterpreter> interpreter;
    std::unique_ptr<CGenerator> generator;
    std::unique_ptr<CParser> parser;

private:
    static CScanner* TakingScanner(std::vector<char>&& text) {
        auto* scanner = new CScanner(nullptr, 0);
        scanner->buffer = std::move(text);
        scanner->length = static_cast<int>(scanner->buffer.size());
        return scanner;
    }
};

int CountLines(std::string_view text) {
    return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

// The prelude in front of the script. The script is taken up to its first NUL
// and never beyond `length`, whatever the caller claims. The error record
// learns where the script starts.
std::vector<char> JoinWithPrelude(const CString& dir, const char* text, int length,
                                  const CString& scriptPath, int& preludeLines) {
    const CString preludePath = dir + "extern.qel";
    CString prelude;
    const bool hasPrelude = LeseTextAusDatei(preludePath, prelude) != 0;
    preludeLines = CountLines(prelude.view());
    qelkern::BeginScriptRecord(hasPrelude ? preludePath : CString(), preludeLines, scriptPath);
    const size_t scriptLength = text != nullptr && length > 0 ? strnlen(text, static_cast<size_t>(length)) : 0;
    std::vector<char> joined;
    joined.reserve(prelude.view().size() + scriptLength);
    joined.insert(joined.end(), prelude.view().begin(), prelude.view().end());
    joined.insert(joined.end(), text, text + scriptLength);
    return joined;
}

// Compiles; false if the compile ended by an exception.
bool Compile(CParser& parser) {
    try {
        parser.Parse();
        return true;
    } catch (CException* e) {
        e->Delete();
    }
    parser.ok = 0;  // an incomplete compile must never run
    return false;
}

// An error in a routine's entry (its INT, as when the stack overflows) lies
// in no statement of its own: the place is that of the call, whose return
// address the new frame holds.
void CallerPlace(const CGenerator& generator, const CInterpreter& machine, int& line, int& position) {
    const int cell = machine.b + 2;
    if (machine.b < 0 || cell >= machine.stackCapacity || machine.stack[cell].type != symInteger) return;
    generator.SourceOf(machine.stack[cell].intValue - 1, line, position);
}

// The run-time error with the place of the statement that failed: the
// machine's `p` stands behind the failing instruction.
void RecordRuntimeError(const CGenerator& generator, const CInterpreter& machine,
                        bool stoppedByDebugger) {
    int line = -1;
    int position = -1;
    if (!generator.SourceOf(machine.p - 1, line, position)) CallerPlace(generator, machine, line, position);
    StopCause cause = machine.control != nullptr ? machine.control->stopCause : StopCause::None;
    if (stoppedByDebugger) cause = StopCause::Cancelled;
    const ScriptErrorKind kind =
        cause == StopCause::None ? ScriptErrorKind::Runtime : ScriptErrorKind::Stopped;
    qelkern::ReportDiagnostic(kind, line, position, machine.errorText, cause);
}

int CompileAndRun(const CString& dir, char* text, int length, bool showErrors, bool run,
                  const CString& scriptPath) {
    int result = 0;
    qelkern::ScriptMemoryScope memory(pRunControl);
    int preludeLines = 0;
    std::vector<char> joined = JoinWithPrelude(dir, text, length, scriptPath, preludeLines);
    if (joined.size() > static_cast<size_t>(INT_MAX)) return 0;
    ScriptRun objects(std::move(joined), showErrors);
    qelkern::ScriptDebugging debugging(*objects.parser, preludeLines);

    if (Compile(*objects.parser)) result = 1;

    if (objects.scanner->errorFound) {
        if (showErrors) GetUserInterface().ShowMessage("Fehler im Scanner", "", CUserInterface::IconError);
        result = 0;
    } else if (!objects.parser->ok) {
        if (showErrors) GetUserInterface().ShowMessage("Fehler im Parser", "", CUserInterface::IconError);
        result = 0;
    } else {
        objects.generator->DebugFlushToFile();
        if (run) {
            debugging.Attach(*objects.interpreter);
            objects.interpreter->Interpret();
            result = objects.interpreter->failed ? 0 : 1;
            if (!result)
                RecordRuntimeError(*objects.generator, *objects.interpreter, debugging.StoppedByHost());
        }
    }
    return result;
}

// Memory is back once the failed allocation has unwound; if not, the record
// stays as it was rather than let a second failure escape.
void RecordOutOfMemory() noexcept {
    try {
        const StopCause cause = pRunControl ? pRunControl->stopCause : StopCause::None;
        qelkern::ReportDiagnostic(ScriptErrorKind::OutOfMemory, -1, -1,
                                  "Nicht genügend Speicher für das Skript.", cause);
        GetUserInterface().ShowMessage("Nicht genügend Speicher für das Skript.", "",
                                       CUserInterface::IconError);
    } catch (...) {
    }
}

int GuardedRun(const CString& dir, char* text, int length, bool showErrors, bool run,
               const CString& scriptPath) {
    try {
        return CompileAndRun(dir, text, length, showErrors, run, scriptPath);
    } catch (const std::bad_alloc&) {
        RecordOutOfMemory();
        return 0;  // a text too large for memory fails like any other run
    }
}

}  // namespace

int RunScript(CString dir, char* text, int length, bool showErrors, bool run) {
    return GuardedRun(dir, text, length, showErrors, run, CString());
}

int RunScript(CString dir, char* text, int length, bool showErrors) {
    return RunScript(dir, text, length, showErrors, true);
}

int RunScript(CString dir, CString file, bool showErrors) {
    try {
        CString text;
        LeseTextAusDatei(file, text);  // a missing file is an empty script
        std::string bytes = text.str();
        return GuardedRun(dir, bytes.data(), static_cast<int>(bytes.size()), showErrors, true, file);
    } catch (const std::bad_alloc&) {
        RecordOutOfMemory();
        return 0;
    }
}

int LeseTextAusDatei(CString path, CString& text) {
    std::string latin1;
    if (!qelkern::ReadDecodedFile(path, latin1)) return 0;
    qelkern::EndLinesWithLineFeeds(latin1);
    text = CString(std::string_view(latin1));
    return 1;
}

int Test(CString dir) {
    CString path = "*.qel";
    if (!GetUserInterface().FileDialog(true, "qel", "Scripte (*.qel)|*.qel||",
                                       OFN_FILEMUSTEXIST | OFN_NOCHANGEDIR, path))
        return 0;
    return RunScript(dir, path, true);
}
