// Unsaved work, written before each run so that a script that brings the
// editor down (or a kill meanwhile) loses nothing. Each process has one
// recovery file; the files of processes that are gone are offered back.
#pragma once

#include <QDateTime>
#include <QString>
#include <vector>

#include "qelkern/qelkern.h"

struct RecoveredWork {
    QString path;  // the script's file; empty for an unnamed script
    QDateTime written;
    CString text;  // Latin-1, '\n' line ends
    QString recoveryFile;
};

class CRecovery {
public:
    explicit CRecovery(const QString& directory, qint64 processId = -1);
    static QString DefaultDirectory();

    bool Save(const QString& path, const CString& text);
    void Discard();
    // Work left by processes that no longer run, newest first.
    std::vector<RecoveredWork> Left() const;
    static void Remove(const RecoveredWork& work);

private:
    QString TextFile() const;
    QString directory;
    qint64 processId;
};
