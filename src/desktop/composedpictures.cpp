#include "desktop/composedpictures.h"

#include <QDateTime>
#include <QFile>
#include <QJsonDocument>
#include <QSaveFile>
#include <QStandardPaths>

#include <atomic>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

// Not compressed: it is made again for each picture, a person waits for it, and compressing takes
// longer than all the rest.
constexpr auto format = "bmp";

QString newName()
{
    static std::atomic_int count = 0;
    return u"composed_%1_%2.bmp"_s.arg(QDateTime::currentMSecsSinceEpoch()).arg(++count);
}

} // namespace

ComposedPictures::ComposedPictures(const QString &desktop)
    : m_folder(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation)
        + u"/composed/"_s + desktop)
{
}

tl::expected<QString, QString> ComposedPictures::save(const QImage &image) const
{
    m_folder.mkpath(u"."_s);
    // The desktop reads it at once, from memory: nobody waits for the disk to have it, too.
    QFile file(m_folder.filePath(newName()));
    if (file.open(QIODevice::WriteOnly) && image.save(&file, format) && file.flush()
        && file.error() == QFile::NoError) {
        return file.fileName();
    }
    const QString reason = file.errorString();
    file.remove();
    return tl::make_unexpected(u"The picture of all screens cannot be saved: "_s + reason);
}

QStringList ComposedPictures::files() const
{
    QStringList found;
    for (const QFileInfo &file : m_folder.entryInfoList({u"composed_*"_s}, QDir::Files)) {
        found.append(file.absoluteFilePath());
    }
    return found;
}

Arrangement ComposedPictures::remembered(const QString &file) const
{
    QFile memory(memoryFile());
    if (!memory.open(QIODevice::ReadOnly)) {
        return {};
    }
    Arrangement last = arrangementFromJson(QJsonDocument::fromJson(memory.readAll()).object());
    return last.file == file ? last : Arrangement();
}

// Without a memory, the next picture is composed of what the screens show, no better.
void ComposedPictures::remember(const Arrangement &arrangement) const
{
    m_folder.mkpath(u"."_s);
    QSaveFile file(memoryFile());
    if (file.open(QIODevice::WriteOnly)) {
        file.write(QJsonDocument(toJson(arrangement)).toJson());
        file.commit();
    }
}

} // namespace desktop
