#include "qelkern/window.h"

#include "qelkern/userinterface.h"

namespace {
CWnd* focusWindow = nullptr;
CWnd* mainWindow = nullptr;
}  // namespace

CWnd* GetFocusWindow() { return focusWindow; }
CWnd* AfxGetMainWnd() { return mainWindow; }
void AfxSetMainWnd(CWnd* window) { mainWindow = window; }

BOOL MessageBeep(UINT) {
    GetUserInterface().Beep();
    return TRUE;
}

CWnd::CWnd() = default;

CWnd::~CWnd() {
    if (focusWindow == this) focusWindow = nullptr;
    if (mainWindow == this) mainWindow = nullptr;
}

BOOL CWnd::CreateChildWindow(CWnd* parentWindow, int id, DWORD windowStyle, const CRect& rect,
                             const char* text) {
    parentWnd = parentWindow;
    controlId = id;
    style = windowStyle;
    windowRect = rect;
    windowText = text ? text : "";
    created = true;
    if (windowStyle & WS_VISIBLE) ShowWindow(SW_SHOW);
    return TRUE;
}

// Handlers may send messages of their own, so the message being handled is
// saved around each dispatch for Default().
LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    const CurrentMessage outer = current;
    current = {message, wParam, lParam};
    const LRESULT result = WindowProc(message, wParam, lParam);
    current = outer;
    return result;
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    return DefWindowProc(message, wParam, lParam);
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM, LPARAM lParam) {
    switch (message) {
    case WM_SETTEXT: {
        const char* text = reinterpret_cast<const char*>(lParam);
        windowText = text ? text : "";
        return TRUE;
    }
    case WM_GETTEXTLENGTH:
        return GetWindowTextImpl().GetLength();
    default:
        return 0;
    }
}

LRESULT CWnd::Default() { return DefWindowProc(current.message, current.wParam, current.lParam); }

void CWnd::SetWindowText(const char* text) {
    SendMessage(WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text ? text : ""));
}

void CWnd::GetWindowText(CString& text) const { text = GetWindowTextImpl(); }
CString CWnd::GetWindowText() const { return GetWindowTextImpl(); }
int CWnd::GetWindowTextLength() const { return GetWindowTextImpl().GetLength(); }
CString CWnd::GetWindowTextImpl() const { return windowText; }

BOOL CWnd::ShowWindow(int showCommand) {
    const bool wasVisible = IsWindowVisible();
    showState = showCommand;
    OnShowWindowImpl(showCommand);
    return wasVisible;
}

bool CWnd::IsWindowVisible() const { return showState != SW_HIDE; }
void CWnd::OnShowWindowImpl(int) {}

CWnd* CWnd::SetFocus() {
    CWnd* previous = focusWindow;
    focusWindow = this;
    OnFocusImpl();
    SendMessage(WM_SETFOCUS, reinterpret_cast<WPARAM>(previous), 0);
    return previous;
}

bool CWnd::HasFocus() const { return focusWindow == this; }
void CWnd::OnFocusImpl() {}

BOOL CWnd::LockWindowUpdate() {
    ++updateLocks;
    OnLockUpdateImpl(true);
    return TRUE;
}

void CWnd::UnlockWindowUpdate() {
    if (updateLocks == 0) return;
    --updateLocks;
    OnLockUpdateImpl(false);
}

void CWnd::OnLockUpdateImpl(bool) {}

BOOL CWnd::ModifyStyle(DWORD remove, DWORD add, UINT) {
    style = (style & ~remove) | add;
    return TRUE;
}

BOOL CWnd::SetWindowPlacement(const WINDOWPLACEMENT* placement) {
    if (!placement) return FALSE;
    ShowWindow(static_cast<int>(placement->showCmd));
    return TRUE;
}

BOOL CWnd::GetWindowPlacement(WINDOWPLACEMENT* placement) const {
    if (!placement) return FALSE;
    *placement = WINDOWPLACEMENT();
    placement->showCmd = static_cast<UINT>(showState);
    placement->rcNormalPosition = windowRect;
    return TRUE;
}

void CWnd::MoveWindow(const CRect& rect, BOOL) { windowRect = rect; }

CWnd* CWnd::GetDlgItem(int) const { return nullptr; }

BOOL CWnd::UpdateData(BOOL saveAndValidate) {
    CDataExchange exchange(this, saveAndValidate);
    DoDataExchange(&exchange);
    return TRUE;
}

void CWnd::DoDataExchange(CDataExchange*) {}

void DDX_Text(CDataExchange* pDX, int id, CString& value) {
    if (!pDX || !pDX->m_pDlgWnd) return;
    CWnd* item = pDX->m_pDlgWnd->GetDlgItem(id);
    if (!item) return;
    if (pDX->m_bSaveAndValidate)
        value = item->GetWindowText();
    else
        item->SetWindowText(value);
}
