#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

#include "qelkern-qt/qtdialogs.h"
#include "qelkern-qt/qtuserinterface.h"
#include "qelkern/userinterface.h"

const QString CQtNumberEntryDialog::notWholeNumber = QStringLiteral("Bitte geben Sie eine ganze Zahl ein.");

CQtNumberEntryDialog::CQtNumberEntryDialog(const CString& prompt, int startValue, QWidget* parent)
    : CQtResourceDialog(ZahlenEingabeTemplate, parent), value(startValue) {
    if (QLabel* label = Prompt()) label->setText(Latin1Text(prompt));
    if (QLineEdit* field = Field()) {
        field->setText(QString::number(value));
        field->selectAll();
        field->setFocus();
    }
}

QLineEdit* CQtNumberEntryDialog::Field() const {
    return qobject_cast<QLineEdit*>(Item(IDC_ZAHLENEINGABE_WERT));
}

QLabel* CQtNumberEntryDialog::Prompt() const {
    return qobject_cast<QLabel*>(Item(IDC_ZAHLENEINGABE_PROMPT));
}

QPushButton* CQtNumberEntryDialog::Button(int id) const { return qobject_cast<QPushButton*>(Item(id)); }

// As the framework's exchange of a whole number: the dialog stays open.
void CQtNumberEntryDialog::accept() {
    QLineEdit* field = Field();
    int parsed = 0;
    if (!field || !ParseWholeNumber(field->text().toLatin1().constData(), parsed)) {
        QMessageBox box(QMessageBox::Warning, windowTitle(), notWholeNumber, QMessageBox::Ok, this);
        box.exec();
        if (field) {
            field->setFocus();
            field->selectAll();
        }
        return;
    }
    value = parsed;
    QDialog::accept();
}
