// The record of the last run's error.
#include "qelkern/diagnostics.h"

namespace {
CScriptError lastScriptError;
}

const CScriptError& GetLastScriptError() { return lastScriptError; }
