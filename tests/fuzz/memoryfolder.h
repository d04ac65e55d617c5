#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <cstdlib>

namespace fuzzing {

/// A folder in memory, because what is read by name is written millions of times.
class MemoryFolder
{
public:
    MemoryFolder() : m_folder(QStringLiteral("/dev/shm/plenaura-fuzz-XXXXXX"))
    {
        if (!m_folder.isValid()) {
            std::abort();
        }
    }

    QString path(const QString &name) const { return m_folder.filePath(name); }

    void put(const QString &name, const QByteArray &contents) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)
            || file.write(contents) != contents.size()) {
            std::abort();
        }
    }

private:
    QTemporaryDir m_folder;
};

} // namespace fuzzing
