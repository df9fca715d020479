// SPDX-License-Identifier: MIT
// qel: compiles and runs a QEL script from the command line.
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>
#include <vector>

#include "diagnostic_lines.h"
#include "install_paths.h"
#include "json_ui.h"
#include "options.h"
#include "qel_environment.h"
#include "qelkern/diagnostics.h"
#include "qelkern/qelkern.h"
#include "qelkern/runcontrol.h"
#include "qelkern/version.h"

namespace {

constexpr int exitSuccess = 0;
constexpr int exitScriptFailed = 1;
constexpr int exitUsage = 2;

int UsageError(const std::string& message) {
    std::fprintf(stderr, "qel: %s\nTry 'qel --help'.\n", message.c_str());
    return exitUsage;
}

// The engine reads a missing file as an empty script; the command says so
// before that happens.
bool CheckReadable(const std::string& path, std::string& error) {
    struct stat info {};
    if (stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
        error = "cannot read script '" + path + "': it is a directory";
        return false;
    }
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        error = "cannot read script '" + path + "': " + std::strerror(errno);
        return false;
    }
    std::fclose(file);
    return true;
}

bool CheckPreludeDirectory(const QelOptions& options, std::string& error) {
    struct stat info {};
    if (!options.hasPreludeDir || (stat(options.preludeDir.c_str(), &info) == 0 && S_ISDIR(info.st_mode)))
        return true;
    error = "prelude directory '" + options.preludeDir + "' does not exist";
    return false;
}

// The engine would skip a listing it cannot write without a word.
bool CheckListingWritable(const QelOptions& options, std::string& error) {
    if (options.listingFile.empty()) return true;
    std::FILE* file = std::fopen(options.listingFile.c_str(), "w");
    if (file == nullptr) {
        error = "cannot write listing '" + options.listingFile + "': " + std::strerror(errno);
        return false;
    }
    std::fclose(file);
    return true;
}

bool CheckInputs(const QelOptions& options, std::string& error) {
    if (!options.hasScriptText && !options.ScriptFromStdin() && !CheckReadable(options.scriptFile, error))
        return false;
    return CheckPreludeDirectory(options, error) && CheckListingWritable(options, error);
}

std::string ReadAll(std::FILE* stream) {
    std::string bytes;
    char buffer[4096];
    size_t count;
    while ((count = std::fread(buffer, 1, sizeof buffer, stream)) > 0) bytes.append(buffer, count);
    return bytes;
}

// How diagnostics name a script that has no file of its own.
std::string ScriptName(const QelOptions& options) {
    if (options.hasScriptText) return "<-e>";
    if (options.ScriptFromStdin()) return "<stdin>";
    return options.scriptFile;
}

void SetLimits(const QelOptions& options, CRunControl& control) {
    control.maxSteps = options.maxSteps;
    control.timeoutMilliseconds = options.timeoutMilliseconds;
    control.maxMemoryBytes = static_cast<size_t>(options.maxMemoryBytes);
}

int RunText(const std::string& dir, std::string latin1, bool showErrors, bool run) {
    const int length = static_cast<int>(latin1.size());
    return RunScript(dir.c_str(), latin1.data(), length, showErrors, run);
}

int RunRequested(const QelOptions& options) {
    const std::string dir = PreludeDirectory(options, InstalledPreludeDirectory());
    const bool showErrors = !options.quiet;
    if (options.hasScriptText)
        return RunText(dir, DecodeToLatin1(options.scriptText), showErrors, !options.compileOnly);
    if (options.ScriptFromStdin())
        return RunText(dir, DecodeToLatin1(ReadAll(stdin)), showErrors, !options.compileOnly);
    if (!options.compileOnly) return RunScript(dir.c_str(), options.scriptFile.c_str(), showErrors);
    CString text;
    LeseTextAusDatei(options.scriptFile.c_str(), text);
    // RunScript only reads the text; a long script is not copied once more for it.
    return RunScript(dir.c_str(), const_cast<char*>(static_cast<const char*>(text)), text.GetLength(),
                     showErrors, false);
}

// Nothing in the engine throws at run time, but a host must not die of it.
int RunGuarded(const QelOptions& options) {
    try {
        return RunRequested(options);
    } catch (CException* exception) {
        exception->Delete();
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "qel: internal error: %s\n", exception.what());
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    QelOptions options;
    std::string error;
    if (!ParseOptions(argc, argv, options, error)) return UsageError(error);
    if (options.help) {
        std::fputs(qelUsage, stdout);
        return exitSuccess;
    }
    if (options.version) {
        std::puts("qel " QELKERN_VERSION_STRING "\nJSON protocol 2");
        return exitSuccess;
    }
    if (!CheckInputs(options, error)) return UsageError(error);

    CQelUmgebung environment;
    pBasisPredefinedUmgebung = &environment;
    CConsoleUserInterface console(stdout, stdin);
    CJsonUserInterface json(stdout, stdin);
    const bool jsonMode = options.ui == QelOptions::Ui::Json;
    pUserInterface = jsonMode ? static_cast<CUserInterface*>(&json) : &console;
    CQelDiagnostics diagnostics(stderr, ScriptName(options), options.quiet, jsonMode ? &json : nullptr);
    pDiagnosticListener = &diagnostics;
    CRunControl control;
    SetLimits(options, control);
    if (options.HasLimits()) pRunControl = &control;
    if (!options.listingFile.empty()) DebugListingFile = options.listingFile.c_str();
    DebugListingLines = options.listingLines;

    const int result = RunGuarded(options);
    if (jsonMode) json.WriteResult(result, _VarSuccess, GetLastScriptError().kind);

    pRunControl = nullptr;
    pDiagnosticListener = nullptr;
    pUserInterface = nullptr;
    pBasisPredefinedUmgebung = nullptr;
    return result == 1 ? exitSuccess : exitScriptFailed;
}
