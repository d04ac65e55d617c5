#include "storage/wholefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace storage {
namespace {

constexpr auto unfinishedPrefix = ".plenaura-unfinished-"_L1;

/// A kill between naming and renaming leaves the bytes under a hidden name. Were it kept, a key
/// that the person deletes later would live on in it.
void removeUnfinished(QDir folder)
{
    constexpr auto randomEnding = 6;
    for (const QString &name : folder.entryList(QDir::Files | QDir::Hidden)) {
        if (name.startsWith(unfinishedPrefix)
            && name.size() == unfinishedPrefix.size() + randomEnding) {
            folder.remove(name);
        }
    }
}

/// QFile::write() may be short without an error, and only synchronising tells of blocks that the
/// disk could not take.
bool fill(QTemporaryFile &file, const QByteArray &bytes)
{
    return file.write(bytes) == bytes.size() && file.flush() && file.error() == QFile::NoError
        && ::fsync(file.handle()) == 0 && file.size() == bytes.size();
}

mode_t creationMask()
{
    // The mask can only be read by setting it; the narrow one does no harm to a file that another
    // thread makes at this moment.
    const mode_t mask = ::umask(S_IRWXG | S_IRWXO);
    ::umask(mask);
    return mask;
}

void widen(const QTemporaryFile &file)
{
    // A drive without permissions of its own (exFAT) refuses; the picture is no worse for it.
    ::fchmod(file.handle(),
        (S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH) & ~creationMask());
}

/// Makes the new name itself outlive a power cut. There is no answer: the new file is in place
/// whatever comes of it, and some file systems cannot synchronise a folder.
void synchronise(const QString &folder)
{
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
}

} // namespace

bool writeWholeFile(const QString &path, const QByteArray &bytes, Readers readers)
{
    const QString folder = QFileInfo(path).path();
    removeUnfinished(folder);
    // Opened with mode 0600 and, where the system can, without a name until fileName() asks for
    // one, so that a kill while filling it leaves nothing.
    QTemporaryFile file(folder + u'/' + unfinishedPrefix + "XXXXXX"_L1);
    if (!file.open() || !fill(file, bytes)) {
        return false;
    }
    if (readers == Readers::AsUsual) {
        widen(file);
    }
    // QFile::rename() refuses to replace, and QSaveFile reports success on a full disk.
    const QByteArray from = QFile::encodeName(file.fileName());
    if (std::rename(from.constData(), QFile::encodeName(path).constData()) != 0) {
        return false;
    }
    file.setAutoRemove(false);
    synchronise(folder);
    return true;
}

} // namespace storage
