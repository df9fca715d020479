// The script editor: the colouring rich edit control, the hidden view that
// prints, saves and loads for it, and the read-only text dialog that shows a
// compile error in place.
#pragma once

#include "qelkern/platform.h"
#include "qelkern/richedit.h"
#include "qelkern/window.h"

// Character height of all formats of the editors, in twentieths of a point.
QELKERN_API extern int TWScriptEditHoehe;

// One colouring rule.
struct SymbolStyle {
    COLORREF colour;
    int bold;
};

// The kind of change that the widget announced before making it.
enum ChangeType : int {
    ChangeNone = 0,
    ChangeOther = 1,
    ChangeReplace = 2,
    ChangeDelete = 3,
    ChangeBackspace = 4,
    ChangeCut = 5,
    ChangePaste = 6,
    ChangeMove = 7,
};

class CSpecialRichEditView;

// A rich edit control that colours script source while the user types. The
// words, comment markers and string quotes come from its user
// (InitTWScriptEdit gives it those of the language).
class QELKERN_API CTWScriptEdit : public CRichEditCtrl {
public:
    CTWScriptEdit();
    ~CTWScriptEdit() override;

    // Once the widget exists: tab stops, default format, event mask.
    void Initialize();

    void SetCaseSensitive(int sensitive);
    void SetChangeCase(int change);
    void SetSLComment(const char* start, const char* end);
    void SetSLComment(char first, char second);
    void SetSLComment(const char* word);
    void SetStringQuotes(const char* quotes);
    // The text must already be a word list: each word framed by blanks.
    void AddKeywords(const char* words);
    void AddConstants(const char* words);
    void ClearKeywords();
    void ClearConstants();
    void SetErrorColor(unsigned long colour, int bold);
    void SetKeywordColor(unsigned long colour, int bold);
    void SetConstantColor(unsigned long colour, int bold);
    void SetCommentColor(unsigned long colour, int bold);
    void SetNumberColor(unsigned long colour, int bold);
    void SetStringColor(unsigned long colour, int bold);

    void FormatAll();

    // Print, save and load through the hidden view.
    void Drucken();
    void Speichern();
    void Laden();
    CSpecialRichEditView* CreateRichEditView();

    int caseSensitive = 0;
    int changeCase = 1;
    char commentChar = 1;
    char commentChar2 = 0;
    CString commentWord;
    CString stringQuotes = "\"";
    CString keywords;
    CString keywordsMatch;
    CString constants;
    CString constantsMatch;
    CString commentStart;
    CString commentEnd;
    SymbolStyle errorStyle = {0x0000FF, 1};
    SymbolStyle commentStyle = {0x008000, 0};
    SymbolStyle numberStyle = {0xFF00FF, 0};
    SymbolStyle stringStyle = {0x800000, 0};
    SymbolStyle keywordStyle = {0xFF0000, 0};
    SymbolStyle constantStyle = {0x000000, 1};
    int forcedChange = 0;
    int changeType = ChangeNone;
    int changeStart = 0;
    int changeEnd = 0;

protected:
    int IsStringQuote(char c);
    int IsKeyword(const char* word);
    int IsConstant(const char* word);
    void SetFormatRange(int start, int end, int bold, unsigned long colour);
    void FormatTextRange(int start, int end);
    // first and last are character positions.
    void FormatTextLines(int first, int last);
    void ChangeCase(int start, int end, const char* text);

    // The message map.
    void OnChange() override;
    UINT OnGetDlgCode() override;
    void OnChar(UINT nChar, UINT nRepCnt, UINT nFlags) override;
    void OnKeyUp(UINT nChar, UINT nRepCnt, UINT nFlags) override;
    void OnProtected(NMHDR* pNMHDR, LRESULT* pResult) override;
    void OnSelChange(NMHDR* pNMHDR, LRESULT* pResult) override;
    void OnSetFocus(CWnd* pOldWnd) override;
    LRESULT OnSetText(WPARAM wParam, LPARAM lParam) override;

private:
    friend class CScriptScan;
    void JumpToBracket(int direction);
};

// The hidden view that all editors of the process share; null until the
// first print, save or load.
QELKERN_API extern CSpecialRichEditView* sharedRichEditView;

// A hidden, document-less view: prints, writes and reads plain text.
class QELKERN_API CSpecialRichEditView : public CRichEditView {
public:
    CSpecialRichEditView();
    ~CSpecialRichEditView() override;

    BOOL OnPreparePrinting(CPrintInfo* pInfo) override;

    void DruckeText();
    void SpeichereText();
    void LadeText();
};

// Prepares a CTWScriptEdit item of a dialog: the words of the language
// (gathered once per process by compiling the prelude), comments, strings.
QELKERN_API void InitTWScriptEdit(CTWScriptEdit* edit, CDialog* dialog, int controlId,
                                  CString preludeFile);

// The dialog resource IDD_TEXTDIALOG and the id of its editor.
constexpr int IDD_TEXTDIALOG = 130;
constexpr int IDC_TEXTDIALOG_EDIT = 1002;
QELKERN_API extern const DialogTemplate TextDialogTemplate;

// Shows a text read-only with colouring, the caret on a given line: the
// display of a compile error.
class QELKERN_API CTextDialog : public FlexLayoutDialog {
public:
    CTextDialog(CString title, CWnd* parent = nullptr);
    ~CTextDialog() override;

    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    void Layout(CRect& rect) override;

    CString text;
    int line = 0;
    int column = 0;
    CString title;
    CTWScriptEdit edit;
};
