#include "find_dialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

CFindDialog::CFindDialog(QWidget* parent) : QDialog(parent) {
    pattern = new QLineEdit(this);
    replacement = new QLineEdit(this);
    caseSensitive = new QCheckBox(QStringLiteral("&Groß-/Kleinschreibung beachten"), this);
    outcome = new QLabel(this);

    auto* fields = new QFormLayout;
    fields->addRow(QStringLiteral("&Suchen nach:"), pattern);
    replaceRow = new QWidget(this);
    auto* replaceLayout = new QFormLayout(replaceRow);
    replaceLayout->setContentsMargins(0, 0, 0, 0);
    replaceLayout->addRow(QStringLiteral("Ersetzen &durch:"), replacement);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* next = buttons->addButton(QStringLiteral("&Weitersuchen"), QDialogButtonBox::ActionRole);
    replaceOne = buttons->addButton(QStringLiteral("&Ersetzen"), QDialogButtonBox::ActionRole);
    replaceAll = buttons->addButton(QStringLiteral("&Alle ersetzen"), QDialogButtonBox::ActionRole);
    buttons->addButton(QStringLiteral("Schließen"), QDialogButtonBox::RejectRole);
    next->setDefault(true);
    connect(next, &QPushButton::clicked, this, [this] { if (onFindNext) onFindNext(); });
    connect(replaceOne, &QPushButton::clicked, this, [this] { if (onReplace) onReplace(); });
    connect(replaceAll, &QPushButton::clicked, this, [this] { if (onReplaceAll) onReplaceAll(); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addWidget(replaceRow);
    layout->addWidget(caseSensitive);
    layout->addWidget(outcome);
    layout->addWidget(buttons);
}

void CFindDialog::Open(bool replace, const QString& selected) {
    replaceRow->setVisible(replace);
    replaceOne->setVisible(replace);
    replaceAll->setVisible(replace);
    setWindowTitle(replace ? QStringLiteral("Suchen und Ersetzen") : QStringLiteral("Suchen"));
    if (!selected.isEmpty() && !selected.contains(u'\r')) pattern->setText(selected);
    outcome->clear();
    show();
    raise();
    activateWindow();
    QLineEdit* field = replace && !pattern->text().isEmpty() ? replacement : pattern;
    field->setFocus();
    field->selectAll();
}

SearchRequest CFindDialog::Request() const { return {pattern->text(), caseSensitive->isChecked()}; }

QString CFindDialog::Replacement() const { return replacement->text(); }

void CFindDialog::ShowOutcome(const QString& text) { outcome->setText(text); }
