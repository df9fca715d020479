#include "recent_files.h"

#include <QFileInfo>
#include <QSettings>

namespace {
const char key[] = "recentFiles";

QSettings Settings() {
    return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("QELKern"), QStringLiteral("qel-edit"));
}
}  // namespace

QStringList CRecentFiles::Paths() const { return Settings().value(key).toStringList(); }

void CRecentFiles::Add(const QString& path) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QStringList paths = Paths();
    paths.removeAll(absolute);
    paths.prepend(absolute);
    while (paths.size() > limit) paths.removeLast();
    Settings().setValue(key, paths);
}

void CRecentFiles::Remove(const QString& path) {
    QStringList paths = Paths();
    paths.removeAll(path);
    Settings().setValue(key, paths);
}
