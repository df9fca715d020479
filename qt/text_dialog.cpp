#include <QShowEvent>
#include <QPlainTextEdit>
#include <QTimer>

#include "qelkern-qt/qtappearance.h"
#include "qelkern-qt/qtdialogs.h"
#include "qelkern-qt/qtuserinterface.h"
#include "qelkern-qt/qtrichedit.h"

namespace {
// The window of a resizable dialog: the dialog's own layout places the items,
// in dialog units, whenever the window changes its size.
class CFlexLayoutWindow : public CQtResourceDialog {
public:
    CFlexLayoutWindow(FlexLayoutDialog& layoutDialog, const DialogTemplate& dialogResource, QWidget* parent)
        : CQtResourceDialog(dialogResource, parent), dialog(layoutDialog) {
        setSizeGripEnabled(true);
    }

protected:
    void PlaceItems() override {
        const QSize units = ToDialogUnits(size());
        dialog.ResizeDialog(CRect(0, 0, units.width(), units.height()));
        for (int i = 0; i < Resource().itemCount; ++i) {
            const int id = Resource().items[i].id;
            const CWnd* item = dialog.GetDlgItem(id);
            QWidget* widget = Item(id);
            if (!item || !widget) continue;
            const CRect place = item->GetWindowRect();
            widget->setGeometry(ToPixels(place.left, place.top, place.Width(), place.Height()));
        }
    }

    // The caret was placed before the window had a size; now it can be shown.
    void showEvent(QShowEvent* event) override {
        CQtResourceDialog::showEvent(event);
        auto* editor = qobject_cast<QPlainTextEdit*>(Item(IDC_TEXTDIALOG_EDIT));
        if (!editor) return;
        editor->setFocus();
        QTimer::singleShot(0, editor, [editor] { editor->ensureCursorVisible(); });
    }

private:
    FlexLayoutDialog& dialog;
};
}  // namespace

CQtTextDialog::CQtTextDialog(CString dialogTitle, QWidget* parentWidget)
    : CTextDialog(dialogTitle, nullptr), parentWindow(parentWidget) {}

// The window gives the editor's widget back before the dialog's items go.
CQtTextDialog::~CQtTextDialog() { window.reset(); }

bool CQtTextDialog::CreateWindow() { return Create() && BuildWindow(); }

bool CQtTextDialog::BuildWindow() {
    auto* widget = dynamic_cast<CQtRichEditWidget*>(edit.GetWidget());
    const DialogTemplate* resource = GetDialogTemplate();
    if (!widget || !widget->GetTextEdit() || !resource) return false;
    window = std::make_unique<CFlexLayoutWindow>(*this, *resource, parentWindow);
    window->setWindowTitle(Latin1Text(GetWindowText()));
    window->LendItem(IDC_TEXTDIALOG_EDIT, widget->GetTextEdit());
    // On a dark desktop the error line and the words stay readable.
    if (IsDarkPalette(window->palette())) widget->SetDisplayColours(DarkDisplayColours(edit, window->palette()));
    WINDOWPLACEMENT placement;
    GetWindowPlacement(&placement);
    if (placement.showCmd == SW_SHOWMAXIMIZED) window->setWindowState(window->windowState() | Qt::WindowMaximized);
    return true;
}

// Without a Qt widget for its editor the dialog runs as the headless one does.
int CQtTextDialog::RunModalLoop() {
    if (!window && !BuildWindow()) return CTextDialog::RunModalLoop();
    const int code = window->exec();
    const int ending = code == QDialog::Accepted ? IDOK : code == QDialog::Rejected ? IDCANCEL : code;
    if (ending == IDOK) UpdateData(TRUE);
    EndDialog(ending);
    window.reset();
    return ending;
}
