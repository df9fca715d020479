// The environment of the qel command: the built-ins, and two routines that
// ask the user for a number, so that scripts run from the command line can
// take input:
//   EXTERN FUNCTION EingabeInt(prompt : STRING) : INTEGER;
//   EXTERN FUNCTION EingabeDouble(prompt : STRING) : DOUBLE;
// An empty prompt keeps the dialog's own; a cancelled entry gives 0.
#pragma once

#include "qelkern/qelkern.h"

class CQelUmgebung : public CBasisPredefinedUmgebung {
public:
    void InitPredefinedArray() override;
};
