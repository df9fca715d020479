// The find and replace window of qel-edit: it stays open beside the text.
#pragma once

#include <QDialog>
#include <functional>

#include "text_search.h"

class QLineEdit;
class QCheckBox;
class QLabel;
class QPushButton;

class CFindDialog : public QDialog {
public:
    explicit CFindDialog(QWidget* parent);

    // Shows the window, with the replace row when `replace`, the selected
    // text as the pattern if there is one.
    void Open(bool replace, const QString& selected);
    SearchRequest Request() const;
    QString Replacement() const;
    QLineEdit* PatternField() const { return pattern; }
    QLineEdit* ReplacementField() const { return replacement; }

    // The window's commands; each gets the window to tell its outcome.
    std::function<void()> onFindNext;
    std::function<void()> onReplace;
    std::function<void()> onReplaceAll;
    void ShowOutcome(const QString& text);

private:
    QLineEdit* pattern;
    QLineEdit* replacement;
    QCheckBox* caseSensitive;
    QLabel* outcome;
    QWidget* replaceRow;
    QPushButton* replaceOne;
    QPushButton* replaceAll;
};
