// Finding and replacing in the editor's text, through the control's own
// selection and replacement, so that the colouring and undo see each change.
#pragma once

#include <QString>

#include "qelkern/qelkern.h"

struct SearchRequest {
    QString pattern;
    bool caseSensitive = false;
};

// The next match at or behind `from`, wrapping to the start; -1 if none.
int FindInText(const QString& text, const SearchRequest& request, int from);

// Selects the next match behind the selection; false if there is none.
bool FindNext(CRichEditCtrl& editor, const SearchRequest& request);
// Replaces the selection if it is a match, then selects the next one;
// false if nothing was replaced.
bool ReplaceCurrent(CRichEditCtrl& editor, const SearchRequest& request, const QString& replacement);
// Every match, front to back, each an undo step; the number replaced.
int ReplaceAll(CRichEditCtrl& editor, const SearchRequest& request, const QString& replacement);
