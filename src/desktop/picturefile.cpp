#include "desktop/picturefile.h"

#include "desktop/pictureformat.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QPixelFormat>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

// Holds 7680 x 4320 pixels, more than the services make and all that a screen can show. Qt refuses
// more than this as well unless told otherwise, but without a word on why; and the limit keeps a
// small hostile file from taking all memory.
constexpr qint64 largestImage = 128LL * 1024 * 1024;

qint64 decodedSize(const QImageReader &reader)
{
    constexpr int usualBitsPerPixel = 32;
    const QImage::Format format = reader.imageFormat();
    const int bitsPerPixel = format == QImage::Format_Invalid
        ? usualBitsPerPixel
        : QImage::toPixelFormat(format).bitsPerPixel();
    const QSize size = reader.size();
    return qint64(size.width()) * size.height() * bitsPerPixel / 8;
}

tl::expected<QImage, QString> decoded(QFile &file, const QByteArray &format)
{
    if (!isWhole(file, format)) {
        return tl::make_unexpected(u"The image is damaged"_s);
    }
    QImageReader reader(&file, format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    // Of a JPEG without a size, Qt tells a format that does not exist.
    if (size.isValid() && decodedSize(reader) > largestImage) {
        return tl::make_unexpected(
            u"The image is too large (%1 × %2 pixels)"_s.arg(size.width()).arg(size.height()));
    }
    QImage image = size.isValid() ? reader.read() : QImage();
    if (image.isNull()) {
        return tl::make_unexpected(u"The image is damaged"_s);
    }
    return image;
}

} // namespace

tl::expected<Picture, QString> readPicture(const QString &file)
{
    const QFileInfo info(file);
    if (!info.exists()) {
        return tl::make_unexpected(u"File not found"_s);
    }
    // Opening a pipe would wait for somebody to write to it.
    if (!info.isFile()) {
        return tl::make_unexpected(u"Not a file"_s);
    }
    QFile opened(info.absoluteFilePath());
    // The readers have blocks of their own; a buffer would only copy all bytes once more.
    if (!opened.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return tl::make_unexpected(u"The file cannot be read: "_s + opened.errorString());
    }
    if (info.size() == 0) {
        return tl::make_unexpected(u"The file is empty"_s);
    }
    const QByteArray format = pictureFormat(opened);
    if (format.isEmpty()) {
        return tl::make_unexpected(u"Unsupported image format"_s);
    }
    return decoded(opened, format).map([&](QImage image) {
        return Picture{info.absoluteFilePath(), format, std::move(image)};
    });
}

} // namespace desktop
