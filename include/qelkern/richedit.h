// The rich edit control: the window a program talks to (CRichEditCtrl), the
// native widget behind it (CRichEditWidget), and an in-memory widget that is
// complete enough to serve headless hosts and tests (CMemoryRichEdit).
//
// Text positions count characters from 0; a paragraph ends with one carriage
// return (13). Text is Latin-1 like everything in the engine.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qelkern/platform.h"
#include "qelkern/window.h"

typedef DWORD COLORREF;

// Red in the low byte, then green, then blue.
constexpr COLORREF RGB(BYTE red, BYTE green, BYTE blue) {
    return static_cast<COLORREF>(red) | (static_cast<COLORREF>(green) << 8) |
           (static_cast<COLORREF>(blue) << 16);
}
constexpr BYTE GetRValue(COLORREF c) { return static_cast<BYTE>(c & 0xFF); }
constexpr BYTE GetGValue(COLORREF c) { return static_cast<BYTE>((c >> 8) & 0xFF); }
constexpr BYTE GetBValue(COLORREF c) { return static_cast<BYTE>((c >> 16) & 0xFF); }

constexpr int LF_FACESIZE = 32;

// Which items of a CHARFORMAT count.
enum : DWORD {
    CFM_BOLD = 0x00000001,
    CFM_ITALIC = 0x00000002,
    CFM_UNDERLINE = 0x00000004,
    CFM_STRIKEOUT = 0x00000008,
    CFM_PROTECTED = 0x00000010,
    CFM_LINK = 0x00000020,
    CFM_CHARSET = 0x08000000,
    CFM_OFFSET = 0x10000000,
    CFM_FACE = 0x20000000,
    CFM_COLOR = 0x40000000,
    CFM_SIZE = 0x80000000,
    CFM_EFFECTS = CFM_BOLD | CFM_ITALIC | CFM_UNDERLINE | CFM_COLOR | CFM_STRIKEOUT |
                  CFM_PROTECTED | CFM_LINK,
    CFM_ALL = CFM_EFFECTS | CFM_SIZE | CFM_FACE | CFM_OFFSET | CFM_CHARSET,
};

// Effects of a CHARFORMAT.
enum : DWORD {
    CFE_BOLD = 0x00000001,
    CFE_ITALIC = 0x00000002,
    CFE_UNDERLINE = 0x00000004,
    CFE_STRIKEOUT = 0x00000008,
    CFE_PROTECTED = 0x00000010,
    CFE_LINK = 0x00000020,
    CFE_AUTOCOLOR = 0x40000000,  // colour of the system, crTextColor is ignored
};

struct CHARFORMAT {
    UINT cbSize = sizeof(CHARFORMAT);
    DWORD dwMask = 0;
    DWORD dwEffects = 0;
    LONG yHeight = 0;  // twips
    LONG yOffset = 0;
    COLORREF crTextColor = 0;
    BYTE bCharSet = 0;
    BYTE bPitchAndFamily = 0;
    char szFaceName[LF_FACESIZE] = {};
};

constexpr int MAX_TAB_STOPS = 32;
enum : DWORD {
    PFM_STARTINDENT = 0x00000001,
    PFM_RIGHTINDENT = 0x00000002,
    PFM_OFFSET = 0x00000004,
    PFM_ALIGNMENT = 0x00000008,
    PFM_TABSTOPS = 0x00000010,
};

struct PARAFORMAT {
    UINT cbSize = sizeof(PARAFORMAT);
    DWORD dwMask = 0;
    WORD wNumbering = 0;
    WORD wReserved = 0;
    LONG dxStartIndent = 0;
    LONG dxRightIndent = 0;
    LONG dxOffset = 0;
    WORD wAlignment = 0;
    short cTabCount = 0;
    LONG rgxTabs[MAX_TAB_STOPS] = {};  // twips
};

// Messages of the rich edit control.
enum : UINT {
    EM_REPLACESEL = 0x00C2,
    EM_EXSETSEL = WM_USER + 55,
    EM_SETEVENTMASK = WM_USER + 69,
    EM_SETCHARFORMAT = WM_USER + 68,
    EM_SETPARAFORMAT = WM_USER + 71,
    EM_STREAMIN = WM_USER + 73,
    EM_STREAMOUT = WM_USER + 74,
};

// Notification codes, and the event mask bits that let them through.
enum : UINT {
    EN_CHANGE = 0x0300,
    EN_SELCHANGE = 0x0702,
    EN_PROTECTED = 0x0704,
};
enum : DWORD {
    ENM_NONE = 0x00000000,
    ENM_CHANGE = 0x00000001,
    ENM_UPDATE = 0x00000002,
    ENM_SCROLL = 0x00000004,
    ENM_KEYEVENTS = 0x00010000,
    ENM_MOUSEEVENTS = 0x00020000,
    ENM_SELCHANGE = 0x00080000,
    ENM_PROTECTED = 0x00200000,
};

struct CHARRANGE {
    LONG cpMin = 0;
    LONG cpMax = 0;
};


typedef uintptr_t DWORD_PTR;

struct NMHDR {
    void* hwndFrom = nullptr;
    uintptr_t idFrom = 0;
    UINT code = 0;
};

// The protected-text notice: the message about to change protected text.
struct ENPROTECTED {
    NMHDR nmhdr;
    UINT msg = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    CHARRANGE chrg;
};

enum : WORD { SEL_EMPTY = 0x0000, SEL_TEXT = 0x0001 };
struct SELCHANGE {
    NMHDR nmhdr;
    CHARRANGE chrg;
    WORD seltyp = SEL_EMPTY;
};

// Streaming of plain text in and out of the control.
enum : UINT { SF_TEXT = 0x0001 };
typedef DWORD (*EDITSTREAMCALLBACK)(DWORD_PTR cookie, BYTE* buffer, LONG count, LONG* done);
struct EDITSTREAM {
    DWORD_PTR dwCookie = 0;
    DWORD dwError = 0;
    EDITSTREAMCALLBACK pfnCallback = nullptr;
};

class CRichEditCtrl;

// ---------------------------------------------------------------------------
// What a native text widget provides. The control forwards its operations
// here; the widget hands the user's input to the control's message map with
// SendToOwner and reports its changes with NotifyOwner. A widget that edits
// sends, for each change: EN_PROTECTED before it when it touches text with
// the protected effect (the change is refused if the answer is not 0),
// EN_CHANGE after it, then EN_SELCHANGE. Format changes send EN_PROTECTED
// (message EM_SETCHARFORMAT) but no EN_CHANGE. The control filters by its
// event mask, so a widget always reports.
class QELKERN_API CRichEditWidget {
public:
    virtual ~CRichEditWidget();

    void SetOwner(CRichEditCtrl* control) { owner = control; }
    CRichEditCtrl* GetOwner() const { return owner; }

    // Text; paragraphs end with '\r'.
    virtual int GetTextLength() const = 0;
    // The characters from start to end; both are clamped to the text.
    virtual CString GetTextRange(int start, int end) const = 0;
    // Replaces the whole text ("\r\n" and "\n" become '\r'), the caret goes
    // to 0, the undo history is emptied; sends EN_CHANGE and EN_SELCHANGE.
    virtual void SetText(const char* text) = 0;

    // Lines: an empty text has one line, and each '\r' begins another.
    virtual int GetLineCount() const = 0;
    // Line of a position; positions beyond the text are on the last line.
    virtual int LineFromChar(int position) const = 0;
    // First position of a line; -1 for a line that does not exist.
    virtual int LineIndex(int line) const = 0;

    // Selection; start <= end, both within the text. SetSel sends
    // EN_SELCHANGE when the selection changes.
    virtual void GetSel(int& start, int& end) const = 0;
    virtual void SetSel(int start, int end) = 0;
    virtual void HideSelection(bool hide, bool permanent) = 0;

    // Editing of the selection, with notifications.
    virtual void ReplaceSel(const char* text, bool canUndo) = 0;
    virtual void Cut() = 0;
    virtual void Copy() = 0;
    virtual void Paste() = 0;
    virtual void Clear() = 0;
    virtual bool CanUndo() const = 0;
    virtual bool Undo() = 0;
    virtual void EmptyUndoBuffer() = 0;

    // Formats. GetSelectionCharFormat gives the values of the selection's
    // first character (of the insertion point for an empty selection) and
    // returns the mask of the items that are the same over the selection.
    // Setting changes only the items in cf.dwMask.
    virtual DWORD GetSelectionCharFormat(CHARFORMAT& cf) const = 0;
    virtual bool SetSelectionCharFormat(const CHARFORMAT& cf) = 0;
    virtual DWORD GetDefaultCharFormat(CHARFORMAT& cf) const = 0;
    virtual bool SetDefaultCharFormat(const CHARFORMAT& cf) = 0;
    virtual bool SetParaFormat(const PARAFORMAT& pf) = 0;

    // The widget's own handling of keyboard input that reached it through
    // the control's message map.
    virtual void DefaultKeyDown(UINT key) = 0;
    virtual void DefaultChar(UINT character) = 0;
    // State of a key as the framework gives it: a negative value while the
    // key is down.
    virtual short GetKeyState(int key) const = 0;

    // Window side.
    virtual void LockUpdate(bool lock) = 0;
    virtual void Show(bool visible) = 0;
    virtual void Focus() = 0;
    virtual void SetReadOnly(bool readOnly) = 0;
    virtual bool IsReadOnly() const = 0;

protected:
    // Input of the user: goes through the owner's message map; without an
    // owner straight to the widget's own handling.
    LRESULT SendToOwner(UINT message, WPARAM wParam, LPARAM lParam);
    // A notification for the owner; 0 without an owner.
    LRESULT NotifyOwner(UINT code, NMHDR* info);
    // The protected-text notice for a change of [start, end) by `message`;
    // true when the owner lets it happen.
    bool OwnerAllowsProtectedChange(UINT message, WPARAM wParam, int start, int end);

private:
    CRichEditCtrl* owner = nullptr;
};

// Makes the native widget of a new control. A GUI installs its own; the
// default makes a CMemoryRichEdit. A factory that returns null makes the
// creation of the control fail.
using RichEditWidgetFactory = std::unique_ptr<CRichEditWidget> (*)(CWnd* parent, int id);
QELKERN_API RichEditWidgetFactory SetRichEditWidgetFactory(RichEditWidgetFactory factory);
QELKERN_API std::unique_ptr<CRichEditWidget> CreateRichEditWidget(CWnd* parent, int id);

// The clipboard of the process, text only. Line ends on it are "\r\n".
// A GUI may put the system's clipboard behind it.
class QELKERN_API CClipboard {
public:
    virtual ~CClipboard();
    virtual CString GetText() const;
    virtual void SetText(const CString& text);

private:
    CString text;
};
QELKERN_API CClipboard& GetClipboard();
// The widget's "\r" paragraph ends as "\r\n", the way the window text and
// the clipboard give them.
QELKERN_API CString WithCrLf(const CString& text);
// null: back to the built-in one.
QELKERN_API void SetClipboard(CClipboard* clipboard);

// ---------------------------------------------------------------------------
// The control. Its message map handles the messages and the reflected
// notifications below through virtual handlers; each base handler gives the
// widget's own behaviour, so a derived control overrides what it handles.
class QELKERN_API CRichEditCtrl : public CWnd {
public:
    CRichEditCtrl();
    ~CRichEditCtrl() override;

    // A control on a new widget from the factory; false if none was made.
    BOOL Create();
    BOOL Create(DWORD windowStyle, const CRect& rect, CWnd* parentWindow, UINT id);
    // Puts the control on a widget; with `owned` the control deletes it.
    void Attach(CRichEditWidget* widget, bool owned);
    // Lets go of the widget (not deleted); null if there is none.
    CRichEditWidget* Detach();
    // Takes over the widget of a rich edit item of a dialog.
    BOOL SubclassDlgItem(UINT id, CWnd* parentWindow);
    CRichEditWidget* GetWidget() const { return widget; }
    bool IsWindow() const override { return widget != nullptr; }

    // Selection. SetSel(0, -1) selects all; a start of -1 removes the
    // selection and leaves the caret at its end.
    void GetSel(long& start, long& end) const;
    void GetSel(CHARRANGE& range) const;
    void SetSel(long start, long end);
    void SetSel(CHARRANGE& range);
    // Copies the selected text and a closing 0 into the buffer, which must
    // hold the selection's length plus one; returns the number of characters.
    long GetSelText(char* buffer) const;
    CString GetSelText() const;
    void ReplaceSel(const char* text, BOOL canUndo = FALSE);
    void HideSelection(BOOL hide, BOOL permanent);

    DWORD GetSelectionCharFormat(CHARFORMAT& cf) const;
    BOOL SetSelectionCharFormat(CHARFORMAT& cf);
    DWORD GetDefaultCharFormat(CHARFORMAT& cf) const;
    BOOL SetDefaultCharFormat(CHARFORMAT& cf);
    BOOL SetParaFormat(PARAFORMAT& pf);
    DWORD SetEventMask(DWORD mask);
    DWORD GetEventMask() const { return eventMask; }

    // Lines. -1 stands for the line of the selection's start.
    long LineFromChar(long index) const;
    int LineIndex(int line = -1) const;
    // Length of the line that holds the character index, without its '\r'.
    // -1: the unselected characters of the lines that the selection touches.
    int LineLength(int index = -1) const;
    int GetLineCount() const;
    long GetTextLength() const;
    CString GetTextRange(int start, int end) const;

    void Clear();
    void Copy();
    void Cut();
    void Paste();
    BOOL CanUndo() const;
    BOOL Undo();
    void EmptyUndoBuffer();
    BOOL SetReadOnly(BOOL readOnly = TRUE);
    short GetKeyState(int key) const;

    // Plain text streams (SF_TEXT): out with "\n" line ends, in with any.
    long StreamIn(int format, EDITSTREAM& stream);
    long StreamOut(int format, EDITSTREAM& stream);

    // A notification of the widget, reflected to the control; passes the
    // event mask first.
    LRESULT ReflectNotification(UINT code, NMHDR* info);

    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

protected:
    // The message map.
    virtual void OnChange();
    virtual void OnProtected(NMHDR* pNMHDR, LRESULT* pResult);
    virtual void OnSelChange(NMHDR* pNMHDR, LRESULT* pResult);
    virtual UINT OnGetDlgCode();
    virtual void OnChar(UINT nChar, UINT nRepCnt, UINT nFlags);
    virtual void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags);
    virtual void OnKeyUp(UINT nChar, UINT nRepCnt, UINT nFlags);
    virtual void OnSetFocus(CWnd* pOldWnd);
    virtual LRESULT OnSetText(WPARAM wParam, LPARAM lParam);

    CString GetWindowTextImpl() const override;
    void OnShowWindowImpl(int showCommand) override;
    void OnFocusImpl() override;
    void OnLockUpdateImpl(bool lock) override;

private:
    void ReleaseWidget();  // detaches, and deletes the widget if owned

    CRichEditWidget* widget = nullptr;
    bool ownsWidget = false;
    DWORD eventMask = ENM_NONE;
};

// ---------------------------------------------------------------------------
// The in-memory widget: text, a format per character, a selection, an undo
// history of text changes (formats are not undone), the process clipboard,
// the protected-text, change and selection notifications. Typing that goes
// on at the caret joins one undo step; a replacement without undo adds none,
// and one that changes the length drops the older steps, which would no
// longer fit the text.
class QELKERN_API CMemoryRichEdit : public CRichEditWidget {
public:
    CMemoryRichEdit();
    ~CMemoryRichEdit() override;

    int GetTextLength() const override;
    CString GetTextRange(int start, int end) const override;
    void SetText(const char* text) override;
    int GetLineCount() const override;
    int LineFromChar(int position) const override;
    int LineIndex(int line) const override;
    void GetSel(int& start, int& end) const override;
    void SetSel(int start, int end) override;
    void HideSelection(bool hide, bool permanent) override;
    void ReplaceSel(const char* text, bool canUndo) override;
    void Cut() override;
    void Copy() override;
    void Paste() override;
    void Clear() override;
    bool CanUndo() const override;
    bool Undo() override;
    void EmptyUndoBuffer() override;
    DWORD GetSelectionCharFormat(CHARFORMAT& cf) const override;
    bool SetSelectionCharFormat(const CHARFORMAT& cf) override;
    DWORD GetDefaultCharFormat(CHARFORMAT& cf) const override;
    bool SetDefaultCharFormat(const CHARFORMAT& cf) override;
    bool SetParaFormat(const PARAFORMAT& pf) override;
    void DefaultKeyDown(UINT key) override;
    void DefaultChar(UINT character) override;
    short GetKeyState(int key) const override;
    void LockUpdate(bool lock) override;
    void Show(bool visible) override;
    void Focus() override;
    void SetReadOnly(bool readOnly) override;
    bool IsReadOnly() const override;

    // What a user does; all of it goes through the owner's message map.
    // Each character as key down, character and key up; '\n' and '\r' as the
    // return key, '\t' as the tab key.
    void UserTypes(const char* text);
    // Down and up of one key, with the character it gives, if any; Ctrl
    // held gives no character.
    void UserPressesKey(UINT key, bool control = false, bool shift = false);
    void UserCuts();    // the edit menu's commands
    void UserCopies();
    void UserPastes();
    void UserUndoes();
    void UserFocuses();
    // Drags the selected text to `target` (a position outside the selection)
    // and drops it there: a move, announced as a cut and a paste.
    void UserDragsSelection(int target);

    // Inspection.
    const std::string& Text() const;
    // The full format of one character (dwMask CFM_ALL).
    CHARFORMAT CharFormatAt(int position) const;
    int UndoStepCount() const;
    bool IsUpdateLocked() const;
    bool IsSelectionHidden() const;
    bool IsVisible() const;
    bool HasFocus() const;
    const PARAFORMAT& GetParaFormat() const;

protected:
    // For a GUI that mirrors this widget; called after each change.
    virtual void OnTextReplaced(int start, int removedLength, int insertedLength);
    virtual void OnFormatChanged(int start, int end);
    virtual void OnSelectionChanged(int start, int end);

private:
    // Replaces [start, end) after the protected-text notice, then sends the
    // change and selection notices; false if refused.
    bool ReplaceRange(int start, int end, const std::string& inserted, UINT message, WPARAM wParam,
                      int undoMode);
    void ReplaceRaw(int start, int end, const std::string& inserted,
                    const std::vector<uint32_t>& insertedFormats);
    bool AskProtected(UINT message, WPARAM wParam, int start, int end);
    void NotifyChanged();
    void Select(int anchor, int active);
    void MoveCaret(UINT key, bool extend);
    void DeleteByKey(UINT key);
    void SendKey(UINT message, UINT key);

    struct State;
    std::unique_ptr<State> state;
};

// ---------------------------------------------------------------------------
// A document-less view over a rich edit control, with page margins, word wrap
// and printing through the user interface service.

struct CPrintInfo {
    BOOL m_bPreview = FALSE;
    BOOL m_bContinuePrinting = TRUE;
};

class QELKERN_API CRichEditView : public CWnd {
public:
    enum WordWrapType { WrapNone = 0, WrapToWindow = 1, WrapToTargetDevice = 2 };

    CRichEditView();
    ~CRichEditView() override;

    BOOL Create(const char* className, const char* windowName, DWORD windowStyle,
                const CRect& rect, CWnd* parentWindow, UINT id);
    CRichEditCtrl& GetRichEditCtrl() { return control; }
    bool IsWindow() const override { return control.IsWindow(); }

    void SetMargins(const CRect& margins) { pageMargins = margins; }
    CRect GetMargins() const { return pageMargins; }
    virtual void WrapChanged();
    // Prints the control's text with the margins, after OnPreparePrinting.
    virtual void OnFilePrint();
    virtual BOOL OnPreparePrinting(CPrintInfo* pInfo);
    BOOL DoPreparePrinting(CPrintInfo* pInfo);

    int m_nWordWrap = WrapToWindow;

protected:
    void OnShowWindowImpl(int showCommand) override;
    CString GetWindowTextImpl() const override;

    CRichEditCtrl control;
    CRect pageMargins;
    int wrapChanges = 0;
};
