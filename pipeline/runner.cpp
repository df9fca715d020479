// The library's entry for compiling and running a script.
#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "machine/debug_run.h"
#include "qelkern/machine.h"
#include "qelkern/parser.h"
#include "qelkern/scanner.h"
#include "qelkern/userinterface.h"

namespace {

// The objects of one run. The scanner is made first because it empties the
// type table that the parser's constructor fills; they die in the order
// parser, interpreter, generator, scanner, also when an exception passes.
struct ScriptRun {
    ScriptRun(char* text, int length, bool showErrors)
        : scanner(new CScanner(text, length)),
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
};

// The prelude in front of the script. The script is taken up to its first NUL
// and never beyond `length`, whatever the caller claims.
std::string JoinWithPrelude(const CString& dir, const char* text, int length, int& preludeLines) {
    CString prelude;
    LeseTextAusDatei(dir + "extern.qel", prelude);
    std::string joined = prelude.str();
    preludeLines = static_cast<int>(std::count(joined.begin(), joined.end(), '\n'));
    if (text != nullptr && length > 0) joined.append(text, strnlen(text, static_cast<size_t>(length)));
    return joined;
}

// Compiles; false if the compile ended by an exception.
bool Compile(CParser& parser) {
    try {
        parser.Parse();
        return true;
    } catch (CException* e) {
        e->Delete();
    } catch (const std::bad_alloc&) {
    }
    parser.ok = 0;  // an incomplete compile must never run
    return false;
}

int CompileAndRun(const CString& dir, char* text, int length, bool showErrors, bool run) {
    int result = 0;
    int preludeLines = 0;
    std::string joined = JoinWithPrelude(dir, text, length, preludeLines);
    if (joined.size() > static_cast<size_t>(INT_MAX)) return 0;
    ScriptRun objects(joined.data(), static_cast<int>(joined.size()), showErrors);
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
        }
    }
    return result;
}

}  // namespace

int RunScript(CString dir, char* text, int length, bool showErrors, bool run) {
    try {
        return CompileAndRun(dir, text, length, showErrors, run);
    } catch (const std::bad_alloc&) {
        return 0;  // a text too large for memory fails like any other run
    }
}

int RunScript(CString dir, char* text, int length, bool showErrors) {
    return RunScript(dir, text, length, showErrors, true);
}

int RunScript(CString dir, CString file, bool showErrors) {
    CString text;
    LeseTextAusDatei(file, text);  // a missing file is an empty script
    std::string bytes = text.str();
    return RunScript(dir, bytes.data(), static_cast<int>(bytes.size()), showErrors, true);
}

int LeseTextAusDatei(CString path, CString& text) {
    CStdioFile file;
    if (!file.Open(path, CStdioFile::modeRead | CStdioFile::typeText)) return 0;
    text.Empty();
    CString line;
    while (file.ReadString(line)) {
        text += line;
        text += '\n';
    }
    file.Close();
    return 1;
}

int Test(CString dir) {
    CString path = "*.qel";
    if (!GetUserInterface().FileDialog(true, "qel", "Scripte (*.qel)|*.qel||",
                                       OFN_FILEMUSTEXIST | OFN_NOCHANGEDIR, path))
        return 0;
    return RunScript(dir, path, true);
}
