// QELKern: the embeddable script engine. A host includes this header alone.
#pragma once

#include "qelkern/platform.h"
#include "qelkern/userinterface.h"
#include "qelkern/numbers.h"
#include "qelkern/symbols.h"
#include "qelkern/value.h"
#include "qelkern/machine.h"
#include "qelkern/scanner.h"
#include "qelkern/parser.h"
#include "qelkern/environment.h"
#include "qelkern/dialogs.h"
#include "qelkern/window.h"
#include "qelkern/richedit.h"
#include "qelkern/editor.h"
#include "qelkern/debugger.h"
