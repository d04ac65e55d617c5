#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <sys/types.h>

/// The person's home for as long as it lives: a new, empty folder, or one that the test gives.
class Home
{
public:
    Home();
    explicit Home(const QString &path);
    ~Home();
    Q_DISABLE_COPY_MOVE(Home)

    QString path() const { return m_path; }
    QString keyFolder() const;
    QString keyFile() const;
    QString pictures() const;
    /// Makes the folders that a program which ran before would have left.
    void makeFolders() const;

private:
    QTemporaryDir m_temporary;
    QString m_path;
    QByteArray m_previous;
};

/// The bytes of the file, none when it cannot be read.
QByteArray contents(const QString &path);
/// Puts the bytes into the file with mode 0644, by nothing but the system's own calls.
bool put(const QString &path, const QByteArray &bytes);
/// The permission bits of what stands at the path itself, or -1.
int mode(const QString &path);
/// Everything in the folder, hidden entries and broken links as well, by name.
QStringList entries(const QString &folder);
/// Every file below the folder, by its path from there.
QStringList filesBelow(const QString &folder);

/// The mask of newly made files while it lives.
class CreationMask
{
public:
    explicit CreationMask(mode_t mask);
    ~CreationMask();
    Q_DISABLE_COPY_MOVE(CreationMask)

private:
    mode_t m_previous;
};
