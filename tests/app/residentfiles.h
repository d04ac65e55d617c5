#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>

/// Kibibytes of files, which are nearly all code, that this process has in memory; 0 if not told.
inline qint64 residentFiles()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("RssFile:")) {
            return line.simplified().split(' ').value(1).toLongLong();
        }
    }
    return 0;
}
