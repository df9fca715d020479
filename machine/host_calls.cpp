#include "machine/host_calls.h"

#include <new>

#include "machine/conversions.h"
#include "qelkern/dialogs.h"
#include "qelkern/parser.h"
#include "qelkern/userinterface.h"

namespace qelkern {

namespace {

const char* const defaultLabel = "Zahl";

void ReportFailedRoutine(CInterpreter& machine, const Instruction& ins) {
    CString text;
    if (ins.comment.IsEmpty()) text = "Fehler in externer Routine.";
    else text.Format("Fehler in externer Routine %s.", static_cast<const char*>(ins.comment));
    machine.err(text);
}

}  // namespace

// A host's exception must not unwind through the machine into the host's
// call of the script: it ends the run like any other run-time error. Only
// memory running out passes on, to end the run as such.
bool CallExternalRoutine(CInterpreter& machine, const Instruction& ins) {
    PredefinedRoutine routine = reinterpret_cast<PredefinedRoutine>(ins.a);
    if (!routine) {
        ReportFailedRoutine(machine, ins);
        return false;
    }
    try {
        routine(machine.stack, machine.t);
        return true;
    } catch (CException* exception) {
        if (exception) exception->Delete();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
    }
    ReportFailedRoutine(machine, ins);
    return false;
}

// How the dialog was closed is not looked at: a cancelled one keeps its 0.
int AskForNumber(const Instruction& ins, bool integerMode) {
    CZahlenEingabe dialog(integerMode ? 1 : 0);
    if (!ins.comment.IsEmpty()) dialog.prompt = ins.comment;
    dialog.DoModal();
    return integerMode ? dialog.integerEntry : dialog.doubleEntry;
}

void ShowNumber(const Instruction& ins, const VALUE& cell) {
    const char* label = ins.comment.IsEmpty() ? defaultLabel : static_cast<const char*>(ins.comment);
    CString text;
    switch (cell.type) {
        case 40: text.Format("%s\n%d", label, cell.intValue); break;
        case 41:
            text.Format("%s\n%s", label, static_cast<const char*>(FormatFixed(cell.doubleValue)));
            break;
        default: text.Format("%s\nunbekanntes Zahlenformat", label); break;
    }
    GetUserInterface().ShowMessage(text, CString(), CUserInterface::IconInformation);
}

}  // namespace qelkern
