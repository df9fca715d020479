// The panes of a paused run: the call stack, and the variables of the frame
// chosen in it (arrays open element by element). Docked at the window's
// bottom and shown while a debug run is on.
#pragma once

#include <QString>
#include <functional>

#include "qelkern/debugger.h"

class QMainWindow;
class QDockWidget;
class QTreeWidget;

class CDebugPanes {
public:
    explicit CDebugPanes(QMainWindow* window);

    void Show(const CDebugPause& pause);
    void ShowFrame(const CDebugPause& pause, int frame);
    void Clear();
    void SetVisible(bool visible);

    QTreeWidget* Variables() const { return variables; }
    QTreeWidget* Stack() const { return stack; }
    // Called with the frame the user picked in the call stack.
    std::function<void(int frame)> onFrameChosen;

private:
    QDockWidget* variablesDock = nullptr;
    QDockWidget* stackDock = nullptr;
    QTreeWidget* variables = nullptr;
    QTreeWidget* stack = nullptr;
};

// "12" in the script, "Vorspann 12" in the prelude.
QString LocationText(const CDebugLocation& location);
