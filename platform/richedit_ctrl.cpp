#include <algorithm>
#include <cstring>

#include "qelkern/richedit.h"

namespace {
// The widget's own behaviour for a message that no handler took.
LRESULT WidgetDefaultProc(CRichEditWidget& widget, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_CHAR:
        widget.DefaultChar(static_cast<UINT>(wParam));
        return 0;
    case WM_KEYDOWN:
        widget.DefaultKeyDown(static_cast<UINT>(wParam));
        return 0;
    case WM_SETTEXT:
        widget.SetText(reinterpret_cast<const char*>(lParam));
        return TRUE;
    case WM_GETTEXTLENGTH:
        return widget.GetTextLength();
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS | DLGC_WANTCHARS;
    case WM_CUT:
        widget.Cut();
        return 0;
    case WM_COPY:
        widget.Copy();
        return 0;
    case WM_PASTE:
        widget.Paste();
        return 0;
    case WM_CLEAR:
        widget.Clear();
        return 0;
    case WM_UNDO:
        return widget.Undo() ? TRUE : FALSE;
    case EM_REPLACESEL:
        widget.ReplaceSel(reinterpret_cast<const char*>(lParam), wParam != 0);
        return 0;
    default:
        return 0;
    }
}

std::unique_ptr<CRichEditWidget> MakeMemoryWidget(CWnd*, int) {
    return std::make_unique<CMemoryRichEdit>();
}

RichEditWidgetFactory widgetFactory = MakeMemoryWidget;
CClipboard* installedClipboard = nullptr;

}  // namespace

// --- native widget ---------------------------------------------------------

CRichEditWidget::~CRichEditWidget() {
    if (owner && owner->GetWidget() == this) owner->Detach();
}

LRESULT CRichEditWidget::SendToOwner(UINT message, WPARAM wParam, LPARAM lParam) {
    if (owner) return owner->SendMessage(message, wParam, lParam);
    return WidgetDefaultProc(*this, message, wParam, lParam);
}

LRESULT CRichEditWidget::NotifyOwner(UINT code, NMHDR* info) {
    if (!owner) return 0;
    if (info) info->code = code;
    return owner->ReflectNotification(code, info);
}

bool CRichEditWidget::OwnerAllowsProtectedChange(UINT message, WPARAM wParam, int start, int end) {
    ENPROTECTED info;
    info.msg = message;
    info.wParam = wParam;
    info.chrg.cpMin = start;
    info.chrg.cpMax = end;
    return NotifyOwner(EN_PROTECTED, &info.nmhdr) == 0;
}

CString WithCrLf(const CString& text) {
    std::string out;
    out.reserve(static_cast<size_t>(text.GetLength()) + 64);
    for (char c : text.str()) {
        out += c;
        if (c == '\r') out += '\n';
    }
    return CString(std::move(out));
}

RichEditWidgetFactory SetRichEditWidgetFactory(RichEditWidgetFactory factory) {
    RichEditWidgetFactory previous = widgetFactory;
    widgetFactory = factory ? factory : MakeMemoryWidget;
    return previous;
}

std::unique_ptr<CRichEditWidget> CreateRichEditWidget(CWnd* parent, int id) {
    return widgetFactory(parent, id);
}

// --- clipboard ---------------------------------------------------------------

CClipboard::~CClipboard() = default;
CString CClipboard::GetText() const { return text; }
void CClipboard::SetText(const CString& newText) { text = newText; }

CClipboard& GetClipboard() {
    static CClipboard builtIn;
    return installedClipboard ? *installedClipboard : builtIn;
}

void SetClipboard(CClipboard* clipboard) { installedClipboard = clipboard; }

// --- control -----------------------------------------------------------------

CRichEditCtrl::CRichEditCtrl() = default;

CRichEditCtrl::~CRichEditCtrl() { ReleaseWidget(); }

void CRichEditCtrl::ReleaseWidget() {
    const bool owned = ownsWidget;
    CRichEditWidget* old = Detach();
    if (owned) delete old;
}

BOOL CRichEditCtrl::Create() { return Create(WS_CHILD | WS_VISIBLE | ES_MULTILINE, CRect(), nullptr, 0); }

BOOL CRichEditCtrl::Create(DWORD windowStyle, const CRect& rect, CWnd* parentWindow, UINT id) {
    std::unique_ptr<CRichEditWidget> made = CreateRichEditWidget(parentWindow, static_cast<int>(id));
    if (!made) return FALSE;
    made->SetReadOnly((windowStyle & ES_READONLY) != 0);
    Attach(made.release(), true);
    CreateChildWindow(parentWindow, static_cast<int>(id), windowStyle, rect, "");
    return TRUE;
}

void CRichEditCtrl::Attach(CRichEditWidget* newWidget, bool owned) {
    if (widget != newWidget)
        ReleaseWidget();
    else
        Detach();
    widget = newWidget;
    ownsWidget = owned && newWidget;
    if (widget) {
        widget->SetOwner(this);
        created = true;
    }
}

CRichEditWidget* CRichEditCtrl::Detach() {
    CRichEditWidget* old = widget;
    if (old && old->GetOwner() == this) old->SetOwner(nullptr);
    widget = nullptr;
    ownsWidget = false;
    created = false;
    return old;
}

BOOL CRichEditCtrl::SubclassDlgItem(UINT id, CWnd* parentWindow) {
    auto* dialog = dynamic_cast<CWindowDialog*>(parentWindow);
    if (!dialog) return FALSE;
    CRichEditWidget* item = dialog->GetItemWidget(static_cast<int>(id));
    if (!item) return FALSE;
    CWnd* itemWindow = dialog->GetDlgItem(static_cast<int>(id));
    const CRect rect = itemWindow ? itemWindow->GetWindowRect() : CRect();
    const DWORD itemStyle = itemWindow ? itemWindow->GetStyle() : WS_CHILD | WS_VISIBLE;
    Attach(item, false);
    CreateChildWindow(parentWindow, static_cast<int>(id), itemStyle, rect, "");
    return TRUE;
}

// --- selection ---------------------------------------------------------------

void CRichEditCtrl::GetSel(long& start, long& end) const {
    int s = 0, e = 0;
    if (widget) widget->GetSel(s, e);
    start = s;
    end = e;
}

void CRichEditCtrl::GetSel(CHARRANGE& range) const {
    long s, e;
    GetSel(s, e);
    range.cpMin = static_cast<LONG>(s);
    range.cpMax = static_cast<LONG>(e);
}

void CRichEditCtrl::SetSel(long start, long end) {
    if (!widget) return;
    const long length = widget->GetTextLength();
    if (start == -1) {
        long s, e;
        GetSel(s, e);
        widget->SetSel(static_cast<int>(e), static_cast<int>(e));
        return;
    }
    if (end < 0 || end > length) end = length;
    start = std::clamp(start, 0L, length);
    if (start > end) std::swap(start, end);
    widget->SetSel(static_cast<int>(start), static_cast<int>(end));
}

void CRichEditCtrl::SetSel(CHARRANGE& range) { SetSel(range.cpMin, range.cpMax); }

long CRichEditCtrl::GetSelText(char* buffer) const {
    const CString text = GetSelText();
    if (!buffer) return 0;
    std::memcpy(buffer, text.str().data(), static_cast<size_t>(text.GetLength()));
    buffer[text.GetLength()] = 0;
    return text.GetLength();
}

CString CRichEditCtrl::GetSelText() const {
    if (!widget) return CString();
    int s = 0, e = 0;
    widget->GetSel(s, e);
    return widget->GetTextRange(s, e);
}

void CRichEditCtrl::ReplaceSel(const char* text, BOOL canUndo) {
    SendMessage(EM_REPLACESEL, canUndo ? TRUE : FALSE, reinterpret_cast<LPARAM>(text ? text : ""));
}

void CRichEditCtrl::HideSelection(BOOL hide, BOOL permanent) {
    if (widget) widget->HideSelection(hide != 0, permanent != 0);
}

// --- formats -----------------------------------------------------------------

DWORD CRichEditCtrl::GetSelectionCharFormat(CHARFORMAT& cf) const {
    if (!widget) return cf.dwMask = 0;
    return widget->GetSelectionCharFormat(cf);
}

BOOL CRichEditCtrl::SetSelectionCharFormat(CHARFORMAT& cf) {
    return widget && widget->SetSelectionCharFormat(cf) ? TRUE : FALSE;
}

DWORD CRichEditCtrl::GetDefaultCharFormat(CHARFORMAT& cf) const {
    if (!widget) return cf.dwMask = 0;
    return widget->GetDefaultCharFormat(cf);
}

BOOL CRichEditCtrl::SetDefaultCharFormat(CHARFORMAT& cf) {
    return widget && widget->SetDefaultCharFormat(cf) ? TRUE : FALSE;
}

BOOL CRichEditCtrl::SetParaFormat(PARAFORMAT& pf) {
    return widget && widget->SetParaFormat(pf) ? TRUE : FALSE;
}

DWORD CRichEditCtrl::SetEventMask(DWORD mask) {
    const DWORD previous = eventMask;
    eventMask = mask;
    return previous;
}

// --- lines -------------------------------------------------------------------

long CRichEditCtrl::LineFromChar(long index) const {
    if (!widget) return 0;
    if (index < 0) {
        long s, e;
        GetSel(s, e);
        index = s;
    }
    return widget->LineFromChar(static_cast<int>(std::min<long>(index, widget->GetTextLength())));
}

int CRichEditCtrl::LineIndex(int line) const {
    if (!widget) return -1;
    if (line == -1) line = static_cast<int>(LineFromChar(-1));
    if (line < 0) return -1;
    return widget->LineIndex(line);
}

int CRichEditCtrl::LineLength(int index) const {
    if (!widget) return 0;
    auto lengthOfLine = [this](int line) {
        const int start = widget->LineIndex(line);
        const int next = line + 1 < widget->GetLineCount() ? widget->LineIndex(line + 1) - 1
                                                           : widget->GetTextLength();
        return std::max(0, next - start);
    };
    if (index >= 0) return lengthOfLine(static_cast<int>(LineFromChar(index)));
    if (index != -1) return 0;
    long s, e;
    GetSel(s, e);
    const int firstLine = static_cast<int>(LineFromChar(s));
    const int lastLine = static_cast<int>(LineFromChar(e));
    const int lineStart = widget->LineIndex(firstLine);
    const int lineEnd = widget->LineIndex(lastLine) + lengthOfLine(lastLine);
    return std::max(0, (lineEnd - lineStart) - static_cast<int>(e - s));
}

int CRichEditCtrl::GetLineCount() const { return widget ? widget->GetLineCount() : 0; }
long CRichEditCtrl::GetTextLength() const { return widget ? widget->GetTextLength() : 0; }

CString CRichEditCtrl::GetTextRange(int start, int end) const {
    return widget ? widget->GetTextRange(start, end) : CString();
}

// --- editing -----------------------------------------------------------------

void CRichEditCtrl::Clear() { SendMessage(WM_CLEAR); }
void CRichEditCtrl::Copy() { SendMessage(WM_COPY); }
void CRichEditCtrl::Cut() { SendMessage(WM_CUT); }
void CRichEditCtrl::Paste() { SendMessage(WM_PASTE); }
BOOL CRichEditCtrl::CanUndo() const { return widget && widget->CanUndo() ? TRUE : FALSE; }
BOOL CRichEditCtrl::Undo() { return SendMessage(WM_UNDO) ? TRUE : FALSE; }

void CRichEditCtrl::EmptyUndoBuffer() {
    if (widget) widget->EmptyUndoBuffer();
}

BOOL CRichEditCtrl::SetReadOnly(BOOL readOnly) {
    if (!widget) return FALSE;
    widget->SetReadOnly(readOnly != 0);
    style = readOnly ? (style | ES_READONLY) : (style & ~static_cast<DWORD>(ES_READONLY));
    return TRUE;
}

short CRichEditCtrl::GetKeyState(int key) const { return widget ? widget->GetKeyState(key) : 0; }

// --- streams -----------------------------------------------------------------

long CRichEditCtrl::StreamIn(int format, EDITSTREAM& stream) {
    if (!widget || !(format & SF_TEXT) || !stream.pfnCallback) return 0;
    std::string text;
    BYTE chunk[4096];
    for (;;) {
        LONG done = 0;
        const DWORD error = stream.pfnCallback(stream.dwCookie, chunk, sizeof chunk, &done);
        if (error) {
            stream.dwError = error;
            break;
        }
        done = std::clamp<LONG>(done, 0, sizeof chunk);
        if (done == 0) break;
        text.append(reinterpret_cast<const char*>(chunk), static_cast<size_t>(done));
    }
    text.erase(std::remove(text.begin(), text.end(), '\0'), text.end());
    SetWindowText(text.c_str());
    return widget ? widget->GetTextLength() : 0;
}

long CRichEditCtrl::StreamOut(int format, EDITSTREAM& stream) {
    if (!widget || !(format & SF_TEXT) || !stream.pfnCallback) return 0;
    std::string text = widget->GetTextRange(0, widget->GetTextLength()).str();
    std::replace(text.begin(), text.end(), '\r', '\n');
    long written = 0;
    for (size_t at = 0; at < text.size();) {
        const LONG count = static_cast<LONG>(std::min<size_t>(4096, text.size() - at));
        LONG done = 0;
        const DWORD error = stream.pfnCallback(
            stream.dwCookie, reinterpret_cast<BYTE*>(text.data() + at), count, &done);
        if (error) {
            stream.dwError = error;
            break;
        }
        if (done <= 0) break;
        done = std::min(done, count);
        at += static_cast<size_t>(done);
        written += done;
    }
    return written;
}

// --- message map -------------------------------------------------------------

LRESULT CRichEditCtrl::ReflectNotification(UINT code, NMHDR* info) {
    LRESULT result = 0;
    switch (code) {
    case EN_CHANGE:
        if (eventMask & ENM_CHANGE) OnChange();
        break;
    case EN_PROTECTED:
        if (eventMask & ENM_PROTECTED) OnProtected(info, &result);
        break;
    case EN_SELCHANGE:
        if (eventMask & ENM_SELCHANGE) OnSelChange(info, &result);
        break;
    default:
        break;
    }
    return result;
}

LRESULT CRichEditCtrl::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    const UINT repeat = static_cast<UINT>(lParam & 0xFFFF);
    const UINT flags = static_cast<UINT>((lParam >> 16) & 0xFFFF);
    switch (message) {
    case WM_CHAR:
        OnChar(static_cast<UINT>(wParam), repeat, flags);
        return 0;
    case WM_KEYDOWN:
        OnKeyDown(static_cast<UINT>(wParam), repeat, flags);
        return 0;
    case WM_KEYUP:
        OnKeyUp(static_cast<UINT>(wParam), repeat, flags);
        return 0;
    case WM_SETFOCUS:
        OnSetFocus(reinterpret_cast<CWnd*>(wParam));
        return 0;
    case WM_SETTEXT:
        return OnSetText(wParam, lParam);
    case WM_GETDLGCODE:
        return OnGetDlgCode();
    default:
        return DefWindowProc(message, wParam, lParam);
    }
}

LRESULT CRichEditCtrl::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (!widget) return CWnd::DefWindowProc(message, wParam, lParam);
    return WidgetDefaultProc(*widget, message, wParam, lParam);
}

void CRichEditCtrl::OnChange() {}
void CRichEditCtrl::OnProtected(NMHDR*, LRESULT* pResult) { *pResult = 0; }
void CRichEditCtrl::OnSelChange(NMHDR*, LRESULT* pResult) { *pResult = 0; }
UINT CRichEditCtrl::OnGetDlgCode() { return static_cast<UINT>(Default()); }
void CRichEditCtrl::OnChar(UINT, UINT, UINT) { Default(); }
void CRichEditCtrl::OnKeyDown(UINT, UINT, UINT) { Default(); }
void CRichEditCtrl::OnKeyUp(UINT, UINT, UINT) { Default(); }
void CRichEditCtrl::OnSetFocus(CWnd*) { Default(); }
LRESULT CRichEditCtrl::OnSetText(WPARAM, LPARAM) { return Default(); }

CString CRichEditCtrl::GetWindowTextImpl() const {
    return widget ? WithCrLf(widget->GetTextRange(0, widget->GetTextLength())) : CString();
}

void CRichEditCtrl::OnShowWindowImpl(int showCommand) {
    if (widget) widget->Show(showCommand != SW_HIDE);
}

void CRichEditCtrl::OnFocusImpl() {
    if (widget) widget->Focus();
}

void CRichEditCtrl::OnLockUpdateImpl(bool lock) {
    if (widget) widget->LockUpdate(lock);
}
