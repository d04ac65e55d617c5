#include "desktop/pngcopy.h"

#include "desktop/workerthread.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

// Named after its content: applying the same picture twice keeps one copy, and another picture
// never gets a name that a desktop has already read.
QString copyName(const QImage &image)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (int y = 0; y < image.height(); ++y) {
        hash.addData(QByteArrayView(image.constScanLine(y), image.width() * image.depth() / 8));
    }
    return QString::fromLatin1(hash.result().toHex()) + u".png"_s;
}

} // namespace

tl::expected<QString, QString> fileEveryDesktopReads(const Picture &picture)
{
    if (picture.format != "webp") {
        return picture.file;
    }
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation)
        + u"/desktop pictures"_s);
    const QString copy = folder.filePath(copyName(picture.image));
    // Decoding it again shows a copy that a full disk cut short, now or earlier.
    if (readPicture(copy)) {
        return copy;
    }
    if (folder.mkpath(u"."_s) && picture.image.save(copy, "PNG") && readPicture(copy)) {
        return copy;
    }
    QFile::remove(copy);
    return tl::make_unexpected(u"The picture could not be converted to PNG for this desktop"_s);
}

QFuture<tl::expected<QString, QString>> prepareFile(const Picture &picture)
{
    return onWorkerThread([picture] { return fileEveryDesktopReads(picture); });
}

} // namespace desktop
