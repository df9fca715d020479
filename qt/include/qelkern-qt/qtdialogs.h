// Dialogs of the engine's resources as Qt dialogs: the generic window built
// from a DialogTemplate, the number entry (resource 129) and the error dialog
// CTextDialog (resource "IDD_TEXTDIALOG").
#pragma once

#include <QDialog>
#include <QPointer>
#include <map>
#include <memory>

#include "qelkern/dialogs.h"
#include "qelkern/editor.h"

class QLabel;
class QLineEdit;
class QPushButton;

// A dialog made from a resource: its title, its size and its items at their
// places, in dialog units of the dialog's font. Rich edit items are not made
// here: the caller lends their widgets with LendItem, and gets them back
// (unparented) when the window goes.
class CQtResourceDialog : public QDialog {
    Q_OBJECT

public:
    CQtResourceDialog(const DialogTemplate& resource, QWidget* parent);
    ~CQtResourceDialog() override;

    QWidget* Item(int id) const;
    void LendItem(int id, QWidget* widget);
    const DialogTemplate& Resource() const { return resource; }

    // Dialog units of this dialog's font, and back.
    QRect ToPixels(int x, int y, int width, int height) const;
    QSize ToDialogUnits(const QSize& pixels) const;

protected:
    // Puts the items in place; the base puts them where the resource has them.
    virtual void PlaceItems();
    void resizeEvent(QResizeEvent* event) override;
    // A push button ends the dialog with its id.
    virtual void ButtonPressed(int id);

private:
    QWidget* MakeItem(const DialogItem& item);

    const DialogTemplate& resource;
    std::map<int, QPointer<QWidget>> items;
    std::map<int, QPointer<QWidget>> lent;
    double unitX = 1;
    double unitY = 1;
};

// Resource 129: one whole number, OK and "Abbrechen". OK with anything but a
// whole number says so and keeps the dialog open.
class CQtNumberEntryDialog : public CQtResourceDialog {
    Q_OBJECT

public:
    CQtNumberEntryDialog(const CString& prompt, int value, QWidget* parent = nullptr);

    QLineEdit* Field() const;
    QLabel* Prompt() const;
    QPushButton* Button(int id) const;
    int Value() const { return value; }

    void accept() override;

    static const QString notWholeNumber;

private:
    int value;
};

// CTextDialog on a Qt dialog: the window is made from the resource
// "IDD_TEXTDIALOG", holds the colouring editor's widget, and its items follow
// the layout of CTextDialog when it is resized.
class CQtTextDialog : public CTextDialog {
public:
    explicit CQtTextDialog(CString title, QWidget* parentWidget = nullptr);
    ~CQtTextDialog() override;

    // Makes the dialog and its window without running it; false if the
    // resource or the editor's widget is missing.
    bool CreateWindow();
    CQtResourceDialog* Window() const { return window.get(); }

protected:
    int RunModalLoop() override;

private:
    bool BuildWindow();

    QWidget* parentWindow;
    std::unique_ptr<CQtResourceDialog> window;
};
