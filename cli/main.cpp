// qel: compiles and runs a QEL script from the command line.
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>
#include <vector>

#include "json_ui.h"
#include "options.h"
#include "qel_environment.h"
#include "qelkern/qelkern.h"

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

int RunText(const std::string& dir, const std::string& latin1, bool showErrors, bool run) {
    std::vector<char> buffer(latin1.begin(), latin1.end());
    buffer.push_back('\0');
    return RunScript(dir.c_str(), buffer.data(), static_cast<int>(latin1.size()), showErrors, run);
}

int RunRequested(const QelOptions& options) {
    const std::string dir = PreludeDirectory(options);
    const bool showErrors = !options.quiet;
    if (options.hasScriptText)
        return RunText(dir, DecodeToLatin1(options.scriptText), showErrors, !options.compileOnly);
    if (!options.compileOnly) return RunScript(dir.c_str(), options.scriptFile.c_str(), showErrors);
    CString text;
    LeseTextAusDatei(options.scriptFile.c_str(), text);
    return RunText(dir, text.str(), showErrors, false);
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
    if (!options.hasScriptText && !CheckReadable(options.scriptFile, error))
        return UsageError(error);

    CQelUmgebung environment;
    pBasisPredefinedUmgebung = &environment;
    CConsoleUserInterface console(stdout, stdin);
    CJsonUserInterface json(stdout, stdin);
    const bool jsonMode = options.ui == QelOptions::Ui::Json;
    pUserInterface = jsonMode ? static_cast<CUserInterface*>(&json) : &console;
    if (!options.listingFile.empty()) DebugListingFile = options.listingFile.c_str();

    const int result = RunGuarded(options);
    if (jsonMode) json.WriteResult(result, _VarSuccess);

    pUserInterface = nullptr;
    pBasisPredefinedUmgebung = nullptr;
    return result == 1 ? exitSuccess : exitScriptFailed;
}
