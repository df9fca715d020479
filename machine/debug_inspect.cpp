// What a paused run shows: the call stack from the dynamic links and return
// addresses, and each frame's variables read through its layout. Nothing
// here writes to the machine, and every link is checked before it is
// followed: a run-time error may pause a run in any state.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "machine/debug_run.h"
#include "qelkern/symbols.h"

namespace qelkern {

namespace {

// The double as a script would write it, with a point even when whole.
CString DoubleText(double number) {
    char text[64];
    std::snprintf(text, sizeof text, "%.15g", number);
    if (!std::strpbrk(text, ".eEn")) std::strcat(text, ".0");
    return text;
}

CString ValueText(const VALUE& cell) {
    CString text;
    switch (cell.type) {
        case symInteger: text.Format("%d", cell.intValue); break;
        case symDouble: text = DoubleText(cell.doubleValue); break;
        case symString: text = cell.stringValue ? *cell.stringValue : CString(); break;
        default:
            if (cell.type >= firstTypedefTag) text.Format("%d", cell.intValue);
            break;
    }
    return text;
}

}  // namespace

bool DebugRun::Readable(int64_t first, int64_t last) const {
    return first >= 0 && last >= first && last <= machine.t && last < machine.stackCapacity;
}

CDebugValue DebugRun::ReadCell(int64_t cell) const {
    CDebugValue shown;
    shown.value = machine.stack[cell];
    shown.typeName = shown.value.GetTypeName();
    shown.text = ValueText(shown.value);
    return shown;
}

void DebugRun::FillFrames(CDebugPause& pause, int address) const {
    int b = machine.b;
    const int codeLength = static_cast<int>(marks.size());
    for (;;) {
        const int routine = info.RoutineIndexAt(address);
        CDebugFrame frame;
        if (routine >= 0) {
            const DebugRoutine& r = info.Routines()[static_cast<size_t>(routine)];
            frame.routine = r.name;
            frame.isMainBlock = r.isMainBlock;
        }
        frame.location = info.LocationAt(address);
        frame.base = b;
        pause.frames.push_back(frame);
        pause.frameRoutines.push_back(routine);
        // The caller's frame lies below, and its CALL just before the return
        // address. CALL writes the links above t, so only the capacity bounds them.
        if (frame.isMainBlock || b < 1 || static_cast<int64_t>(b) + 2 >= machine.stackCapacity) break;
        const int caller = machine.stack[b + 1].intValue;
        const int back = machine.stack[b + 2].intValue;
        if (caller < 1 || caller >= b || back < 1 || back > codeLength) break;
        b = caller;
        address = back - 1;
    }
    // Bases fall from frame to frame, so the static link's frame is found by halving.
    std::vector<CDebugFrame>& frames = pause.frames;
    for (size_t i = 0; i + 1 < frames.size(); ++i) {
        const int link = machine.stack[frames[i].base].intValue;
        auto found = std::lower_bound(frames.begin() + static_cast<std::ptrdiff_t>(i) + 1, frames.end(), link,
                                      [](const CDebugFrame& f, int base) { return f.base > base; });
        if (found != frames.end() && found->base == link)
            frames[i].outerFrame = static_cast<int>(found - frames.begin());
    }
}

std::vector<CDebugVariable> DebugRun::Variables(int routine, int base) const {
    std::vector<CDebugVariable> variables;
    if (routine < 0 || static_cast<size_t>(routine) >= info.Routines().size()) return variables;
    for (const DebugSlot& slot : info.Routines()[static_cast<size_t>(routine)].slots) {
        CDebugVariable variable;
        variable.name = slot.name;
        variable.typeName = slot.typeName;
        variable.kind = slot.kind;
        variable.isArray = slot.arraySize > 0;
        const int64_t first = static_cast<int64_t>(base) + slot.address;
        // An array's elements follow its size cell.
        const int64_t last = first + slot.arraySize;
        variable.available = Readable(first, last);
        if (variable.available && variable.isArray) {
            for (int64_t cell = first + 1; cell <= last; ++cell) variable.elements.push_back(ReadCell(cell));
        } else if (variable.available) {
            variable.value = ReadCell(first);
        }
        variables.push_back(std::move(variable));
    }
    return variables;
}

}  // namespace qelkern

std::vector<CDebugVariable> CDebugPause::Variables(size_t frame) const {
    if (frame >= frames.size()) return {};
    return run.Variables(frameRoutines[frame], frames[frame].base);
}
