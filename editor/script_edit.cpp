#include "qelkern/editor.h"

CTWScriptEdit::CTWScriptEdit() = default;
CTWScriptEdit::~CTWScriptEdit() = default;

void CTWScriptEdit::Initialize() {
    PARAFORMAT pf;
    pf.dwMask = PFM_TABSTOPS;
    pf.cTabCount = MAX_TAB_STOPS;
    for (int i = 0; i < MAX_TAB_STOPS; ++i) pf.rgxTabs[i] = (i + 1) * 1440 / 5;
    SetParaFormat(pf);
    CHARFORMAT cf;
    GetDefaultCharFormat(cf);
    SetDefaultCharFormat(cf);
    SetEventMask(ENM_CHANGE | ENM_SELCHANGE | ENM_PROTECTED);
}

void CTWScriptEdit::SetCaseSensitive(int sensitive) { caseSensitive = sensitive; }
void CTWScriptEdit::SetChangeCase(int change) { changeCase = change; }

void CTWScriptEdit::SetSLComment(const char* start, const char* end) {
    commentStart = start ? start : "";
    commentEnd = end ? end : "";
}

void CTWScriptEdit::SetSLComment(char first, char second) {
    commentChar = first;
    commentChar2 = second;
}

void CTWScriptEdit::SetSLComment(const char* word) { commentWord = word ? word : ""; }
void CTWScriptEdit::SetStringQuotes(const char* quotes) { stringQuotes = quotes ? quotes : ""; }

// The match form is made when words are added: a later change of
// caseSensitive does not touch it.
void CTWScriptEdit::AddKeywords(const char* words) {
    keywords += words ? words : "";
    keywordsMatch = keywords;
    if (caseSensitive == 0) keywordsMatch.MakeUpper();
}

void CTWScriptEdit::AddConstants(const char* words) {
    constants += words ? words : "";
    constantsMatch = constants;
    if (caseSensitive == 0) constantsMatch.MakeUpper();
}

void CTWScriptEdit::ClearKeywords() {
    keywords.Empty();
    keywordsMatch.Empty();
}

void CTWScriptEdit::ClearConstants() {
    constants.Empty();
    constantsMatch.Empty();
}

void CTWScriptEdit::SetErrorColor(unsigned long colour, int bold) { errorStyle = {static_cast<COLORREF>(colour), bold}; }
void CTWScriptEdit::SetKeywordColor(unsigned long colour, int bold) { keywordStyle = {static_cast<COLORREF>(colour), bold}; }
void CTWScriptEdit::SetConstantColor(unsigned long colour, int bold) { constantStyle = {static_cast<COLORREF>(colour), bold}; }
void CTWScriptEdit::SetCommentColor(unsigned long colour, int bold) { commentStyle = {static_cast<COLORREF>(colour), bold}; }
void CTWScriptEdit::SetNumberColor(unsigned long colour, int bold) { numberStyle = {static_cast<COLORREF>(colour), bold}; }
void CTWScriptEdit::SetStringColor(unsigned long colour, int bold) { stringStyle = {static_cast<COLORREF>(colour), bold}; }

int CTWScriptEdit::IsStringQuote(char c) { return c != 0 && stringQuotes.Find(c) >= 0 ? 1 : 0; }

namespace {
// The position of the blank before the word in the list, or -1.
int FindInWordList(const CString& list, const char* word, int caseSensitive) {
    CString framed;
    framed.Format(" %s ", word ? word : "");
    if (caseSensitive == 0) framed.MakeUpper();
    return list.Find(framed);
}
}  // namespace

int CTWScriptEdit::IsKeyword(const char* word) { return FindInWordList(keywordsMatch, word, caseSensitive); }
int CTWScriptEdit::IsConstant(const char* word) { return FindInWordList(constantsMatch, word, caseSensitive); }
