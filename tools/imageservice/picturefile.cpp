#include "imageservice/picturefile.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>

namespace imageservice {

Picture encoded(const QImage &image, PictureFormat format)
{
    Picture picture{format, {}};
    QBuffer buffer(&picture.bytes);
    QImageWriter writer(&buffer, format == PictureFormat::Png ? "png" : "jpeg");
    if (format == PictureFormat::Png) {
        // Of 100: higher values take seconds for a 4K picture and save little.
        writer.setCompression(15);
    } else {
        writer.setQuality(94);
    }
    writer.write(image);
    return picture;
}

QImage upscaled(const QByteArray &bytes)
{
    constexpr int Width = 3840;
    constexpr int HighestHeight = 16384;
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    const QImage image = reader.read();
    if (image.isNull() || qint64{Width} * image.height() > qint64{HighestHeight} * image.width()) {
        return {};
    }
    return image.convertToFormat(QImage::Format_RGB32)
        .scaledToWidth(Width, Qt::SmoothTransformation);
}

} // namespace imageservice
