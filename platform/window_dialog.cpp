#include "qelkern/richedit.h"
#include "qelkern/window.h"

namespace {
DWORD WindowStyleOf(const DialogItem& item) {
    DWORD style = WS_CHILD | WS_VISIBLE;
    if (item.style & DialogItem::Border) style |= WS_BORDER;
    if (item.style & DialogItem::TabStop) style |= WS_TABSTOP;
    if (item.style & DialogItem::VScroll) style |= WS_VSCROLL;
    if (item.style & DialogItem::MultiLine) style |= ES_MULTILINE;
    if (item.style & DialogItem::AutoVScroll) style |= ES_AUTOVSCROLL;
    if (item.style & DialogItem::ReadOnly) style |= ES_READONLY;
    if (item.kind == DialogItem::DefaultPushButton) style |= BS_DEFPUSHBUTTON;
    return style;
}

CRect RectOf(const DialogItem& item) {
    return CRect(item.x, item.y, item.x + item.width, item.y + item.height);
}
}  // namespace

CWindowDialog::CWindowDialog(int resourceId, CWnd* parentWindow) : CDialog(resourceId, parentWindow) {
    parentWnd = parentWindow;
}

// A control that subclassed one of the items may outlive the dialog; it must
// not keep a widget that dies with the dialog.
CWindowDialog::~CWindowDialog() {
    for (Item& item : items) {
        if (!item.widget) continue;
        CRichEditCtrl* owner = item.widget->GetOwner();
        if (owner && owner != item.window.get()) owner->Detach();
    }
}

BOOL CWindowDialog::Create() {
    dialogTemplate = FindDialogTemplate(templateId);
    if (!dialogTemplate) return FALSE;
    CreateChildWindow(parentWnd, templateId, WS_POPUP,
                      CRect(0, 0, dialogTemplate->width, dialogTemplate->height),
                      dialogTemplate->title);
    CreateItems();
    OnInitDialog();
    return TRUE;
}

void CWindowDialog::CreateItems() {
    items.clear();
    for (int i = 0; i < dialogTemplate->itemCount; ++i) {
        const DialogItem& resource = dialogTemplate->items[i];
        Item item;
        item.resource = &resource;
        const char* text = resource.text ? resource.text : "";
        if (resource.kind == DialogItem::RichEdit) {
            item.widget = CreateItemWidget(resource);
            auto control = std::make_unique<CRichEditCtrl>();
            control->CreateChildWindow(this, resource.id, WindowStyleOf(resource), RectOf(resource), text);
            if (item.widget) {
                item.widget->SetReadOnly((resource.style & DialogItem::ReadOnly) != 0);
                control->Attach(item.widget.get(), false);
            }
            item.window = std::move(control);
        } else {
            item.window = std::make_unique<CWnd>();
            item.window->CreateChildWindow(this, resource.id, WindowStyleOf(resource), RectOf(resource), text);
        }
        items.push_back(std::move(item));
    }
}

std::unique_ptr<CRichEditWidget> CWindowDialog::CreateItemWidget(const DialogItem& item) {
    return CreateRichEditWidget(this, item.id);
}

int CWindowDialog::DoModal() {
    if (!Create()) return -1;
    return RunModalLoop();
}

int CWindowDialog::RunModalLoop() {
    UpdateData(TRUE);
    EndDialog(IDOK);
    return result;
}

void CWindowDialog::EndDialog(int dialogResult) {
    result = dialogResult;
    ShowWindow(SW_HIDE);
}

BOOL CWindowDialog::OnInitDialog() {
    UpdateData(FALSE);
    return TRUE;
}

void CWindowDialog::DoDataExchange(CDataExchange*) {}

CWnd* CWindowDialog::GetDlgItem(int id) const {
    for (const Item& item : items) {
        if (item.resource->id != id) continue;
        if (item.widget && item.widget->GetOwner()) return item.widget->GetOwner();
        return item.window.get();
    }
    return nullptr;
}

CRichEditWidget* CWindowDialog::GetItemWidget(int id) const {
    for (const Item& item : items)
        if (item.resource->id == id) return item.widget.get();
    return nullptr;
}
