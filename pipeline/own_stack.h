// The compiler's own stack. The recursive descent is as deep as the script
// nests, and a host may call it on a thread with a small stack; so it runs
// on a stack of its own, on the calling thread.
#pragma once

#include <functional>

// Runs `work` on a freshly reserved stack and rethrows what it throws.
// `work` gets the lowest address it should let its recursion reach, with
// room below for dialogs and unwinding. false, and nothing run, if no stack
// could be reserved.
bool RunOnOwnStack(const std::function<void(const char* floor)>& work);
