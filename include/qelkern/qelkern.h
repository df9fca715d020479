// SPDX-License-Identifier: MIT
// QELKern: the embeddable script engine. A host includes this header alone,
// or engine.h for the engine without the window and editor layer.
#pragma once

#include "qelkern/engine.h"
#include "qelkern/dialogs.h"
#include "qelkern/window.h"
#include "qelkern/richedit.h"
#include "qelkern/editor.h"
