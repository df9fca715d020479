#include "text_search.h"

#include "qelkern-qt/qtuserinterface.h"

namespace {
QString TextOf(const CRichEditCtrl& editor) {
    return Latin1Text(editor.GetTextRange(0, static_cast<int>(editor.GetTextLength())));
}

bool SelectionMatches(const CRichEditCtrl& editor, const SearchRequest& request) {
    long start = 0, end = 0;
    editor.GetSel(start, end);
    const QString selected = Latin1Text(editor.GetTextRange(static_cast<int>(start), static_cast<int>(end)));
    return !request.pattern.isEmpty() &&
           selected.compare(request.pattern, request.caseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive) == 0;
}
}  // namespace

int FindInText(const QString& text, const SearchRequest& request, int from) {
    if (request.pattern.isEmpty()) return -1;
    const Qt::CaseSensitivity sensitivity = request.caseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive;
    const qsizetype found = text.indexOf(request.pattern, std::clamp<qsizetype>(from, 0, text.size()), sensitivity);
    if (found >= 0) return static_cast<int>(found);
    return static_cast<int>(text.indexOf(request.pattern, 0, sensitivity));
}

bool FindNext(CRichEditCtrl& editor, const SearchRequest& request) {
    long start = 0, end = 0;
    editor.GetSel(start, end);
    const int found = FindInText(TextOf(editor), request, static_cast<int>(end));
    if (found < 0) return false;
    editor.SetSel(found, found + static_cast<long>(request.pattern.size()));
    return true;
}

bool ReplaceCurrent(CRichEditCtrl& editor, const SearchRequest& request, const QString& replacement) {
    const bool replaced = SelectionMatches(editor, request);
    if (replaced) editor.ReplaceSel(FromQString(replacement), TRUE);
    FindNext(editor, request);
    return replaced;
}

int ReplaceAll(CRichEditCtrl& editor, const SearchRequest& request, const QString& replacement) {
    if (request.pattern.isEmpty()) return 0;
    const Qt::CaseSensitivity sensitivity = request.caseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive;
    int count = 0;
    qsizetype from = 0;
    for (;;) {
        const qsizetype found = TextOf(editor).indexOf(request.pattern, from, sensitivity);
        if (found < 0) break;
        editor.SetSel(static_cast<long>(found), static_cast<long>(found + request.pattern.size()));
        editor.ReplaceSel(FromQString(replacement), TRUE);
        from = found + replacement.size();
        ++count;
    }
    return count;
}
