// SPDX-License-Identifier: MIT
#include "options.h"

#include <sys/stat.h>

#include <string_view>

#include "limit_options.h"

const char* const qelUsage =
    "Usage: qel [options] SCRIPT\n"
    "       qel [options] -e TEXT\n"
    "       qel [options] -          (the script from standard input)\n"
    "\n"
    "Compiles and runs a QEL script. The prelude extern.qel is read from the\n"
    "prelude directory and put in front of the script.\n"
    "\n"
    "Options:\n"
    "  --prelude-dir DIR  look for extern.qel in DIR (default: the directory of\n"
    "                     SCRIPT, with -e and - the current directory; if that\n"
    "                     has none, the installed standard prelude in\n"
    "                     share/qelkern/)\n"
    "  --compile-only     compile, do not run\n"
    "  --quiet            do not show compile errors and warnings\n"
    "  --listing FILE     write the compiled code to FILE\n"
    "  --listing-lines    mark each statement's code in the listing with its\n"
    "                     FILE:LINE:COLUMN\n"
    "  -e TEXT            compile and run TEXT instead of a script file\n"
    "  --ui console|json  console: messages as text blocks (default);\n"
    "                     json: one JSON object per line on standard output\n"
    "  --max-steps N      stop the script after N machine steps\n"
    "  --timeout SECONDS  stop the script after SECONDS of wall-clock time\n"
    "                     (decimals allowed, e.g. 0.5)\n"
    "  --max-memory MB    stop the script when its code, stack and texts need\n"
    "                     more than MB megabytes\n"
    "  --version          show the version\n"
    "  --help             show this text\n"
    "\n"
    "Errors and warnings also go to standard error as FILE:LINE:COLUMN: lines.\n"
    "Exit status: 0 success, 1 the script failed to compile or run, 2 usage error.\n";

namespace {

class ArgumentReader {
public:
    ArgumentReader(int count, char** values) : argc(count), argv(values) {}

    bool AtEnd() const { return next >= argc; }
    std::string_view Take() { return argv[next++]; }

    // The value of an option: "--name=value" or the next argument.
    bool TakeValue(std::string_view option, std::string_view inlineValue, bool hasInline,
                   std::string& value, std::string& error) {
        if (hasInline) {
            value = inlineValue;
            return true;
        }
        if (AtEnd()) {
            error = "option " + std::string(option) + " needs a value";
            return false;
        }
        value = Take();
        return true;
    }

private:
    int argc;
    char** argv;
    int next = 1;
};

bool SetScriptFile(std::string_view argument, QelOptions& options, std::string& error) {
    if (!options.scriptFile.empty()) {
        error = "more than one script given: " + std::string(argument);
        return false;
    }
    options.scriptFile = argument;
    return true;
}

bool ParseUi(const std::string& value, QelOptions& options, std::string& error) {
    if (value == "console") options.ui = QelOptions::Ui::Console;
    else if (value == "json") options.ui = QelOptions::Ui::Json;
    else {
        error = "unknown user interface '" + value + "' (console or json)";
        return false;
    }
    return true;
}

bool IsFlag(std::string_view name) {
    return name == "--help" || name == "-h" || name == "--compile-only" || name == "--quiet" ||
           name == "--version" || name == "--listing-lines";
}

bool CheckCombination(const QelOptions& options, std::string& error) {
    if (options.help || options.version) return true;
    if (options.listingLines && options.listingFile.empty()) {
        error = "--listing-lines needs --listing FILE";
        return false;
    }
    if (options.hasScriptText && !options.scriptFile.empty()) {
        error = "give either SCRIPT or -e TEXT, not both";
        return false;
    }
    if (!options.hasScriptText && options.scriptFile.empty()) {
        error = "no script given";
        return false;
    }
    return true;
}

}  // namespace

bool ParseOptions(int argc, char** argv, QelOptions& options, std::string& error) {
    ArgumentReader reader(argc, argv);
    bool optionsEnded = false;
    while (!reader.AtEnd()) {
        const std::string_view argument = reader.Take();
        // A lone "-" is the script from standard input.
        if (optionsEnded || argument.size() < 2 || argument[0] != '-') {
            if (!SetScriptFile(argument, options, error)) return false;
            continue;
        }
        const size_t equals = argument.find('=');
        const bool hasInline = argument.starts_with("--") && equals != std::string_view::npos;
        const std::string_view name = hasInline ? argument.substr(0, equals) : argument;
        const std::string_view inlineValue = hasInline ? argument.substr(equals + 1) : "";

        bool ok = true;
        std::string value;
        if (name == "--") optionsEnded = true;
        else if (name == "--help" || name == "-h") options.help = true;
        else if (name == "--compile-only") options.compileOnly = true;
        else if (name == "--quiet") options.quiet = true;
        else if (name == "--version") options.version = true;
        else if (name == "--listing-lines") options.listingLines = true;
        else if (IsLimitOption(name)) {
            ok = reader.TakeValue(name, inlineValue, hasInline, value, error) &&
                 ParseLimit(name, value, options, error);
        }
        else if (name == "--prelude-dir") {
            ok = reader.TakeValue(name, inlineValue, hasInline, options.preludeDir, error);
            options.hasPreludeDir = true;
        } else if (name == "--listing") {
            ok = reader.TakeValue(name, inlineValue, hasInline, options.listingFile, error);
        } else if (name == "-e") {
            if (options.hasScriptText) {
                error = "-e given more than once";
                return false;
            }
            ok = reader.TakeValue(name, inlineValue, false, options.scriptText, error);
            options.hasScriptText = true;
        } else if (name == "--ui") {
            ok = reader.TakeValue(name, inlineValue, hasInline, value, error) &&
                 ParseUi(value, options, error);
        } else {
            error = "unknown option " + std::string(argument);
            return false;
        }
        if (!ok) return false;
        if (hasInline && IsFlag(name)) {
            error = "option " + std::string(name) + " takes no value";
            return false;
        }
    }
    return CheckCombination(options, error);
}

namespace {

// The engine puts the file name right behind the directory.
std::string WithSlash(std::string dir) {
    if (!dir.empty() && dir.back() != '/') dir += '/';
    return dir;
}

bool HasPrelude(const std::string& dir) {
    struct stat info {};
    return !dir.empty() && stat((dir + "extern.qel").c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

}  // namespace

std::string PreludeDirectory(const QelOptions& options, const std::string& installedDir) {
    if (options.hasPreludeDir) return WithSlash(options.preludeDir);
    std::string dir = ".";
    if (!options.hasScriptText && !options.ScriptFromStdin()) {
        const size_t slash = options.scriptFile.rfind('/');
        if (slash != std::string::npos) dir = options.scriptFile.substr(0, slash + 1);
    }
    dir = WithSlash(dir);
    if (HasPrelude(dir) || !HasPrelude(WithSlash(installedDir))) return dir;
    return WithSlash(installedDir);
}
