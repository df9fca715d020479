// Inside of the in-memory rich edit widget: the interned character formats,
// the undo steps and the state that CMemoryRichEdit keeps behind its pimpl.
#pragma once

#include <array>
#include <compare>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "qelkern/richedit.h"

namespace memory_widget {

// One character format. Characters refer to interned styles by index, so a
// format change of one character costs a lookup, not a copy of the format.
struct Style {
    DWORD effects = 0;
    LONG height = 200;
    LONG offset = 0;
    COLORREF colour = 0;
    BYTE charset = 0;
    BYTE pitchAndFamily = 0;
    std::array<char, LF_FACESIZE> face{};

    auto operator<=>(const Style&) const = default;
};

Style StyleFrom(const Style& base, const CHARFORMAT& cf);  // the items of cf.dwMask changed
void FillCharFormat(const Style& style, CHARFORMAT& cf);   // all items, dwMask CFM_ALL
DWORD SameItems(const Style& a, const Style& b);            // mask of the items that agree

class Palette {
public:
    uint32_t Intern(const Style& style);
    const Style& operator[](uint32_t index) const { return styles[index]; }
    bool IsProtected(uint32_t index) const { return (styles[index].effects & CFE_PROTECTED) != 0; }

private:
    std::vector<Style> styles;
    std::map<Style, uint32_t> indexOf;
};

struct UndoStep {
    int start = 0;
    std::string removed;
    std::vector<uint32_t> removedFormats;
    int insertedLength = 0;
    bool typing = false;  // later typing at its end may join it
};

enum class UndoMode { Record, Typing, None };

constexpr size_t undoLimit = 100;

}  // namespace memory_widget

struct CMemoryRichEdit::State {
    std::string text;
    std::vector<uint32_t> formats;  // one per character of text
    memory_widget::Palette palette;
    uint32_t defaultFormat = 0;
    int pendingFormat = -1;  // format for the next insertion, set on an empty selection

    int anchor = 0;  // the selection runs from anchor to active
    int active = 0;
    bool selectionHidden = false;
    bool readOnly = false;
    bool visible = false;
    bool focused = false;
    int updateLocks = 0;
    PARAFORMAT para;

    std::deque<memory_widget::UndoStep> undo;
    std::array<bool, 256> keysDown{};

    mutable std::vector<int> lineStarts;
    mutable bool linesValid = false;

    int SelStart() const { return anchor < active ? anchor : active; }
    int SelEnd() const { return anchor < active ? active : anchor; }
    int Length() const { return static_cast<int>(text.size()); }
    const std::vector<int>& Lines() const;
    uint32_t InsertionFormat() const;
    bool RangeIsProtected(int start, int end) const;
};
