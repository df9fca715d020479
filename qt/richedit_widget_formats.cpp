// CQtRichEditWidget: character formats of the selection and the default
// format, and the tab stops.
#include <cstring>

#include "richedit_state.h"

using namespace qt_richedit;

namespace {
constexpr double twipsPerInch = 1440.0;
constexpr double pixelsPerInch = 96.0;  // Qt scales logical pixels to the screen

bool SameFormat(const CHARFORMAT& a, const CHARFORMAT& b) {
    return a.dwEffects == b.dwEffects && a.yHeight == b.yHeight && a.yOffset == b.yOffset &&
           a.crTextColor == b.crTextColor && a.bCharSet == b.bCharSet && a.bPitchAndFamily == b.bPitchAndFamily &&
           std::strncmp(a.szFaceName, b.szFaceName, LF_FACESIZE) == 0;
}
}  // namespace

void CQtRichEditWidget::State::FillFormat(FormatId id, CHARFORMAT& cf) const {
    if (filledMade.size() <= id) {
        filledMade.resize(static_cast<size_t>(formats.FormatCount()), false);
        filledFormats.resize(filledMade.size());
    }
    if (!filledMade[id]) {
        FillCharFormat(formats.Format(id), defaultFormat, filledFormats[id]);
        filledMade[id] = true;
    }
    const UINT size = cf.cbSize;
    cf = filledFormats[id];
    cf.cbSize = size;
}

DWORD CQtRichEditWidget::GetSelectionCharFormat(CHARFORMAT& cf) const {
    const State& s = *state;
    int start = 0;
    int end = 0;
    GetSel(start, end);
    end = std::min(end, s.formats.Length());
    if (!s.view || start >= end) {
        if (s.view)
            s.FillFormat(s.InsertionFormat(start, end), cf);
        else
            FillCharFormat(QTextCharFormat(), s.defaultFormat, cf);
        return cf.dwMask;
    }
    bool first = true;
    DWORD same = CFM_ALL;
    CHARFORMAT run;
    s.formats.ForEachRun(start, end, [&](FormatId id, int, int) {
        s.FillFormat(id, first ? cf : run);
        if (!first) same &= SameItems(cf, run);
        first = false;
    });
    cf.dwMask = same;
    return same;
}

bool CQtRichEditWidget::SetSelectionCharFormat(const CHARFORMAT& cf) {
    State& s = *state;
    if (!s.view) return false;
    int start = 0;
    int end = 0;
    GetSel(start, end);
    if (start >= end) {
        QTextCharFormat format = s.formats.Format(s.InsertionFormat(start, end));
        format.merge(MaskedFormat(cf));
        if ((cf.dwMask & CFM_COLOR) && (cf.dwEffects & CFE_AUTOCOLOR)) format.clearForeground();
        s.pendingFormat = s.formats.Intern(format);
        return true;
    }
    if (!AskProtected(EM_SETCHARFORMAT, 0, start, end)) return false;
    end = std::min(end, s.formats.Length());
    s.formats.Merge(start, end, cf);
    s.painter.Mark(start, end);
    s.Paint();
    return true;
}

DWORD CQtRichEditWidget::GetDefaultCharFormat(CHARFORMAT& cf) const {
    const UINT size = cf.cbSize;
    cf = state->defaultFormat;
    cf.cbSize = size;
    return cf.dwMask = CFM_ALL;
}

// Colouring sets the default back after every pass; only a real change
// costs a new layout.
bool CQtRichEditWidget::SetDefaultCharFormat(const CHARFORMAT& cf) {
    CHARFORMAT& target = state->defaultFormat;
    const CHARFORMAT before = target;
    FillCharFormat(MaskedFormat(cf), target, target);
    if ((cf.dwMask & CFM_COLOR) && (cf.dwEffects & CFE_AUTOCOLOR)) target.dwEffects |= CFE_AUTOCOLOR;
    if (SameFormat(before, target)) return true;
    state->filledMade.clear();
    ApplyDefaultFormat();
    return true;
}

// Text without formats of its own shows the default format.
void CQtRichEditWidget::ApplyDefaultFormat() {
    State& s = *state;
    if (!s.view) return;
    OwnChange own(s);
    const CHARFORMAT& cf = s.defaultFormat;
    QFont font = FontOf(cf);
    font.setPointSizeF(font.pointSizeF() * s.painter.Zoom());
    if (font != s.view->font()) s.view->setFont(font);
    QPalette palette = s.view->palette();
    const QColor text = (cf.dwEffects & CFE_AUTOCOLOR)
                            ? QPalette().color(QPalette::Text)
                            : QColor(GetRValue(cf.crTextColor), GetGValue(cf.crTextColor),
                                     GetBValue(cf.crTextColor));
    if (palette.color(QPalette::Text) == text) return;
    palette.setColor(QPalette::Text, text);
    s.view->setPalette(palette);
}

void CQtRichEditWidget::SetDisplayColours(const QHash<QRgb, QColor>& colours) {
    state->painter.SetDisplayColours(colours);
    state->Paint();
}

void CQtRichEditWidget::SetZoom(double factor) {
    State& s = *state;
    if (factor <= 0 || factor == s.painter.Zoom()) return;
    s.painter.SetZoom(factor);
    ApplyDefaultFormat();
    ApplyTabStops();
    s.Paint();
}

double CQtRichEditWidget::Zoom() const { return state->painter.Zoom(); }

QColor CQtRichEditWidget::DisplayColour(COLORREF stored) const {
    return state->painter.DisplayColour(QColor(GetRValue(stored), GetGValue(stored), GetBValue(stored)));
}

// Tab stops hold for the whole text: a script has no paragraph formats.
bool CQtRichEditWidget::SetParaFormat(const PARAFORMAT& pf) {
    State& s = *state;
    s.para = pf;
    if (!s.view || !(pf.dwMask & PFM_TABSTOPS)) return s.view != nullptr;
    ApplyTabStops();
    return true;
}

void CQtRichEditWidget::ApplyTabStops() {
    State& s = *state;
    const PARAFORMAT& pf = s.para;
    if (!s.view || !(pf.dwMask & PFM_TABSTOPS)) return;
    QList<QTextOption::Tab> tabs;
    const int count = std::clamp<int>(pf.cTabCount, 0, MAX_TAB_STOPS);
    const qreal scale = pixelsPerInch / twipsPerInch * s.painter.Zoom();
    qreal last = 0;
    qreal step = 0;
    for (int i = 0; i < count; ++i) {
        const qreal position = pf.rgxTabs[i] * scale;
        if (position <= last) continue;
        step = position - last;
        last = position;
        tabs.append(QTextOption::Tab(position, QTextOption::LeftTab));
    }
    QTextDocument* document = s.Document();
    QTextOption option = document->defaultTextOption();
    option.setTabs(tabs);
    if (step > 0) option.setTabStopDistance(step);
    OwnChange own(s);
    document->setDefaultTextOption(option);
}
