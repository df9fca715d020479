// A host program that embeds QELKern: it adds two routines of its own to the
// language, provides an IMPORT, shows the user interface on the terminal,
// runs a script and reads the success code the script left.
//
//   qel-host-example [SCRIPT]      (default: demo.qel)
//
// The prelude extern.qel is read from the directory of SCRIPT.
#include <qelkern/qelkern.h>

#include <cstdio>
#include <string>

namespace {

// EXTERN PROCEDURE Verdopple(VAR x : INTEGER);
// A VAR parameter comes as a copy in its cell; the script copies it back.
int Verdopple(VALUE* stack, int top) {
    if (top < 0) return 0;
    VALUE& x = stack[top];
    // Doubling wraps round in 32 bits, as the language's own arithmetic does.
    x = static_cast<int>(static_cast<unsigned>(static_cast<int>(x)) * 2u);
    return 1;
}

// EXTERN FUNCTION Begruessung(name : STRING) : STRING;
// The result cell lies below the argument and comes as double 0.0.
int Begruessung(VALUE* stack, int top) {
    if (top < 1) return 0;
    const CString name = static_cast<CString>(stack[top]);
    stack[top - 1].SetString("Hallo, " + name + "!");
    return 1;
}

class HostUmgebung : public CBasisPredefinedUmgebung {
public:
    // The host's rows come first, so a host routine could also replace a
    // built-in of the same name.
    void InitPredefinedArray() override {
        predefinedArray.Add(new CPredefined("Verdopple", Verdopple));
        predefinedArray.Add(new CPredefined("Begruessung", Begruessung));
        CBasisPredefinedUmgebung::InitPredefinedArray();
    }

    // IMPORT "host" "routinen" declares the host's routines: the text is
    // scanned as if it stood in place of the IMPORT.
    void Import(CScanner* scanner, CString first, CString second) override {
        if (first == "host" && second == "routinen") {
            scanner->InsertText(
                " EXTERN PROCEDURE Verdopple(VAR x : INTEGER);"
                " EXTERN FUNCTION Begruessung(name : STRING) : STRING; ");
            return;
        }
        GetUserInterface().ShowMessage("IMPORT \"" + first + "\" \"" + second + "\" ist unbekannt.",
                                       "Host", CUserInterface::IconError);
    }
};

// Message boxes and the error dialog as lines on the terminal. The engine's
// text is Latin-1; the terminal wants UTF-8.
class HostUserInterface : public CUserInterface {
public:
    void ShowMessage(const CString& text, const CString& caption, Icon) override {
        Print("[" + caption + "] " + text + "\n");
    }

    void ShowTextDialog(const CString& title, const CString& text, int line, int) override {
        CString head;
        head.Format("%s in Zeile %d:\n", static_cast<const char*>(title), line + 1);
        Print(head + text + "\n");
    }

private:
    static void Print(const CString& latin1) {
        std::fputs(Latin1ToUtf8(latin1.str()).c_str(), stdout);
    }
};

std::string DirectoryOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string script = argc > 1 ? argv[1] : "demo.qel";

    // Both must be in place before the first compile, and outlive the run.
    HostUmgebung environment;
    pBasisPredefinedUmgebung = &environment;
    HostUserInterface userInterface;
    pUserInterface = &userInterface;

    const int result = RunScript(DirectoryOf(script).c_str(), script.c_str(), true);
    std::printf("RunScript: %d, Erfolgscode: %d\n", result, _VarSuccess);

    pUserInterface = nullptr;
    pBasisPredefinedUmgebung = nullptr;
    return result == 1 ? 0 : 1;
}
