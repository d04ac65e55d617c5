#include "home.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

Home::Home() : m_path(m_temporary.path()), m_previous(qgetenv("HOME"))
{
    qputenv("HOME", QFile::encodeName(m_path));
}

Home::Home(const QString &path) : m_path(path), m_previous(qgetenv("HOME"))
{
    qputenv("HOME", QFile::encodeName(m_path));
}

Home::~Home()
{
    qputenv("HOME", m_previous);
}

QString Home::keyFolder() const
{
    return m_path + "/Library/Application Support/Plenaura"_L1;
}

QString Home::keyFile() const
{
    return keyFolder() + "/keys.json"_L1;
}

QString Home::pictures() const
{
    return m_path + "/Pictures/Plenaura"_L1;
}

void Home::makeFolders() const
{
    QDir().mkpath(keyFolder());
    QDir().mkpath(pictures());
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool put(const QString &path, const QByteArray &bytes)
{
    const QByteArray name = QFile::encodeName(path);
    const int descriptor = ::open(name.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (descriptor < 0) {
        return false;
    }
    const bool whole = ::write(descriptor, bytes.constData(), size_t(bytes.size())) == bytes.size();
    return ::fchmod(descriptor, 0644) == 0 && ::close(descriptor) == 0 && whole;
}

int mode(const QString &path)
{
    struct stat status;
    const bool found = ::lstat(QFile::encodeName(path).constData(), &status) == 0;
    return found ? int(status.st_mode & 07777) : -1;
}

QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

QStringList filesBelow(const QString &folder)
{
    QStringList paths;
    QDirIterator found(
        folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (found.hasNext()) {
        paths.append(QDir(folder).relativeFilePath(found.next()));
    }
    paths.sort();
    return paths;
}

CreationMask::CreationMask(mode_t mask) : m_previous(::umask(mask)) { }

CreationMask::~CreationMask()
{
    ::umask(m_previous);
}
