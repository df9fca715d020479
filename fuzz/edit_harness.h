// One input of the editor fuzzer: a user types, pastes, deletes, moves and
// undoes in the colouring editor on the in-memory widget. Shared by the
// fuzzer and by the test that replays the kept inputs.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "environment/basis_routines.h"
#include "fuzz/edit_input.h"
#include "pipeline/keywords.h"
#include "qelkern/qelkern.h"

namespace fuzz {

// The editor as a script dialog sets it up: the language's words, bracket
// comments, double quotes.
struct FuzzEditor {
    CTWScriptEdit edit;
    CMemoryRichEdit* widget = nullptr;

    FuzzEditor() {
        edit.Create();
        widget = dynamic_cast<CMemoryRichEdit*>(edit.GetWidget());
        edit.Initialize();
        std::string keywords, constants;
        for (int i = 0; i < keywordRowCount; ++i) keywords += std::string(" ") + keywordRows[i].text + " ";
        for (const BasisRoutine& row : BasisRoutinen::table) constants += std::string(" ") + row.name + " ";
        edit.AddKeywords(keywords.c_str());
        edit.AddConstants(constants.c_str());
        edit.SetSLComment("(*", "*)");
        edit.SetStringQuotes("\"");
    }

    const std::string& Text() const { return widget->Text(); }
    std::pair<int, int> Sel() const {
        long start = 0, end = 0;
        edit.GetSel(start, end);
        return {static_cast<int>(start), static_cast<int>(end)};
    }
};

// The texts the user saw, to which an undo must go back. A replacement of
// the same length that the host makes without an undo step (as the
// colouring does to the case of words) keeps the steps before it, so an
// undo past it mixes old and new text: until the steps are gone, undo is
// not checked.
struct History {
    std::vector<std::string> seen;
    bool undoChecked = true;
};

// Carries out one action; returns the text it must leave, or none for an
// undo, which must bring back a text seen before. Typing adds the text of
// each keystroke to those seen.
inline std::optional<std::string> Act(FuzzEditor& e, EditInput& input, History& history) {
    const std::string before = e.Text();
    const auto [start, end] = e.Sel();
    const int length = static_cast<int>(before.size());
    switch (input.Byte() % 10) {
    case 0: {
        const std::string typed = input.Text();
        for (size_t i = 0; i < typed.size(); ++i) {
            if (typed[i] == '\r' && i + 1 < typed.size() && typed[i + 1] == '\n') continue;
            e.widget->UserTypes(typed.substr(i, 1).c_str());
            history.seen.push_back(Folded(e.Text()));
        }
        const std::string asTyped = AsTyped(typed);
        return asTyped.empty() ? before : Spliced(before, start, end, asTyped);
    }
    case 1: {
        const std::string pasted = input.Text();
        GetClipboard().SetText(pasted.c_str());
        e.widget->UserPastes();
        // An empty clipboard gives nothing to paste, so the selection stays.
        return pasted.empty() ? before : Spliced(before, start, end, AsParagraphs(pasted));
    }
    case 2: {
        const std::string replacement = input.Text();
        const bool canUndo = (input.Byte() & 1) != 0;
        e.edit.ReplaceSel(replacement.c_str(), canUndo);
        if (!canUndo && e.widget->CanUndo()) history.undoChecked = false;
        return Spliced(before, start, end, AsParagraphs(replacement));
    }
    case 3: {
        const int anchor = input.Byte() % (length + 1);
        const int active = input.Byte() % (length + 1);
        e.edit.SetSel(anchor, active);
        return before;
    }
    case 4: {
        const bool back = (input.Byte() & 1) != 0;
        e.widget->UserPressesKey(back ? VK_BACK : VK_DELETE);
        if (start < end) return Spliced(before, start, end, "");
        if (back) return start > 0 ? Spliced(before, start - 1, start, "") : before;
        return start < length ? Spliced(before, start, start + 1, "") : before;
    }
    case 5: {
        static const UINT keys[] = {VK_LEFT, VK_RIGHT, VK_HOME, VK_END, VK_UP, VK_DOWN};
        const uint8_t b = input.Byte();
        e.widget->UserPressesKey(keys[b % 6], false, (b & 8) != 0);
        return before;
    }
    case 6:
        e.widget->UserCuts();
        return Spliced(before, start, end, "");
    case 7: {
        const int target = input.Byte() % (length + 1);
        e.widget->UserDragsSelection(target);
        if (start == end || (target >= start && target <= end)) return before;
        const std::string moved = before.substr(static_cast<size_t>(start), static_cast<size_t>(end - start));
        if (target < start) return Spliced(Spliced(before, start, end, ""), target, target, moved);
        return Spliced(Spliced(before, target, target, moved), start, end, "");
    }
    case 8:
        e.widget->UserUndoes();
        return std::nullopt;
    default: {
        // Marked protected, the widget tells the editor the kind of each change.
        CHARFORMAT cf;
        cf.dwMask = CFM_PROTECTED;
        cf.dwEffects = (input.Byte() & 1) != 0 ? static_cast<DWORD>(CFE_PROTECTED) : 0u;
        e.edit.SetSel(0, -1);
        e.edit.SetSelectionCharFormat(cf);
        e.edit.SetSel(start, end);
        return before;
    }
    }
}

// Colour and boldness of the first `length` characters.
inline std::vector<std::pair<COLORREF, bool>> Look(const FuzzEditor& e, int length) {
    std::vector<std::pair<COLORREF, bool>> look;
    for (int i = 0; i < length; ++i) {
        const CHARFORMAT cf = e.widget->CharFormatAt(i);
        look.emplace_back(cf.crTextColor, (cf.dwEffects & CFE_BOLD) != 0);
    }
    return look;
}

// Sets the text and colours it once as a whole. The change notice that
// setting a text sends colours only the lines around the caret, to the
// length of the caret's line, and the plain text behind the last token keeps
// that look; so it is held back here, and the reference is the colouring of
// the text alone.
inline void ColourAfresh(FuzzEditor& fresh, const std::string& text) {
    fresh.edit.forcedChange = 1;
    fresh.edit.SetWindowText(text.c_str());
    fresh.edit.forcedChange = 0;
}

// Up to the character behind the last token: the plain text further on
// keeps whatever look it had.
inline int ColouredLength(const FuzzEditor& e) {
    const auto look = Look(e, static_cast<int>(e.Text().size()));
    int lastToken = -1;
    for (int i = 0; i < static_cast<int>(look.size()); ++i)
        if (look[static_cast<size_t>(i)] != std::make_pair(COLORREF{0}, false)) lastToken = i;
    return std::min(lastToken + 2, static_cast<int>(look.size()));
}

// Empty when the editor kept its promises: the text is what the user did
// to it, up to the case of words; coloured again as a whole, it looks as
// the same text freshly set.
inline std::string EditOne(const uint8_t* data, size_t size) {
    FuzzEditor e;
    EditInput input(data, size);
    History history{{Folded(e.Text())}};
    for (int action = 0; action < 64 && !input.Empty(); ++action) {
        const std::optional<std::string> expected = Act(e, input, history);
        const std::string now = Folded(e.Text());
        const std::string where = " after action " + std::to_string(action);
        if (expected && now != Folded(*expected)) return "text differs from the actions'" + where;
        const std::vector<std::string>& seen = history.seen;
        if (!expected && history.undoChecked && std::find(seen.begin(), seen.end(), now) == seen.end())
            return "undo made a text never seen" + where;
        history.seen.push_back(now);
        if (!e.widget->CanUndo()) history.undoChecked = true;
        const auto [start, end] = e.Sel();
        if (start < 0 || start > end || end > static_cast<int>(e.Text().size())) return "selection outside the text" + where;
    }
    e.edit.FormatAll();
    FuzzEditor fresh;
    ColourAfresh(fresh, e.Text());
    if (fresh.Text() != e.Text()) return "case of the words differs from a fresh colouring";
    const int coloured = ColouredLength(fresh);
    if (Look(fresh, coloured) != Look(e, coloured)) return "colouring differs from a fresh one";
    return "";
}

}  // namespace fuzz
