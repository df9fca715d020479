// qel-edit: the script editor of QELKern.
//   qel-edit [FILE]
#include <QApplication>
#include <QFileInfo>
#include <cstdio>

#include "edit_window.h"
#include "qel_environment.h"
#include "qelkern-qt/qtuserinterface.h"

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("qel-edit"));
    const QStringList arguments = QApplication::arguments().mid(1);
    if (arguments.size() > 1 || arguments.contains(QStringLiteral("--help")) ||
        arguments.contains(QStringLiteral("-h"))) {
        std::fputs("Usage: qel-edit [FILE]\n"
                   "Edits a QEL script with syntax colouring; compiles (F7) and runs (F5) it\n"
                   "with the prelude extern.qel from the script's directory.\n",
                   arguments.size() > 1 ? stderr : stdout);
        return arguments.size() > 1 ? 2 : 0;
    }

    CQtEditorServices services;
    CQelUmgebung environment;
    pBasisPredefinedUmgebung = &environment;
    int status = 0;
    {
        CQelEditWindow window;
        if (!arguments.isEmpty()) {
            // A file that does not exist yet is a new script of that name.
            const QString& path = arguments.first();
            if (!QFileInfo::exists(path))
                window.StartNewFile(path);
            else if (!window.OpenFile(path))
                GetUserInterface().ShowMessage(
                    FromQString(QStringLiteral("Die Datei %1 kann nicht gelesen werden.").arg(path)), "qel-edit",
                    CUserInterface::IconError);
        }
        window.show();
        status = QApplication::exec();
    }
    pBasisPredefinedUmgebung = nullptr;
    return status;
}
