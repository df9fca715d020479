#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>

#include "qelkern-qt/qtdialogs.h"
#include "qelkern-qt/qtrichedit.h"
#include "qelkern-qt/qtuserinterface.h"

namespace {
QMessageBox::Icon QtIcon(CUserInterface::Icon icon) {
    switch (icon) {
    case CUserInterface::IconInformation: return QMessageBox::Information;
    case CUserInterface::IconError: return QMessageBox::Critical;
    case CUserInterface::IconNone: break;
    }
    return QMessageBox::NoIcon;
}

// "*.qel" as a default extension is "qel".
QString SuffixOf(const CString& extension) {
    QString suffix = Latin1Text(extension);
    while (suffix.startsWith(u'*') || suffix.startsWith(u'.')) suffix.remove(0, 1);
    return suffix;
}
}  // namespace

QWidget* DialogParent() {
    if (QWidget* modal = QApplication::activeModalWidget()) return modal;
    return QApplication::activeWindow();
}

std::unique_ptr<QMessageBox> CreateMessageBox(const CString& text, const CString& caption,
                                              CUserInterface::Icon icon, QWidget* parent) {
    auto box = std::make_unique<QMessageBox>(QtIcon(icon), Latin1Text(caption),
                                             Latin1Text(text), QMessageBox::Ok, parent);
    box->setTextFormat(Qt::PlainText);
    return box;
}

QStringList QtNameFilters(const CString& filter) {
    const QStringList parts = Latin1Text(filter).split(u'|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString& description = parts[i];
        const QString patterns = QString(parts[i + 1]).replace(u';', u' ');
        if (description.isEmpty()) continue;
        filters << (description.contains(u'(') ? description : description + QStringLiteral(" (") + patterns + QChar(u')'));
    }
    return filters;
}

void CQtUserInterface::ShowMessage(const CString& text, const CString& caption, Icon icon) {
    CreateMessageBox(text, caption, icon, DialogParent())->exec();
}

void CQtUserInterface::ShowTextDialog(const CString& title, const CString& text, int line, int column) {
    CQtTextDialog dialog(title, DialogParent());
    dialog.text = text;
    dialog.line = line;
    dialog.column = column;
    dialog.DoModal();
}

bool CQtUserInterface::EnterNumber(const CString& prompt, bool, int& value) {
    CQtNumberEntryDialog dialog(prompt, value, DialogParent());
    if (dialog.exec() != QDialog::Accepted) return false;
    value = dialog.Value();
    return true;
}

// Paths are the file system's bytes, not Latin-1 text.
bool CQtUserInterface::FileDialog(bool openFileDialog, const CString& defaultExtension,
                                  const CString& filter, unsigned flags, CString& path) {
    QFileDialog dialog(DialogParent(), openFileDialog ? QStringLiteral("Öffnen") : QStringLiteral("Speichern unter"));
    dialog.setAcceptMode(openFileDialog ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
    dialog.setFileMode(openFileDialog && (flags & OFN_FILEMUSTEXIST) ? QFileDialog::ExistingFile
                                                                     : QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, !(flags & OFN_OVERWRITEPROMPT));
    dialog.setNameFilters(QtNameFilters(filter));
    dialog.setDefaultSuffix(SuffixOf(defaultExtension));
    const QString start = QFile::decodeName(path.str().c_str());
    if (!start.isEmpty() && !start.contains(u'*')) dialog.selectFile(start);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return false;
    path = CString(QFile::encodeName(dialog.selectedFiles().first()).toStdString());
    return true;
}

bool CQtUserInterface::PrintText(const CString& title, const CString& text, int leftMargin, int topMargin,
                                 int rightMargin, int bottomMargin) {
    QPrinter printer(QPrinter::HighResolution);
    QPrintDialog dialog(&printer, DialogParent());
    dialog.setWindowTitle(QStringLiteral("Drucken"));
    if (dialog.exec() != QDialog::Accepted) return false;
    return PrintPlainText(printer, title, text, leftMargin, topMargin, rightMargin, bottomMargin);
}

void CQtUserInterface::Beep() { QApplication::beep(); }

CQtEditorServices::CQtEditorServices()
    : previousFactory(SetRichEditWidgetFactory(CreateQtRichEditWidget)), previousInterface(pUserInterface) {
    SetClipboard(&clipboard);
    pUserInterface = &userInterface;
}

CQtEditorServices::~CQtEditorServices() {
    SetRichEditWidgetFactory(previousFactory);
    SetClipboard(nullptr);
    pUserInterface = previousInterface;
}
