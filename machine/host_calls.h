// The operations with which the running machine leaves itself: host
// callbacks, number entry and number output. Each is called with the
// interpreter's registers written back, so the host sees a consistent machine.
#pragma once

#include "qelkern/machine.h"

namespace qelkern {

// Calls the callback in `a` of `ins` with the stack and t. false: the run
// must end (a missing callback, or one that threw; already reported).
bool CallExternalRoutine(CInterpreter& machine, const Instruction& ins);

// Asks the user for a whole number; cancel gives 0.
int AskForNumber(const Instruction& ins, bool integerMode);

// Shows the number of `cell` under the instruction's label.
void ShowNumber(const Instruction& ins, const VALUE& cell);

}  // namespace qelkern
