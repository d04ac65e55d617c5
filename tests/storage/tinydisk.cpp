#include "tinydisk.h"

#include "testlibs/ownnamespace.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int pagesOfTheDisk = 256;

qint64 freePages(const QString &folder)
{
    struct statvfs status;
    const bool known = ::statvfs(QFile::encodeName(folder).constData(), &status) == 0;
    return known ? qint64(status.f_bfree) : -1;
}

} // namespace

QString TinyDisk::allowMounting()
{
    const QString refusal = testlibs::enterOwnNamespace(CLONE_NEWNS);
    if (!refusal.isEmpty()) {
        return refusal;
    }
    if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
        return "The mounts cannot be made private: "_L1 + qt_error_string(errno);
    }
    return {};
}

TinyDisk::TinyDisk()
{
    const QByteArray options
        = "mode=0700,size=" + QByteArray::number(pagesOfTheDisk * qint64(pageSize()));
    m_isMounted = ::mount("tmpfs", QFile::encodeName(path()).constData(), "tmpfs",
                      MS_NODEV | MS_NOSUID, options.constData())
        == 0;
}

TinyDisk::~TinyDisk()
{
    if (m_isMounted) {
        ::umount2(QFile::encodeName(path()).constData(), MNT_DETACH);
    }
}

int TinyDisk::pageSize()
{
    return int(::sysconf(_SC_PAGESIZE));
}

bool TinyDisk::leaveFree(int pages) const
{
    if (!m_isMounted) {
        return false; // Anything else would fill the disk that the folder lies on.
    }
    const QByteArray filler = QFile::encodeName(path() + "/filler"_L1);
    const int descriptor = ::open(filler.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const QByteArray page(pageSize(), 'x');
    off_t filled = 0;
    while (::pwrite(descriptor, page.constData(), size_t(page.size()), filled) == page.size()) {
        filled += page.size();
    }
    const bool isFull = errno == ENOSPC && freePages(path()) == 0;
    const bool isCut = ::ftruncate(descriptor, filled - off_t(pages) * page.size()) == 0;
    ::close(descriptor);
    return isFull && isCut && freePages(path()) == pages;
}

bool TinyDisk::makeReadOnly() const
{
    return ::mount(nullptr, QFile::encodeName(path()).constData(), nullptr,
               MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr)
        == 0;
}
