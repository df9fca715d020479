// The window layer of the editor: windows with a message map, dialogs built
// from resource data, and the layout of resizable dialogs. Names and message
// numbers follow the desktop framework that host code was written against, so
// that a GUI host can put real windows behind them and a headless host can run
// them as they are.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "qelkern/dialogs.h"
#include "qelkern/platform.h"

typedef uint8_t BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef uint32_t UINT;
typedef int32_t LONG;
typedef int BOOL;
typedef uintptr_t WPARAM;
typedef intptr_t LPARAM;
typedef intptr_t LRESULT;
typedef intptr_t INT_PTR;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

// Window messages.
enum : UINT {
    WM_SETFOCUS = 0x0007,
    WM_KILLFOCUS = 0x0008,
    WM_SETTEXT = 0x000C,
    WM_GETTEXT = 0x000D,
    WM_GETTEXTLENGTH = 0x000E,
    WM_NOTIFY = 0x004E,
    WM_GETDLGCODE = 0x0087,
    WM_KEYDOWN = 0x0100,
    WM_KEYUP = 0x0101,
    WM_CHAR = 0x0102,
    WM_COMMAND = 0x0111,
    WM_CUT = 0x0300,
    WM_COPY = 0x0301,
    WM_PASTE = 0x0302,
    WM_CLEAR = 0x0303,
    WM_UNDO = 0x0304,
    WM_USER = 0x0400,
};

// Virtual keys.
enum : UINT {
    VK_BACK = 0x08,
    VK_TAB = 0x09,
    VK_RETURN = 0x0D,
    VK_SHIFT = 0x10,
    VK_CONTROL = 0x11,
    VK_SPACE = 0x20,
    VK_END = 0x23,
    VK_HOME = 0x24,
    VK_LEFT = 0x25,
    VK_UP = 0x26,
    VK_RIGHT = 0x27,
    VK_DOWN = 0x28,
    VK_DELETE = 0x2E,
    VK_OEM_1 = 0xBA,  // stands for every key that is neither letter nor digit
};

// Answers to WM_GETDLGCODE.
enum : UINT {
    DLGC_WANTARROWS = 0x0001,
    DLGC_WANTTAB = 0x0002,
    DLGC_WANTALLKEYS = 0x0004,
    DLGC_WANTCHARS = 0x0080,
};

// Show commands and window styles.
enum : int { SW_HIDE = 0, SW_SHOWNORMAL = 1, SW_SHOWMAXIMIZED = 3, SW_SHOW = 5 };
enum : DWORD {
    WS_TABSTOP = 0x00010000,
    WS_VSCROLL = 0x00200000,
    WS_BORDER = 0x00800000,
    WS_CLIPCHILDREN = 0x02000000,
    WS_VISIBLE = 0x10000000,
    WS_CHILD = 0x40000000,
    WS_POPUP = 0x80000000,
    ES_MULTILINE = 0x0004,
    ES_AUTOVSCROLL = 0x0040,
    ES_READONLY = 0x0800,
    BS_DEFPUSHBUTTON = 0x0001,
};

// Message box types; MessageBeep takes them as the kind of sound.
enum : UINT { MB_OK = 0x0000, MB_ICONHAND = 0x0010 };

struct POINT {
    LONG x = 0;
    LONG y = 0;
};

struct QELKERN_API CRect {
    LONG left = 0;
    LONG top = 0;
    LONG right = 0;
    LONG bottom = 0;

    CRect() = default;
    CRect(LONG l, LONG t, LONG r, LONG b) : left(l), top(t), right(r), bottom(b) {}
    LONG Width() const { return right - left; }
    LONG Height() const { return bottom - top; }
    bool IsRectEmpty() const { return Width() <= 0 || Height() <= 0; }
    friend bool operator==(const CRect& a, const CRect& b) {
        return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
    }
};

struct WINDOWPLACEMENT {
    UINT length = sizeof(WINDOWPLACEMENT);
    UINT flags = 0;
    UINT showCmd = 0;
    POINT ptMinPosition;
    POINT ptMaxPosition;
    CRect rcNormalPosition;
};

// The short warning sound, through the user interface service.
QELKERN_API BOOL MessageBeep(UINT type);

class CDataExchange;
class CRichEditWidget;

// A window. The message map is the set of virtual handlers of a class:
// WindowProc hands each message to its handler, and a handler that wants the
// window's own behaviour calls Default(). What no handler takes goes to
// DefWindowProc.
class QELKERN_API CWnd : public CObject {
public:
    CWnd();
    ~CWnd() override;
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // The window's own handling of the message being handled.
    LRESULT Default();

    // false while the window does not exist (before creation, after destruction).
    virtual bool IsWindow() const { return created; }
    // Makes the window a child of `parentWindow` (which may be null).
    BOOL CreateChildWindow(CWnd* parentWindow, int id, DWORD windowStyle, const CRect& rect,
                           const char* text);

    void SetWindowText(const char* text);
    void GetWindowText(CString& text) const;
    CString GetWindowText() const;
    int GetWindowTextLength() const;

    BOOL ShowWindow(int showCommand);
    bool IsWindowVisible() const;
    CWnd* SetFocus();
    bool HasFocus() const;

    BOOL LockWindowUpdate();
    void UnlockWindowUpdate();

    DWORD GetStyle() const { return style; }
    BOOL ModifyStyle(DWORD remove, DWORD add, UINT flags = 0);
    BOOL SetWindowPlacement(const WINDOWPLACEMENT* placement);
    BOOL GetWindowPlacement(WINDOWPLACEMENT* placement) const;
    void MoveWindow(const CRect& rect, BOOL repaint = TRUE);
    CRect GetWindowRect() const { return windowRect; }

    int GetDlgCtrlID() const { return controlId; }
    CWnd* GetParent() const { return parentWnd; }
    virtual CWnd* GetDlgItem(int id) const;
    BOOL UpdateData(BOOL saveAndValidate = TRUE);
    virtual void DoDataExchange(CDataExchange* pDX);

protected:
    // Hooks of the operations above for windows that have a native side.
    virtual CString GetWindowTextImpl() const;
    virtual void OnShowWindowImpl(int showCommand);
    virtual void OnFocusImpl();
    virtual void OnLockUpdateImpl(bool lock);

    bool created = false;
    CWnd* parentWnd = nullptr;
    int controlId = 0;
    DWORD style = 0;
    CString windowText;
    int showState = SW_HIDE;
    CRect windowRect;
    int updateLocks = 0;

private:
    struct CurrentMessage {
        UINT message = 0;
        WPARAM wParam = 0;
        LPARAM lParam = 0;
    } current;
};

// The window that has the focus in this process, or null.
QELKERN_API CWnd* GetFocusWindow();
// The main window of the application, or null in a host without one.
QELKERN_API CWnd* AfxGetMainWnd();
QELKERN_API void AfxSetMainWnd(CWnd* window);

// Data exchange between a dialog's fields and its items.
class QELKERN_API CDataExchange {
public:
    CDataExchange(CWnd* dialog, BOOL saveAndValidate)
        : m_bSaveAndValidate(saveAndValidate), m_pDlgWnd(dialog) {}
    BOOL m_bSaveAndValidate;
    CWnd* m_pDlgWnd;
};
QELKERN_API void DDX_Text(CDataExchange* pDX, int id, CString& value);

// ---------------------------------------------------------------------------
// Dialog resources are data (dialogs.h); both a console and a GUI host build
// their dialogs from the same records.

// The resource with that number, or null.
QELKERN_API const DialogTemplate* FindDialogTemplate(int resourceId);

// A dialog with windows: its items are made from its resource. Rich edit
// items get a native widget from the widget factory (richedit.h); the other
// items are plain windows with the resource's text.
class QELKERN_API CWindowDialog : public CDialog, public CWnd {
public:
    CWindowDialog(int resourceId, CWnd* parentWindow);
    ~CWindowDialog() override;

    // Makes the items and runs OnInitDialog, without a modal loop.
    // false: no resource of that number.
    BOOL Create();
    // Create, then the modal loop; the result is the id that ended the dialog.
    int DoModal() override;
    void EndDialog(int result);
    int GetResult() const { return result; }

    virtual BOOL OnInitDialog();
    void DoDataExchange(CDataExchange* pDX) override;
    CWnd* GetDlgItem(int id) const override;
    // The native widget of a rich edit item, or null.
    CRichEditWidget* GetItemWidget(int id) const;
    const DialogTemplate* GetDialogTemplate() const { return dialogTemplate; }

protected:
    // Makes the native widget of a rich edit item; null: none.
    virtual std::unique_ptr<CRichEditWidget> CreateItemWidget(const DialogItem& item);
    // A headless host has no user to wait for: the loop ends at once with OK.
    virtual int RunModalLoop();

private:
    struct Item {
        const DialogItem* resource = nullptr;
        std::unique_ptr<CRichEditWidget> widget;  // rich edit items only; outlives `window`
        std::unique_ptr<CWnd> window;             // the item's own window
    };
    void CreateItems();

    const DialogTemplate* dialogTemplate = nullptr;
    std::vector<Item> items;
    int result = 0;
};

// ---------------------------------------------------------------------------
// Layout of resizable dialogs: panes of items that share a rectangle.

class QELKERN_API CLayoutPane {
public:
    enum Orientation { Horizontal, Vertical };
    // How an entry takes room along the pane: Grow shares the free room,
    // Fixed keeps its own size.
    enum ResizeMode { Grow = 0, Fixed = 5 };

    CLayoutPane(Orientation orientation, int border);
    // An item of the dialog; size -1 takes the resource's size.
    CLayoutPane& AddItem(CWnd* item, ResizeMode mode, int width = -1, int height = -1);
    CLayoutPane& AddPane(std::unique_ptr<CLayoutPane> pane, ResizeMode mode);
    // Places the entries in the rectangle.
    void Resize(const CRect& rect);
    // The room the pane needs across its orientation, with borders.
    int MinimumExtent(Orientation across) const;

private:
    struct Entry {
        CWnd* item = nullptr;
        std::unique_ptr<CLayoutPane> pane;
        ResizeMode mode = Grow;
        int width = 0;
        int height = 0;
    };
    int EntryExtent(const Entry& entry, Orientation along) const;

    Orientation orientation;
    int border;
    std::vector<Entry> entries;
};

// A dialog whose items follow its size through a root pane.
class QELKERN_API FlexLayoutDialog : public CWindowDialog {
public:
    FlexLayoutDialog(int resourceId, CWnd* parentWindow, void* toolbar, bool resizable);
    ~FlexLayoutDialog() override;

    CLayoutPane* CreateRoot(CLayoutPane::Orientation orientation, int border);
    CLayoutPane* GetRoot() const { return root.get(); }
    // Lays the root pane out in the dialog's client rectangle.
    void UpdateLayout();
    virtual void Layout(CRect& rect);
    // Resizes the dialog, which lays its items out again.
    void ResizeDialog(const CRect& rect);

protected:
    std::unique_ptr<CLayoutPane> root;
    bool resizable;
};
