#include "qelkern/editor.h"
#include "qelkern/userinterface.h"

CSpecialRichEditView* sharedRichEditView = nullptr;

namespace {
constexpr DWORD hiddenViewStyle = WS_CHILD | WS_VISIBLE;  // 0x50000000
constexpr UINT hiddenViewId = 1000;
}  // namespace

// One hidden view serves all editors of the process; it lies off the screen.
CSpecialRichEditView* CTWScriptEdit::CreateRichEditView() {
    if (!sharedRichEditView) {
        auto* view = new CSpecialRichEditView;
        if (!view->Create(nullptr, "Rich Edit View", hiddenViewStyle, CRect(-1000, -1000, -10, -10),
                          AfxGetMainWnd(), hiddenViewId)) {
            GetUserInterface().ShowMessage("Aktion fehlgeschlagen", "", CUserInterface::IconNone);
            delete view;
            return nullptr;
        }
        sharedRichEditView = view;
    }
    CRichEditCtrl& viewControl = sharedRichEditView->GetRichEditCtrl();
    viewControl.SetSel(0, -1);
    viewControl.Clear();
    sharedRichEditView->ShowWindow(SW_SHOW);
    CHARFORMAT cf;
    GetDefaultCharFormat(cf);
    viewControl.SetDefaultCharFormat(cf);
    return sharedRichEditView;
}

namespace {
// The whole text goes to the view through the clipboard, and stays there.
// An empty text copies nothing, so nothing is pasted either.
void CopyAllInto(CTWScriptEdit& edit, CRichEditCtrl& target) {
    if (edit.GetTextLength() == 0) return;
    long selStart = 0, selEnd = 0;
    edit.GetSel(selStart, selEnd);
    edit.SetSel(0, -1);
    edit.Copy();
    edit.SetSel(selStart, selEnd);
    target.Paste();
}
}  // namespace

void CTWScriptEdit::Drucken() {
    CSpecialRichEditView* view = CreateRichEditView();
    if (!view) return;
    CopyAllInto(*this, view->GetRichEditCtrl());
    view->DruckeText();
    view->ShowWindow(SW_HIDE);
}

void CTWScriptEdit::Speichern() {
    CSpecialRichEditView* view = CreateRichEditView();
    if (!view) return;
    CopyAllInto(*this, view->GetRichEditCtrl());
    view->SpeichereText();
    view->ShowWindow(SW_HIDE);
}

// A cancelled dialog or an unreadable file leaves the view empty: then
// nothing is pasted, so an old clipboard text cannot slip in.
void CTWScriptEdit::Laden() {
    CSpecialRichEditView* view = CreateRichEditView();
    if (!view) return;
    view->LadeText();
    view->ShowWindow(SW_HIDE);
    CRichEditCtrl& viewControl = view->GetRichEditCtrl();
    if (viewControl.GetTextLength() == 0) return;
    viewControl.SetSel(0, -1);
    viewControl.Copy();
    Paste();
    FormatAll();
}
