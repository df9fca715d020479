#include <memory>

#include "qelkern/editor.h"

namespace {
constexpr int layoutBorder = 5;
}  // namespace

CTextDialog::CTextDialog(CString dialogTitle, CWnd* parentWindow)
    : FlexLayoutDialog(IDD_TEXTDIALOG, parentWindow, nullptr, true), title(dialogTitle) {}

CTextDialog::~CTextDialog() = default;

void CTextDialog::DoDataExchange(CDataExchange* pDX) {
    FlexLayoutDialog::DoDataExchange(pDX);
    DDX_Text(pDX, IDC_TEXTDIALOG_EDIT, text);
}

BOOL CTextDialog::OnInitDialog() {
    FlexLayoutDialog::OnInitDialog();

    WINDOWPLACEMENT placement;
    placement.showCmd = SW_SHOWMAXIMIZED;
    SetWindowPlacement(&placement);
    SetWindowText(title);
    InitTWScriptEdit(&edit, this, IDC_TEXTDIALOG_EDIT, "");

    // A line beyond the text falls back to the last one, at its start.
    int index = edit.LineIndex(line);
    while (index < 0 && line > 0) {
        column = 0;
        --line;
        index = edit.LineIndex(line);
    }
    if (index > 0) {
        const int caret = column > 0 ? index + column : index;
        edit.SetSel(caret, caret);
    }

    ModifyStyle(0, WS_CLIPCHILDREN);
    CLayoutPane* rootPane = CreateRoot(CLayoutPane::Vertical, layoutBorder);
    rootPane->AddItem(GetDlgItem(IDC_TEXTDIALOG_EDIT), CLayoutPane::Grow);
    auto buttonRow = std::make_unique<CLayoutPane>(CLayoutPane::Horizontal, layoutBorder);
    buttonRow->AddItem(GetDlgItem(IDOK), CLayoutPane::Fixed);
    rootPane->AddPane(std::move(buttonRow), CLayoutPane::Fixed);
    UpdateLayout();
    return TRUE;
}

void CTextDialog::Layout(CRect& rect) {
    if (rect.Height() != 0 && rect.Width() != 0 && GetRoot()) GetRoot()->Resize(rect);
}
