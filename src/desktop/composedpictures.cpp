#include "desktop/composedpictures.h"

#include <QDateTime>
#include <QFile>
#include <QJsonDocument>
#include <QSaveFile>
#include <QStandardPaths>
#include <QtEndian>

#include <atomic>
#include <filesystem>
#include <optional>
#include <system_error>

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

constexpr qsizetype bitmapHeaderSize = 54;

/// Where the pixels of a BMP file are that has three bytes for each, and its rows from the bottom
/// up.
struct Pixels
{
    qint64 begin;
    QSize size;

    // A row takes a multiple of four bytes.
    qint64 bytesPerLine() const { return (qint64(size.width()) * 3 + 3) / 4 * 4; }
    bool areIn(qint64 fileSize) const
    {
        return begin <= fileSize && size.height() <= (fileSize - begin) / bytesPerLine();
    }
    qint64 at(int x, int y) const
    {
        return begin + (size.height() - 1 - y) * bytesPerLine() + qint64(x) * 3;
    }
};

std::optional<Pixels> pixelsOf(const QByteArray &header)
{
    if (header.size() < bitmapHeaderSize || !header.startsWith("BM")) {
        return {};
    }
    const auto number
        = [&](int offset) { return qFromLittleEndian<qint32>(header.constData() + offset); };
    const bool hasPlainColours = qFromLittleEndian<quint16>(header.constData() + 28) == 24
        && number(30) == 0; // Not compressed.
    const Pixels pixels{number(10), {number(18), number(22)}};
    const bool isInOrder = pixels.begin >= bitmapHeaderSize && !pixels.size.isEmpty();
    return hasPlainColours && isInOrder ? std::optional(pixels) : std::nullopt;
}

// QFile's own copying waits for the disk.
bool copyFile(const QString &from, const QString &to)
{
    const auto path = [](const QString &name) {
        return std::filesystem::path(QFile::encodeName(name).toStdString());
    };
    std::error_code failed;
    return std::filesystem::copy_file(path(from), path(to), failed);
}

// QFile's own way leaves a file there whose last bytes found no room.
void removeUnfinished(QFile &file)
{
    file.close();
    QFile::remove(file.fileName());
}

bool writeRows(QFile &file, const Pixels &pixels, const QImage &image, QPoint place)
{
    const QImage bytes = image.convertToFormat(QImage::Format_BGR888);
    const qint64 length = 3 * qint64(bytes.width());
    for (int y = 0; y < bytes.height(); ++y) {
        const auto *row = reinterpret_cast<const char *>(bytes.constScanLine(y));
        if (!file.seek(pixels.at(place.x(), place.y() + y)) || file.write(row, length) != length) {
            return false;
        }
    }
    return true;
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
    removeUnfinished(file);
    return tl::make_unexpected(u"The picture of all screens cannot be saved: "_s + reason);
}

std::optional<QString> ComposedPictures::saveWithin(
    const QString &name, const QImage &image, QPoint place) const
{
    QFile before(name);
    if (!before.open(QIODevice::ReadOnly)) {
        return {};
    }
    const std::optional<Pixels> pixels = pixelsOf(before.read(bitmapHeaderSize));
    if (!pixels || !pixels->areIn(before.size())
        || !QRect({}, pixels->size).contains({place, image.size()})) {
        return {};
    }
    QFile file(m_folder.filePath(newName()));
    if (copyFile(name, file.fileName()) && file.open(QIODevice::ReadWrite | QIODevice::Unbuffered)
        && writeRows(file, *pixels, image, place)) {
        return file.fileName();
    }
    removeUnfinished(file);
    return {};
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
