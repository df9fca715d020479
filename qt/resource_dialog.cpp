#include <QFontMetricsF>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QResizeEvent>
#include <algorithm>
#include <cmath>

#include "qelkern-qt/qtdialogs.h"

CQtResourceDialog::CQtResourceDialog(const DialogTemplate& dialogResource, QWidget* parent)
    : QDialog(parent), resource(dialogResource) {
    setWindowTitle(QString::fromLatin1(resource.title ? resource.title : ""));
    // A dialog unit is a quarter of the font's mean character width and an
    // eighth of its height, so the resource keeps its proportions in any font.
    const QFontMetricsF metrics(font());
    const QString alphabet = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    unitX = metrics.horizontalAdvance(alphabet) / alphabet.size() / 4.0;
    unitY = metrics.height() / 8.0;
    for (int i = 0; i < resource.itemCount; ++i) {
        const DialogItem& item = resource.items[i];
        if (QWidget* widget = MakeItem(item)) items[item.id] = widget;
    }
    resize(ToPixels(0, 0, resource.width, resource.height).size());
    PlaceItems();
}

// Lent widgets belong to someone else: they leave before the children go.
CQtResourceDialog::~CQtResourceDialog() {
    for (auto& [id, widget] : lent) {
        if (!widget) continue;
        widget->hide();
        widget->setParent(nullptr);
    }
}

QWidget* CQtResourceDialog::MakeItem(const DialogItem& item) {
    const QString text = QString::fromLatin1(item.text ? item.text : "");
    switch (item.kind) {
    case DialogItem::StaticText:
        return new QLabel(text, this);
    case DialogItem::EditField:
        return new QLineEdit(this);
    case DialogItem::DefaultPushButton:
    case DialogItem::PushButton: {
        auto* button = new QPushButton(text, this);
        button->setDefault(item.kind == DialogItem::DefaultPushButton);
        button->setAutoDefault(item.kind == DialogItem::DefaultPushButton);
        const int id = item.id;
        connect(button, &QPushButton::clicked, this, [this, id] { ButtonPressed(id); });
        return button;
    }
    case DialogItem::RichEdit:
        return nullptr;
    }
    return nullptr;
}

QWidget* CQtResourceDialog::Item(int id) const {
    const auto found = items.find(id);
    return found == items.end() ? nullptr : found->second.data();
}

void CQtResourceDialog::LendItem(int id, QWidget* widget) {
    const DialogItem* end = resource.items + resource.itemCount;
    const bool known = std::any_of(resource.items, end, [id](const DialogItem& item) { return item.id == id; });
    if (!widget || !known) return;
    widget->setParent(this);
    items[id] = widget;
    lent[id] = widget;
    // The tab order is the resource's order.
    QWidget* previous = nullptr;
    for (int i = 0; i < resource.itemCount; ++i) {
        QWidget* next = Item(resource.items[i].id);
        if (!next) continue;
        if (previous) setTabOrder(previous, next);
        previous = next;
    }
    widget->show();
    PlaceItems();
}

QRect CQtResourceDialog::ToPixels(int x, int y, int width, int height) const {
    const int left = static_cast<int>(std::lround(x * unitX));
    const int top = static_cast<int>(std::lround(y * unitY));
    const int right = static_cast<int>(std::lround((x + width) * unitX));
    const int bottom = static_cast<int>(std::lround((y + height) * unitY));
    return QRect(left, top, right - left, bottom - top);
}

QSize CQtResourceDialog::ToDialogUnits(const QSize& pixels) const {
    return QSize(static_cast<int>(pixels.width() / unitX), static_cast<int>(pixels.height() / unitY));
}

void CQtResourceDialog::PlaceItems() {
    for (int i = 0; i < resource.itemCount; ++i) {
        const DialogItem& item = resource.items[i];
        if (QWidget* widget = Item(item.id)) widget->setGeometry(ToPixels(item.x, item.y, item.width, item.height));
    }
}

void CQtResourceDialog::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    PlaceItems();
}

void CQtResourceDialog::ButtonPressed(int id) {
    if (id == IDOK)
        accept();
    else if (id == IDCANCEL)
        reject();
    else
        done(id);
}
