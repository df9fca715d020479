#include "qelkern/richedit.h"
#include "qelkern/userinterface.h"

CRichEditView::CRichEditView() = default;
CRichEditView::~CRichEditView() = default;

BOOL CRichEditView::Create(const char*, const char* windowName, DWORD windowStyle, const CRect& rect,
                           CWnd* parentWindow, UINT id) {
    if (!control.Create((windowStyle & ~static_cast<DWORD>(WS_VISIBLE)) | ES_MULTILINE, rect, this, id))
        return FALSE;
    CreateChildWindow(parentWindow, static_cast<int>(id), windowStyle, rect, windowName);
    return TRUE;
}

void CRichEditView::OnShowWindowImpl(int showCommand) { control.ShowWindow(showCommand); }

CString CRichEditView::GetWindowTextImpl() const { return windowText; }

void CRichEditView::WrapChanged() { ++wrapChanges; }

BOOL CRichEditView::OnPreparePrinting(CPrintInfo* pInfo) { return DoPreparePrinting(pInfo); }

// The print dialog is the user interface's: it comes with PrintText.
BOOL CRichEditView::DoPreparePrinting(CPrintInfo* pInfo) { return pInfo ? TRUE : FALSE; }

void CRichEditView::OnFilePrint() {
    CPrintInfo info;
    if (!OnPreparePrinting(&info)) return;
    GetUserInterface().PrintText(GetWindowText(), control.GetWindowText(), pageMargins.left,
                                 pageMargins.top, pageMargins.right, pageMargins.bottom);
}
