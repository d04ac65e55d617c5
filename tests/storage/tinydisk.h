#pragma once

#include <QString>
#include <QTemporaryDir>

/// A disk of its own, small enough to be filled to the last page: the one way to make a write fail
/// that also holds for root.
class TinyDisk
{
public:
    /// Gives this process mounts of its own, which vanish with it; to be called before it starts a
    /// thread. Empty, or the reason why this system does not allow it.
    static QString allowMounting();

    TinyDisk();
    ~TinyDisk();
    Q_DISABLE_COPY_MOVE(TinyDisk)

    QString path() const { return m_folder.path(); }
    static int pageSize();
    /// Fills the disk until exactly so many pages are free; false when that cannot be had, or when
    /// there is no such disk.
    bool leaveFree(int pages) const;
    bool makeReadOnly() const;

private:
    QTemporaryDir m_folder;
    bool m_isMounted = false;
};
