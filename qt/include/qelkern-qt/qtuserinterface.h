// The user interface service of QELKern on Qt: message boxes, the number
// entry, file dialogs, printing, the beep and the error dialog; the system
// clipboard behind the engine's; and one object that installs all of it.
#pragma once

#include <QString>
#include <QStringList>
#include <memory>

#include "qelkern/richedit.h"
#include "qelkern/userinterface.h"

class QMessageBox;
class QPrinter;
class QWidget;

class CQtUserInterface : public CUserInterface {
public:
    void ShowMessage(const CString& text, const CString& caption, Icon icon) override;
    void ShowTextDialog(const CString& title, const CString& text, int line, int column) override;
    bool EnterNumber(const CString& prompt, bool integerMode, int& value) override;
    bool FileDialog(bool openFileDialog, const CString& defaultExtension, const CString& filter,
                    unsigned flags, CString& path) override;
    bool PrintText(const CString& title, const CString& text, int leftMargin, int topMargin,
                   int rightMargin, int bottomMargin) override;
    void Beep() override;
};

// The system clipboard as the engine's: text only, "\r\n" line ends,
// Latin-1 (what Latin-1 cannot hold becomes '?').
class CQtClipboard : public CClipboard {
public:
    CString GetText() const override;
    void SetText(const CString& text) override;
};

// Installs the Qt widget factory, the clipboard and the user interface for
// its lifetime, and puts back what was there before. Make it after the
// QApplication.
class CQtEditorServices {
public:
    CQtEditorServices();
    ~CQtEditorServices();
    CQtEditorServices(const CQtEditorServices&) = delete;
    CQtEditorServices& operator=(const CQtEditorServices&) = delete;

    CQtUserInterface userInterface;
    CQtClipboard clipboard;

private:
    RichEditWidgetFactory previousFactory;
    CUserInterface* previousInterface;
};

// The engine's Latin-1 text as a QString, and back ('?' for what Latin-1
// lacks). Paragraph ends stay as they are.
QString Latin1Text(const CString& text);
CString FromQString(const QString& text);

// The window that dialogs belong to: the active modal one, else the active one.
QWidget* DialogParent();

// The message box of ShowMessage, made but not shown.
std::unique_ptr<QMessageBox> CreateMessageBox(const CString& text, const CString& caption,
                                              CUserInterface::Icon icon, QWidget* parent = nullptr);

// A filter of the framework's file dialog ("Scripte (*.qel)|*.qel||") as
// Qt's name filters.
QStringList QtNameFilters(const CString& filter);

// Prints plain text on a printer that is set up already: a fixed-pitch font,
// the margins in twips, lines wrapped to the page. false: nothing printed.
bool PrintPlainText(QPrinter& printer, const CString& title, const CString& text, int leftMargin,
                    int topMargin, int rightMargin, int bottomMargin);
