#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <cstdlib>

namespace fuzzing {

/// A folder for what is read by name and written millions of times; the runner has temporary files
/// lie in memory where it can.
class ScratchFolder
{
public:
    ScratchFolder()
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
