#include <iterator>

#include "qelkern/dialogs.h"
#include "qelkern/editor.h"

namespace {
const DialogItem textDialogItems[] = {
    {IDC_TEXTDIALOG_EDIT, DialogItem::RichEdit, nullptr, 0, 0, 385, 270,
     DialogItem::MultiLine | DialogItem::ReadOnly | DialogItem::Border | DialogItem::VScroll |
         DialogItem::AutoVScroll | DialogItem::TabStop},
    {IDOK, DialogItem::DefaultPushButton, "OK", 335, 275, 50, 14, 0},
};
}  // namespace

const DialogTemplate TextDialogTemplate = {
    IDD_TEXTDIALOG, "Dialog", "MS Sans Serif", 8, 387, 293,
    textDialogItems, static_cast<int>(std::size(textDialogItems)),
};

const DialogTemplate* FindDialogTemplate(int resourceId) {
    static const DialogTemplate* const resources[] = {&TextDialogTemplate, &ZahlenEingabeTemplate};
    for (const DialogTemplate* resource : resources)
        if (resource->resourceId == resourceId) return resource;
    return nullptr;
}
