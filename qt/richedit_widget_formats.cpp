// CQtRichEditWidget: character formats of the selection and the default
// format, and the tab stops.
#include "richedit_state.h"

using namespace qt_richedit;

namespace {
constexpr double twipsPerInch = 1440.0;
constexpr double pixelsPerInch = 96.0;  // Qt scales logical pixels to the screen
}  // namespace

DWORD CQtRichEditWidget::GetSelectionCharFormat(CHARFORMAT& cf) const {
    const State& s = *state;
    int start = 0;
    int end = 0;
    GetSel(start, end);
    if (!s.view || start >= end) {
        FillCharFormat(s.view ? s.InsertionFormat(start, end) : QTextCharFormat(), s.defaultFormat, cf);
        return cf.dwMask;
    }
    bool first = true;
    DWORD same = CFM_ALL;
    CHARFORMAT run;
    ForEachRun(s.Document(), start, end, [&](const QTextCharFormat& format, int, int) {
        FillCharFormat(format, s.defaultFormat, first ? cf : run);
        if (!first) same &= SameItems(cf, run);
        first = false;
    });
    if (first) FillCharFormat(s.InsertionFormat(start, end), s.defaultFormat, cf);
    cf.dwMask = same;
    return same;
}

bool CQtRichEditWidget::SetSelectionCharFormat(const CHARFORMAT& cf) {
    State& s = *state;
    if (!s.view) return false;
    int start = 0;
    int end = 0;
    GetSel(start, end);
    const bool autoColour = (cf.dwMask & CFM_COLOR) && (cf.dwEffects & CFE_AUTOCOLOR);
    if (start >= end) {
        QTextCharFormat format = s.InsertionFormat(start, end);
        format.merge(MaskedFormat(cf));
        if (autoColour) format.clearForeground();
        s.pendingFormat = format;
        return true;
    }
    if (!AskProtected(EM_SETCHARFORMAT, 0, start, end)) return false;
    OwnChange own(s);
    QTextCursor range = s.Range(start, end);
    range.mergeCharFormat(MaskedFormat(cf));
    if (autoColour) ClearColour(start, end);
    return true;
}

void CQtRichEditWidget::ClearColour(int start, int end) {
    State& s = *state;
    struct Run {
        QTextCharFormat format;
        int start, end;
    };
    std::vector<Run> runs;
    ForEachRun(s.Document(), start, end,
               [&runs](const QTextCharFormat& format, int from, int to) { runs.push_back({format, from, to}); });
    for (Run& run : runs) {
        run.format.clearForeground();
        s.Range(run.start, run.end).setCharFormat(run.format);
    }
}

DWORD CQtRichEditWidget::GetDefaultCharFormat(CHARFORMAT& cf) const {
    const UINT size = cf.cbSize;
    cf = state->defaultFormat;
    cf.cbSize = size;
    return cf.dwMask = CFM_ALL;
}

bool CQtRichEditWidget::SetDefaultCharFormat(const CHARFORMAT& cf) {
    CHARFORMAT& target = state->defaultFormat;
    FillCharFormat(MaskedFormat(cf), target, target);
    if ((cf.dwMask & CFM_COLOR) && (cf.dwEffects & CFE_AUTOCOLOR)) target.dwEffects |= CFE_AUTOCOLOR;
    ApplyDefaultFormat();
    return true;
}

// Text without formats of its own shows the default format.
void CQtRichEditWidget::ApplyDefaultFormat() {
    State& s = *state;
    if (!s.view) return;
    OwnChange own(s);
    const CHARFORMAT& cf = s.defaultFormat;
    s.view->setFont(FontOf(cf));
    QPalette palette = s.view->palette();
    const QColor text = (cf.dwEffects & CFE_AUTOCOLOR)
                            ? QPalette().color(QPalette::Text)
                            : QColor(GetRValue(cf.crTextColor), GetGValue(cf.crTextColor),
                                     GetBValue(cf.crTextColor));
    palette.setColor(QPalette::Text, text);
    s.view->setPalette(palette);
}

// Tab stops hold for the whole text: a script has no paragraph formats.
bool CQtRichEditWidget::SetParaFormat(const PARAFORMAT& pf) {
    State& s = *state;
    s.para = pf;
    if (!s.view || !(pf.dwMask & PFM_TABSTOPS)) return s.view != nullptr;
    QList<QTextOption::Tab> tabs;
    const int count = std::clamp<int>(pf.cTabCount, 0, MAX_TAB_STOPS);
    qreal last = 0;
    qreal step = 0;
    for (int i = 0; i < count; ++i) {
        const qreal position = pf.rgxTabs[i] / twipsPerInch * pixelsPerInch;
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
    return true;
}
