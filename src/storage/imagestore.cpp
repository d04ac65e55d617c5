#include "storage/imagestore.h"

#include "storage/imagename.h"
#include "storage/wholefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <algorithm>
#include <limits>
#include <vector>

using namespace Qt::StringLiterals;

namespace storage {
namespace {

bool isPicture(const QFileInfo &entry)
{
    const QString extension = entry.suffix().toLower();
    return extension == "png"_L1 || extension == "jpg"_L1 || extension == "jpeg"_L1
        || extension == "webp"_L1;
}

QDateTime creationDateOf(const QFileInfo &entry)
{
    const QDateTime birth = entry.birthTime();
    return birth.isValid() ? birth : entry.lastModified();
}

struct DatedEntry
{
    qint64 created;
    QFileInfo entry;
};

DatedEntry dated(const QFileInfo &entry)
{
    const QDateTime created = creationDateOf(entry);
    return {created.isValid() ? created.toMSecsSinceEpoch() : std::numeric_limits<qint64>::min(),
        entry};
}

/// Of two that came at the same time, the later name first: it has the later date in it.
bool isNewer(const DatedEntry &a, const DatedEntry &b)
{
    return a.created != b.created ? a.created > b.created : a.entry.fileName() > b.entry.fileName();
}

} // namespace

QString ImageStore::directory()
{
    QString folder = QDir::homePath() + "/Pictures/Plenaura"_L1;
    QDir().mkpath(folder);
    return folder;
}

std::optional<QUrl> ImageStore::save(const QByteArray &bytes, const QString &ext)
{
    const QString name = imageName(QDateTime::currentDateTime(), QLocale::system()) + u'.' + ext;
    const QString path = directory() + u'/' + name;
    if (!writeWholeFile(path, bytes, Readers::AsUsual)) {
        return std::nullopt;
    }
    return QUrl::fromLocalFile(path);
}

QList<QUrl> ImageStore::allImages()
{
    // System adds the symbolic links whose target is gone: they are entries, too.
    const auto filters = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System;
    const QFileInfoList entries = QDir(directory()).entryInfoList(filters, QDir::Unsorted);
    std::vector<DatedEntry> pictures;
    for (const QFileInfo &entry : entries) {
        if (isPicture(entry)) {
            pictures.push_back(dated(entry));
        }
    }
    std::sort(pictures.begin(), pictures.end(), isNewer);
    QList<QUrl> urls;
    for (const DatedEntry &picture : pictures) {
        urls.append(QUrl::fromLocalFile(picture.entry.filePath()));
    }
    return urls;
}

void ImageStore::remove(const QUrl &url)
{
    const QString path = url.toLocalFile();
    if (path.isEmpty()) {
        return; // Not the location of a file, which Qt would warn about.
    }
    const QFileInfo entry(path);
    if (entry.isDir() && !entry.isSymLink()) {
        QDir(path).removeRecursively();
    } else {
        QFile::remove(path);
    }
}

QDateTime ImageStore::creationDate(const QUrl &url)
{
    return creationDateOf(QFileInfo(url.toLocalFile()));
}

} // namespace storage
