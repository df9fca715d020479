// SPDX-License-Identifier: MIT
// The engine alone: running scripts, values and host routines, the
// environment, the user interface service, run limits and the error record.
// A host that needs no window, rich edit or editor layer includes this;
// qelkern.h includes it and everything else.
#pragma once

#include "qelkern/version.h"
#include "qelkern/platform.h"
#include "qelkern/userinterface.h"
#include "qelkern/numbers.h"
#include "qelkern/symbols.h"
#include "qelkern/value.h"
#include "qelkern/machine.h"
#include "qelkern/scanner.h"
#include "qelkern/parser.h"
#include "qelkern/environment.h"
#include "qelkern/runcontrol.h"
#include "qelkern/diagnostics.h"
