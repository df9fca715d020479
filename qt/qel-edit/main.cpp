// qel-edit: the script editor of QELKern.
//   qel-edit [--help] [--version] [FILE]
#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <cstdio>

#include "command_line.h"
#include "edit_window.h"
#include "qel_environment.h"
#include "qelkern-qt/qtappearance.h"
#include "qelkern-qt/qtuserinterface.h"
#include "qelkern/version.h"

namespace {
const char usage[] =
    "Usage: qel-edit [FILE]\n"
    "Edits a QEL script with syntax colouring; compiles (F7) and runs (F5) it\n"
    "with the prelude extern.qel from the script's directory.\n"
    "\n"
    "Options:\n"
    "  -h, --help     show this help and exit\n"
    "      --version  show the version and exit\n";
}  // namespace

int main(int argc, char** argv) {
    const CommandLine line = ParseCommandLine(std::vector<std::string>(argv + 1, argv + argc));
    switch (line.action) {
    case CommandLine::Help:
        std::fputs(usage, stdout);
        return 0;
    case CommandLine::Version:
        std::printf("qel-edit %s\n", QELKERN_VERSION_STRING);
        return 0;
    case CommandLine::UsageError:
        std::fprintf(stderr, "qel-edit: %s\n%s", line.error.c_str(), usage);
        return 2;
    case CommandLine::Edit:
        break;
    }

    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("qel-edit"));
    QApplication::setApplicationVersion(QStringLiteral(QELKERN_VERSION_STRING));
    LoadQtTranslations(application);

    CQtEditorServices services;
    CQelUmgebung environment;
    pBasisPredefinedUmgebung = &environment;
    int status = 0;
    {
        CQelEditWindow window;
        if (!line.file.empty()) {
            // A file that does not exist yet is a new script of that name.
            const QString path = QFile::decodeName(line.file.c_str());
            if (!QFileInfo::exists(path))
                window.StartNewFile(path);
            else if (!window.OpenFile(path))
                GetUserInterface().ShowMessage(
                    FromQString(QStringLiteral("Die Datei %1 kann nicht gelesen werden.").arg(path)), "qel-edit",
                    CUserInterface::IconError);
        }
        window.show();
        window.OfferRecovery();
        status = QApplication::exec();
    }
    pBasisPredefinedUmgebung = nullptr;
    return status;
}
