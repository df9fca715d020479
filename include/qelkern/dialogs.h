// The engine's dialogs. Their layout is kept as data, so that a toolkit can
// build them; running one goes through the user interface service.
#pragma once

#include "qelkern/platform.h"

class CWnd;  // the owner window; the dialogs here have none of their own

// Results of DoModal, with the framework's numbers (also the button ids).
enum : int { IDOK = 1, IDCANCEL = 2 };

// One item of a dialog resource. Position and size are in dialog units.
struct QELKERN_API DialogItem {
    enum Kind { StaticText, EditField, DefaultPushButton, PushButton, RichEdit };
    enum Style : unsigned {
        Border = 1, TabStop = 2, AutoHScroll = 4,
        MultiLine = 8, ReadOnly = 16, VScroll = 32, AutoVScroll = 64,
    };

    int id;
    Kind kind;
    const char* text;  // Latin-1; null for none
    int x, y, width, height;
    unsigned style;
};

// A dialog resource: a popup dialog with a title, a font and its items.
struct QELKERN_API DialogTemplate {
    int resourceId;
    const char* title;  // Latin-1
    const char* fontName;
    int fontPointSize;
    int width, height;  // dialog units
    const DialogItem* items;
    int itemCount;

    // The item with this id, or null.
    const DialogItem* FindItem(int id) const;
};

// Base of the modal dialogs.
class QELKERN_API CDialog : public CObject {
public:
    CDialog(int resourceId, CWnd* owner) : templateId(resourceId), parent(owner) {}
    ~CDialog() override;
    // Runs the dialog to its end; IDOK or IDCANCEL.
    virtual int DoModal();

    int templateId;
    CWnd* parent;
};

// Resource 129: the number entry dialog.
constexpr int IDD_ZAHLENEINGABE = 129;
constexpr int IDC_ZAHLENEINGABE_PROMPT = 1001;
constexpr int IDC_ZAHLENEINGABE_WERT = 1000;
QELKERN_API extern const DialogTemplate ZahlenEingabeTemplate;

// Asks the user for one whole number. In integer mode the answer goes to
// `integerEntry`, otherwise to `doubleEntry`; a cancelled dialog leaves the
// entry as it was (0 for a new dialog).
class QELKERN_API CZahlenEingabe : public CDialog {
public:
    explicit CZahlenEingabe(int mode, CWnd* owner = nullptr);
    ~CZahlenEingabe() override;
    int DoModal() override;

    CString prompt;
    int integerEntry = 0;
    int doubleEntry = 0;  // a whole number as well
    int integerMode;
};
