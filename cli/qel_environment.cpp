#include "qel_environment.h"

namespace {

CString PromptArgument(const VALUE& cell) {
    if (const CString* text = cell.GetStringPtr()) return *text;
    return cell.type == 57 ? CString() : static_cast<CString>(cell);
}

// Runs the number entry dialog; its entry in the mode asked for.
int AskNumber(const VALUE& promptCell, bool integerMode) {
    CZahlenEingabe dialog(integerMode ? 1 : 0);
    const CString prompt = PromptArgument(promptCell);
    if (!prompt.IsEmpty()) dialog.prompt = prompt;
    dialog.DoModal();
    return integerMode ? dialog.integerEntry : dialog.doubleEntry;
}

int EingabeInt(VALUE* stack, int top) {
    if (stack == nullptr || top < 1) return 0;
    stack[top - 1] = AskNumber(stack[top], true);
    return 1;
}

int EingabeDouble(VALUE* stack, int top) {
    if (stack == nullptr || top < 1) return 0;
    stack[top - 1] = static_cast<double>(AskNumber(stack[top], false));
    return 1;
}

}  // namespace

void CQelUmgebung::InitPredefinedArray() {
    CBasisPredefinedUmgebung::InitPredefinedArray();
    predefinedArray.Add(new CPredefined("EingabeInt", EingabeInt));
    predefinedArray.Add(new CPredefined("EingabeDouble", EingabeDouble));
}
