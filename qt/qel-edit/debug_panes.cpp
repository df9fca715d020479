#include "debug_panes.h"

#include <QDockWidget>
#include <QHeaderView>
#include <QMainWindow>
#include <QSignalBlocker>
#include <QTreeWidget>

namespace {
QString Latin1(const CString& text) { return QString::fromLatin1(text.str().c_str()); }

// A string's text in quotes, so that an empty one still shows.
QString ValueText(const CDebugValue& cell) {
    const QString text = Latin1(cell.text);
    return cell.typeName == "string" ? QStringLiteral("\"%1\"").arg(text) : text;
}

QTreeWidgetItem* VariableItem(const CDebugVariable& variable) {
    QString name = Latin1(variable.name);
    if (variable.kind == DebugVariableKind::VarParameter) name = QStringLiteral("VAR ") + name;
    auto* item = new QTreeWidgetItem({name, Latin1(variable.typeName)});
    if (!variable.available) {
        item->setText(2, QStringLiteral("(noch nicht angelegt)"));
        return item;
    }
    if (!variable.isArray) {
        item->setText(2, ValueText(variable.value));
        return item;
    }
    item->setText(2, QStringLiteral("%1 Elemente").arg(variable.elements.size()));
    for (size_t i = 0; i < variable.elements.size(); ++i) {
        const CDebugValue& element = variable.elements[i];
        item->addChild(new QTreeWidgetItem({QStringLiteral("[%1]").arg(i), Latin1(element.typeName), ValueText(element)}));
    }
    return item;
}

QDockWidget* Dock(QMainWindow* window, const QString& title, const QString& name, QWidget* content) {
    auto* dock = new QDockWidget(title, window);
    dock->setObjectName(name);
    dock->setWidget(content);
    window->addDockWidget(Qt::BottomDockWidgetArea, dock);
    dock->hide();
    return dock;
}
}  // namespace

QString LocationText(const CDebugLocation& location) {
    return location.file == DebugFile::Prelude ? QStringLiteral("Vorspann %1").arg(location.line)
                                               : QString::number(location.line);
}

CDebugPanes::CDebugPanes(QMainWindow* window) {
    variables = new QTreeWidget(window);
    variables->setObjectName(QStringLiteral("debugVariables"));
    variables->setHeaderLabels({QStringLiteral("Name"), QStringLiteral("Typ"), QStringLiteral("Wert")});
    // Opened arrays widen the columns, indented as their elements are.
    variables->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    variables->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    stack = new QTreeWidget(window);
    stack->setObjectName(QStringLiteral("debugStack"));
    stack->setHeaderLabels({QStringLiteral("Routine"), QStringLiteral("Zeile")});
    stack->setRootIsDecorated(false);
    variablesDock = Dock(window, QStringLiteral("Variablen"), QStringLiteral("variablesDock"), variables);
    stackDock = Dock(window, QStringLiteral("Aufrufliste"), QStringLiteral("stackDock"), stack);
    window->splitDockWidget(variablesDock, stackDock, Qt::Horizontal);
    QObject::connect(stack, &QTreeWidget::currentItemChanged, stack, [this](QTreeWidgetItem* item) {
        if (item && onFrameChosen) onFrameChosen(stack->indexOfTopLevelItem(item));
    });
}

void CDebugPanes::Show(const CDebugPause& pause) {
    {
        const QSignalBlocker quiet(stack);
        stack->clear();
        for (const CDebugFrame& frame : pause.frames)
            stack->addTopLevelItem(new QTreeWidgetItem({Latin1(frame.routine), LocationText(frame.location)}));
        stack->setCurrentItem(stack->topLevelItem(0));
    }
    ShowFrame(pause, 0);
    SetVisible(true);
}

void CDebugPanes::ShowFrame(const CDebugPause& pause, int frame) {
    variables->clear();
    if (frame < 0) return;
    for (const CDebugVariable& variable : pause.Variables(static_cast<size_t>(frame)))
        variables->addTopLevelItem(VariableItem(variable));
}

void CDebugPanes::Clear() {
    const QSignalBlocker quiet(stack);
    stack->clear();
    variables->clear();
}

void CDebugPanes::SetVisible(bool visible) {
    variablesDock->setVisible(visible);
    stackDock->setVisible(visible);
}
