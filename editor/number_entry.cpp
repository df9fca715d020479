// The number entry dialog and its resource.
#include "qelkern/dialogs.h"
#include "qelkern/userinterface.h"

#include <iterator>

namespace {

const DialogItem zahlenEingabeItems[] = {
    {IDC_ZAHLENEINGABE_PROMPT, DialogItem::StaticText, "Wert", 5, 5, 115, 8, 0},
    {IDC_ZAHLENEINGABE_WERT, DialogItem::EditField, nullptr, 5, 20, 40, 14,
     DialogItem::Border | DialogItem::TabStop | DialogItem::AutoHScroll},
    {IDOK, DialogItem::DefaultPushButton, "OK", 129, 7, 50, 14, DialogItem::TabStop},
    {IDCANCEL, DialogItem::PushButton, "Abbrechen", 129, 24, 50, 14, DialogItem::TabStop},
};

}  // namespace

const DialogTemplate ZahlenEingabeTemplate = {
    IDD_ZAHLENEINGABE, "Zahleneingabe", "MS Sans Serif", 8, 186, 48,
    zahlenEingabeItems, static_cast<int>(std::size(zahlenEingabeItems)),
};

const DialogItem* DialogTemplate::FindItem(int id) const {
    for (int i = 0; i < itemCount; ++i)
        if (items[i].id == id) return &items[i];
    return nullptr;
}

CDialog::~CDialog() = default;

int CDialog::DoModal() { return IDCANCEL; }

CZahlenEingabe::CZahlenEingabe(int mode, CWnd* owner)
    : CDialog(IDD_ZAHLENEINGABE, owner), prompt("Wert="), integerMode(mode) {}

CZahlenEingabe::~CZahlenEingabe() = default;

int CZahlenEingabe::DoModal() {
    int& entry = integerMode != 0 ? integerEntry : doubleEntry;
    // The field opens with the entry's value; the service rejects anything but
    // a whole number, as the field's exchange would.
    int value = entry;
    if (!GetUserInterface().EnterNumber(prompt, integerMode != 0, value)) return IDCANCEL;
    entry = value;
    return IDOK;
}
