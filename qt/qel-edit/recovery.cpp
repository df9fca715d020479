#include "recovery.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTextStream>
#include <algorithm>
#include <csignal>

#include "script_files.h"

namespace {
QString InfoFileOf(const QString& textFile) { return textFile.chopped(4) + QStringLiteral(".info"); }

bool ProcessRuns(qint64 processId) { return processId > 0 && ::kill(static_cast<pid_t>(processId), 0) == 0; }
}  // namespace

CRecovery::CRecovery(const QString& recoveryDirectory, qint64 id)
    : directory(recoveryDirectory), processId(id > 0 ? id : QCoreApplication::applicationPid()) {}

QString CRecovery::DefaultDirectory() {
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + QStringLiteral("/wiederherstellung");
}

QString CRecovery::TextFile() const { return QDir(directory).filePath(QString::number(processId) + QStringLiteral(".qel")); }

// The text first, then the note that makes it count.
bool CRecovery::Save(const QString& path, const CString& text) {
    if (!QDir().mkpath(directory) || !WriteScriptFile(TextFile(), text + "\n")) return false;
    QFile info(InfoFileOf(TextFile()));
    if (!info.open(QIODevice::WriteOnly | QIODevice::Truncate)) return false;
    QTextStream(&info) << processId << '\n' << path << '\n';
    return info.error() == QFile::NoError;
}

void CRecovery::Discard() {
    QFile::remove(InfoFileOf(TextFile()));
    QFile::remove(TextFile());
}

std::vector<RecoveredWork> CRecovery::Left() const {
    std::vector<RecoveredWork> found;
    const QFileInfoList notes = QDir(directory).entryInfoList({QStringLiteral("*.info")}, QDir::Files);
    for (const QFileInfo& note : notes) {
        QFile info(note.filePath());
        if (!info.open(QIODevice::ReadOnly)) continue;
        QTextStream in(&info);
        const qint64 owner = in.readLine().toLongLong();
        RecoveredWork work;
        work.path = in.readLine();
        work.recoveryFile = note.path() + u'/' + note.completeBaseName() + QStringLiteral(".qel");
        if (ProcessRuns(owner) || !ReadScriptFile(work.recoveryFile, work.text)) continue;
        work.written = QFileInfo(work.recoveryFile).lastModified();
        found.push_back(std::move(work));
    }
    std::sort(found.begin(), found.end(),
              [](const RecoveredWork& a, const RecoveredWork& b) { return a.written > b.written; });
    return found;
}

void CRecovery::Remove(const RecoveredWork& work) {
    QFile::remove(InfoFileOf(work.recoveryFile));
    QFile::remove(work.recoveryFile);
}
