// The files opened last, newest first, kept in the user's settings.
#pragma once

#include <QStringList>

class CRecentFiles {
public:
    static constexpr int limit = 8;

    QStringList Paths() const;
    void Add(const QString& path);
    void Remove(const QString& path);
};
