// qel-edit: the script editor of QELKern.
//   qel-edit [FILE]
#include <QApplication>
#include <QFileInfo>
#include <cstdio>
#include <cstring>

#include "edit_window.h"
#include "qel_environment.h"
#include "qelkern-qt/qtuserinterface.h"

namespace {
const char usage[] =
    "Usage: qel-edit [FILE]\n"
    "Edits a QEL script with syntax colouring; compiles (F7) and runs (F5) it\n"
    "with the prelude extern.qel from the script's directory.\n";

// Asked before the application starts, so that it works without a display.
bool AsksForHelp(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) return true;
    return false;
}
}  // namespace

int main(int argc, char** argv) {
    if (AsksForHelp(argc, argv)) {
        std::fputs(usage, stdout);
        return 0;
    }
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("qel-edit"));
    const QStringList arguments = QApplication::arguments().mid(1);
    if (arguments.size() > 1) {
        std::fputs(usage, stderr);
        return 2;
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
