#include "ui/picturereader.h"

#include "desktop/pictureformat.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include <algorithm>

namespace ui {

using namespace Qt::StringLiterals;

namespace {

/// 8192 x 8192, for what is scaled while it is decoded. A picture that has to be decoded whole, an
/// interlaced one for instance, is bound by the 128 MB that Qt grants it. That stays so: 8192 x
/// 4096 is enough for the largest wallpapers, and a picture made to take memory takes no more.
constexpr qint64 mostPixels = 64LL * 1024 * 1024;

/// A decoder knows no other way to be stopped than a device that ends.
class StoppableFile : public QFile
{
public:
    StoppableFile(const QString &name, const std::atomic_bool &stopped)
        : QFile(name), m_stopped(stopped)
    {
    }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        return m_stopped ? -1 : QFile::readData(data, maxSize);
    }

private:
    const std::atomic_bool &m_stopped;
};

/// What of a picture scaled to @p scaled is worth keeping: a panorama that covers a box can be a
/// hundred times as wide as the box.
QRect worthKeeping(QSize scaled, QSize box)
{
    const QRect whole(QPoint(), scaled);
    QRect kept(QPoint(), (box * 2).boundedTo(scaled));
    kept.moveCenter(whole.center());
    return kept & whole;
}

QSize scaledSize(QSize size, QSize box, Framing framing)
{
    const auto mode
        = framing == Framing::Cover ? Qt::KeepAspectRatioByExpanding : Qt::KeepAspectRatio;
    const QSize scaled = size.scaled(box, mode).expandedTo({1, 1});
    return scaled.width() < size.width() ? scaled : size;
}

QImage readScaled(QImageReader &reader, QSize scaled, QRect kept)
{
    // Qt's own way of scaling a PNG loses the colours of pictures with two of them.
    if (reader.imageFormat() == QImage::Format_Mono) {
        const QImage image = reader.read();
        return image.isNull() ? image : image.scaled(scaled).copy(kept);
    }
    const QRect whole({}, scaled);
    if (scaled != reader.size() || kept != whole) {
        reader.setScaledSize(scaled);
    }
    if (kept != whole) {
        reader.setScaledClipRect(kept);
    }
    return reader.read();
}

} // namespace

QImage readPicture(const QString &file, QSize box, Framing framing, const std::atomic_bool &stopped)
{
    // Opening a pipe that is named like a picture would wait for somebody to write into it.
    if (stopped || !QFileInfo(file).isFile()) {
        return {};
    }
    StoppableFile device(file, stopped);
    if (!device.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray format = desktop::pictureFormat(device);
    if (!desktop::isWhole(device, format)) {
        return {};
    }
    QImageReader reader(&device, format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (reader.format().isEmpty() || size.isEmpty()
        || qint64(size.width()) * size.height() > mostPixels) {
        return {};
    }
    const bool lying = reader.transformation() & QImageIOHandler::TransformationRotate90;
    const QSize boxInFile = lying ? box.transposed() : box;
    const QSize scaled = scaledSize(size, boxInFile, framing);
    const QRect kept
        = framing == Framing::Cover ? worthKeeping(scaled, boxInFile) : QRect({}, scaled);
    QImage image = readScaled(reader, scaled, kept);
    if (image.isNull() || stopped) {
        return {};
    }
    const auto pixels
        = image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    return std::move(image).convertToFormat(pixels);
}

} // namespace ui
