// The host the fuzz targets give a script: a user interface that shows
// nothing and answers harmlessly, and an environment with the built-ins, two
// number entry routines and an IMPORT that splices text. Nothing of it
// touches a file: file dialogs and printing are refused.
#pragma once

#include "qelkern/qelkern.h"

namespace fuzz {

class SilentUserInterface : public CUserInterface {
public:
    void ShowMessage(const CString&, const CString&, Icon) override { ++shown; }
    void ShowTextDialog(const CString&, const CString&, int, int) override { ++shown; }
    // A fixed entry, so that scripts which ask for numbers go on running.
    bool EnterNumber(const CString&, bool, int& value) override {
        value = 7;
        return true;
    }
    bool FileDialog(bool, const CString&, const CString&, unsigned, CString&) override { return false; }
    bool PrintText(const CString&, const CString&, int, int, int, int) override { return false; }
    void Beep() override {}

    long shown = 0;
};

namespace detail {

inline int AskNumber(VALUE* stack, int top, bool integerMode) {
    if (stack == nullptr || top < 1) return 0;
    CZahlenEingabe dialog(integerMode ? 1 : 0);
    if (const CString* prompt = stack[top].GetStringPtr()) dialog.prompt = *prompt;
    dialog.DoModal();
    const int entry = integerMode ? dialog.integerEntry : dialog.doubleEntry;
    if (integerMode)
        stack[top - 1] = entry;
    else
        stack[top - 1] = static_cast<double>(entry);
    return 1;
}

inline int EingabeInt(VALUE* stack, int top) { return AskNumber(stack, top, true); }
inline int EingabeDouble(VALUE* stack, int top) { return AskNumber(stack, top, false); }

}  // namespace detail

// IMPORT "text", "..." splices its second string into the script, as a
// host may.
class SplicingEnvironment : public CBasisPredefinedUmgebung {
public:
    void InitPredefinedArray() override {
        CBasisPredefinedUmgebung::InitPredefinedArray();
        predefinedArray.Add(new CPredefined("EingabeInt", detail::EingabeInt));
        predefinedArray.Add(new CPredefined("EingabeDouble", detail::EingabeDouble));
    }
    void Import(CScanner* scanner, CString first, CString second) override {
        if (first == "text") scanner->InsertText(second);
    }
};

// Puts the fuzz host in place for its life and the previous one back after,
// so that the replay tests leave the process as they found it.
class HostScope {
public:
    explicit HostScope(CRunControl* control = nullptr)
        : previousUi(pUserInterface), previousEnvironment(pBasisPredefinedUmgebung), previousControl(pRunControl) {
        ui.shown = 0;
        pUserInterface = &ui;
        pBasisPredefinedUmgebung = &environment;
        pRunControl = control;
    }
    ~HostScope() {
        pUserInterface = previousUi;
        pBasisPredefinedUmgebung = previousEnvironment;
        pRunControl = previousControl;
    }
    HostScope(const HostScope&) = delete;
    HostScope& operator=(const HostScope&) = delete;

    // One of each for the process: the routine table is filled once.
    static inline SilentUserInterface ui;
    static inline SplicingEnvironment environment;

private:
    CUserInterface* previousUi;
    CBasisPredefinedUmgebung* previousEnvironment;
    CRunControl* previousControl;
};

}  // namespace fuzz
