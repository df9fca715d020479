// The host's side of the debugger: breakpoints, guarded for other threads.
#include "qelkern/debugger.h"

#include <algorithm>

CDebugger* pDebugger = nullptr;

CDebugger::~CDebugger() = default;

void CDebugger::SetBreakpoint(DebugFile file, int line) {
    std::lock_guard<std::mutex> lock(breakpointLock);
    const CDebugLocation wanted{file, line};
    for (const CDebugBreakpoint& entry : breakpoints)
        if (entry.requested == wanted) return;
    breakpoints.push_back({wanted, {file, -1}});
    breakpointRevision.fetch_add(1, std::memory_order_release);
}

void CDebugger::ClearBreakpoint(DebugFile file, int line) {
    std::lock_guard<std::mutex> lock(breakpointLock);
    const CDebugLocation wanted{file, line};
    std::erase_if(breakpoints, [&](const CDebugBreakpoint& entry) { return entry.requested == wanted; });
    breakpointRevision.fetch_add(1, std::memory_order_release);
}

void CDebugger::ClearAllBreakpoints() {
    std::lock_guard<std::mutex> lock(breakpointLock);
    breakpoints.clear();
    breakpointRevision.fetch_add(1, std::memory_order_release);
}

std::vector<CDebugBreakpoint> CDebugger::Breakpoints() const {
    std::lock_guard<std::mutex> lock(breakpointLock);
    return breakpoints;
}
