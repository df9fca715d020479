#include <algorithm>

#include "qelkern/window.h"

CLayoutPane::CLayoutPane(Orientation paneOrientation, int paneBorder)
    : orientation(paneOrientation), border(std::max(0, paneBorder)) {}

CLayoutPane& CLayoutPane::AddItem(CWnd* item, ResizeMode mode, int width, int height) {
    Entry entry;
    entry.item = item;
    entry.mode = mode;
    const CRect own = item ? item->GetWindowRect() : CRect();
    entry.width = width >= 0 ? width : own.Width();
    entry.height = height >= 0 ? height : own.Height();
    entries.push_back(std::move(entry));
    return *this;
}

CLayoutPane& CLayoutPane::AddPane(std::unique_ptr<CLayoutPane> pane, ResizeMode mode) {
    Entry entry;
    entry.pane = std::move(pane);
    entry.mode = mode;
    entries.push_back(std::move(entry));
    return *this;
}

int CLayoutPane::EntryExtent(const Entry& entry, Orientation along) const {
    if (entry.pane) return entry.pane->MinimumExtent(along);
    return along == Horizontal ? entry.width : entry.height;
}

int CLayoutPane::MinimumExtent(Orientation along) const {
    int extent = 0;
    for (const Entry& entry : entries) {
        const int own = EntryExtent(entry, along);
        extent = along == orientation ? extent + own : std::max(extent, own);
    }
    return extent + 2 * border;
}

// Fixed entries keep their size; growing ones share what is left. Without a
// growing entry the free room stays in front, so the entries sit at the end
// (a row of buttons at the right).
void CLayoutPane::Resize(const CRect& rect) {
    const CRect inner(rect.left + border, rect.top + border, rect.right - border, rect.bottom - border);
    const bool horizontal = orientation == Horizontal;
    const int length = std::max(0, horizontal ? inner.Width() : inner.Height());
    const int across = std::max(0, horizontal ? inner.Height() : inner.Width());

    int fixedLength = 0;
    int growing = 0;
    for (const Entry& entry : entries) {
        if (entry.mode == Grow)
            ++growing;
        else
            fixedLength += EntryExtent(entry, orientation);
    }
    const int freeRoom = std::max(0, length - fixedLength);
    int position = (horizontal ? inner.left : inner.top) + (growing ? 0 : freeRoom);
    int growingLeft = growing;
    int roomLeft = freeRoom;

    for (Entry& entry : entries) {
        int own;
        if (entry.mode == Grow) {
            own = roomLeft / growingLeft;
            roomLeft -= own;
            --growingLeft;
        } else {
            own = EntryExtent(entry, orientation);
        }
        const Orientation other = horizontal ? Vertical : Horizontal;
        const int thickness = entry.mode == Grow || entry.pane ? across
                                                              : std::min(across, EntryExtent(entry, other));
        const CRect place = horizontal ? CRect(position, inner.top, position + own, inner.top + thickness)
                                       : CRect(inner.left, position, inner.left + thickness, position + own);
        if (entry.pane) entry.pane->Resize(place);
        if (entry.item) entry.item->MoveWindow(place);
        position += own;
    }
}

FlexLayoutDialog::FlexLayoutDialog(int resourceId, CWnd* parentWindow, void*, bool isResizable)
    : CWindowDialog(resourceId, parentWindow), resizable(isResizable) {}

FlexLayoutDialog::~FlexLayoutDialog() = default;

CLayoutPane* FlexLayoutDialog::CreateRoot(CLayoutPane::Orientation paneOrientation, int paneBorder) {
    root = std::make_unique<CLayoutPane>(paneOrientation, paneBorder);
    return root.get();
}

void FlexLayoutDialog::UpdateLayout() {
    const CRect own = GetWindowRect();
    CRect client(0, 0, own.Width(), own.Height());
    Layout(client);
}

void FlexLayoutDialog::Layout(CRect& rect) {
    if (root && !rect.IsRectEmpty()) root->Resize(rect);
}

void FlexLayoutDialog::ResizeDialog(const CRect& rect) {
    if (!resizable) return;
    MoveWindow(rect);
    UpdateLayout();
}
