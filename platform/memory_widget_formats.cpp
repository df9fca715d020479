#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

#include "platform/memory_widget_state.h"

using namespace memory_widget;

namespace {
constexpr DWORD effectItems = CFM_BOLD | CFM_ITALIC | CFM_UNDERLINE | CFM_STRIKEOUT | CFM_PROTECTED | CFM_LINK;
}  // namespace

namespace memory_widget {

Style StyleFrom(const Style& base, const CHARFORMAT& cf) {
    Style style = base;
    const DWORD effects = cf.dwMask & effectItems;  // CFE bits equal the CFM bits here
    style.effects = (style.effects & ~effects) | (cf.dwEffects & effects);
    if (cf.dwMask & CFM_COLOR) {
        style.colour = cf.crTextColor & 0xFFFFFF;
        style.effects = (style.effects & ~CFE_AUTOCOLOR) | (cf.dwEffects & CFE_AUTOCOLOR);
    }
    if ((cf.dwMask & CFM_SIZE) && cf.yHeight > 0) style.height = cf.yHeight;
    if (cf.dwMask & CFM_OFFSET) style.offset = cf.yOffset;
    if (cf.dwMask & CFM_CHARSET) style.charset = cf.bCharSet;
    if (cf.dwMask & CFM_FACE) {
        style.face.fill(0);
        const size_t length = strnlen(cf.szFaceName, LF_FACESIZE - 1);
        std::memcpy(style.face.data(), cf.szFaceName, length);
        style.pitchAndFamily = cf.bPitchAndFamily;
    }
    return style;
}

void FillCharFormat(const Style& style, CHARFORMAT& cf) {
    cf.dwMask = CFM_ALL;
    cf.dwEffects = style.effects;
    cf.yHeight = style.height;
    cf.yOffset = style.offset;
    cf.crTextColor = style.colour;
    cf.bCharSet = style.charset;
    cf.bPitchAndFamily = style.pitchAndFamily;
    std::memcpy(cf.szFaceName, style.face.data(), LF_FACESIZE);
}

DWORD SameItems(const Style& a, const Style& b) {
    DWORD mask = CFM_ALL;
    mask &= ~((a.effects ^ b.effects) & effectItems);
    if (a.colour != b.colour || ((a.effects ^ b.effects) & CFE_AUTOCOLOR)) mask &= ~CFM_COLOR;
    if (a.height != b.height) mask &= ~CFM_SIZE;
    if (a.offset != b.offset) mask &= ~CFM_OFFSET;
    if (a.charset != b.charset) mask &= ~CFM_CHARSET;
    if (a.face != b.face) mask &= ~CFM_FACE;
    return mask;
}

uint32_t Palette::Intern(const Style& style) {
    auto found = indexOf.find(style);
    if (found != indexOf.end()) return found->second;
    const uint32_t index = static_cast<uint32_t>(styles.size());
    styles.push_back(style);
    indexOf.emplace(style, index);
    return index;
}

}  // namespace memory_widget

DWORD CMemoryRichEdit::GetSelectionCharFormat(CHARFORMAT& cf) const {
    const State& s = *state;
    const int start = s.SelStart();
    const int end = s.SelEnd();
    if (start >= end) {
        FillCharFormat(s.palette[s.InsertionFormat()], cf);
        return cf.dwMask;
    }
    const uint32_t first = s.formats[static_cast<size_t>(start)];
    const Style& firstStyle = s.palette[first];
    DWORD mask = CFM_ALL;
    for (int i = start + 1; i < end && mask; ++i) {
        const uint32_t other = s.formats[static_cast<size_t>(i)];
        if (other != first) mask &= SameItems(firstStyle, s.palette[other]);
    }
    FillCharFormat(firstStyle, cf);
    cf.dwMask = mask;
    return mask;
}

bool CMemoryRichEdit::SetSelectionCharFormat(const CHARFORMAT& cf) {
    State& s = *state;
    const int start = s.SelStart();
    const int end = s.SelEnd();
    if (start >= end) {
        s.pendingFormat = static_cast<int>(s.palette.Intern(StyleFrom(s.palette[s.InsertionFormat()], cf)));
        return true;
    }
    if (!AskProtected(EM_SETCHARFORMAT, 1, start, end)) return false;
    const int from = std::min(start, s.Length());
    const int to = std::min(end, s.Length());
    // A range holds few distinct formats: each is worked out once.
    std::pair<uint32_t, uint32_t> changed[16];
    size_t known = 0;
    for (int i = from; i < to; ++i) {
        uint32_t& format = s.formats[static_cast<size_t>(i)];
        auto hit = std::find_if(changed, changed + known, [&](const auto& pair) { return pair.first == format; });
        if (hit != changed + known) {
            format = hit->second;
            continue;
        }
        const uint32_t result = s.palette.Intern(StyleFrom(s.palette[format], cf));
        if (known < std::size(changed)) changed[known++] = {format, result};
        format = result;
    }
    OnFormatChanged(from, to);
    return true;
}

DWORD CMemoryRichEdit::GetDefaultCharFormat(CHARFORMAT& cf) const {
    FillCharFormat(state->palette[state->defaultFormat], cf);
    return cf.dwMask;
}

bool CMemoryRichEdit::SetDefaultCharFormat(const CHARFORMAT& cf) {
    state->defaultFormat = state->palette.Intern(StyleFrom(state->palette[state->defaultFormat], cf));
    return true;
}

bool CMemoryRichEdit::SetParaFormat(const PARAFORMAT& pf) {
    PARAFORMAT& para = state->para;
    const DWORD mask = pf.dwMask;
    if (mask & PFM_STARTINDENT) para.dxStartIndent = pf.dxStartIndent;
    if (mask & PFM_RIGHTINDENT) para.dxRightIndent = pf.dxRightIndent;
    if (mask & PFM_OFFSET) para.dxOffset = pf.dxOffset;
    if (mask & PFM_ALIGNMENT) para.wAlignment = pf.wAlignment;
    if (mask & PFM_TABSTOPS) {
        para.cTabCount = static_cast<short>(std::clamp<int>(pf.cTabCount, 0, MAX_TAB_STOPS));
        std::fill(std::begin(para.rgxTabs), std::end(para.rgxTabs), 0);
        std::copy(pf.rgxTabs, pf.rgxTabs + para.cTabCount, para.rgxTabs);
    }
    para.dwMask |= mask;
    return true;
}

CHARFORMAT CMemoryRichEdit::CharFormatAt(int position) const {
    const State& s = *state;
    CHARFORMAT cf;
    const uint32_t format = position >= 0 && position < s.Length()
                                ? s.formats[static_cast<size_t>(position)]
                                : s.defaultFormat;
    FillCharFormat(s.palette[format], cf);
    return cf;
}
