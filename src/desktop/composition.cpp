#include "desktop/composition.h"

#include <QPainter>

namespace desktop {

namespace {

QRect centered(QSize size, const QRect &area)
{
    QRect place({}, size);
    place.moveCenter(area.center());
    return place;
}

QRgb mean(QRgb one, QRgb two, QRgb three, QRgb four)
{
    // Two channels at once, with room for their sums between them.
    constexpr QRgb channels = 0x00ff00ff;
    constexpr QRgb half = 0x00020002;
    const auto sum = [&](int shift) {
        return (one >> shift & channels) + (two >> shift & channels) + (three >> shift & channels)
            + (four >> shift & channels) + half;
    };
    return (sum(0) >> 2 & channels) | (sum(8) >> 2 & channels) << 8;
}

QImage halved(const QImage &image)
{
    QImage half(image.width() / 2, image.height() / 2, image.format());
    const qsizetype width = half.width(); // Or it is asked for at each pixel.
    for (int y = 0; y < half.height(); ++y) {
        const auto *upper = reinterpret_cast<const QRgb *>(image.constScanLine(2 * y));
        const auto *lower = reinterpret_cast<const QRgb *>(image.constScanLine(2 * y + 1));
        auto *line = reinterpret_cast<QRgb *>(half.scanLine(y));
        for (qsizetype x = 0; x < width; ++x) {
            line[x] = mean(upper[2 * x], upper[2 * x + 1], lower[2 * x], lower[2 * x + 1]);
        }
    }
    return half;
}

/// A part of @p image, which must outlive it: copying takes as long as half a decode.
QImage view(const QImage &image, const QRect &part)
{
    const uchar *begin = image.constScanLine(part.y()) + part.x() * qsizetype(sizeof(QRgb));
    return {begin, part.width(), part.height(), image.bytesPerLine(), image.format()};
}

// The painter's own scaling looks at four pixels, which is enough for pictures that are not made
// smaller than half their size. Halved until they are not, they come out as sharp as by Qt's other
// way, which takes longer and is left for those that get much narrower or much flatter.
void drawScaled(QPainter &painter, QImage image, const QRect &area)
{
    while (image.width() >= 2 * area.width() && image.height() >= 2 * area.height()) {
        image = halved(image);
    }
    if (image.width() >= 2 * area.width() || image.height() >= 2 * area.height()) {
        image = image.scaled(area.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    painter.drawImage(area, image);
}

void drawCovering(QPainter &painter, const QImage &image, const QRect &area)
{
    const QSize kept = area.size().scaled(image.size(), Qt::KeepAspectRatio).expandedTo({1, 1});
    drawScaled(painter, view(image, centered(kept, image.rect())), area);
}

void drawTiles(QPainter &painter, const Part &part)
{
    painter.setBrushOrigin(part.area.topLeft());
    painter.fillRect(part.area, QBrush(part.image));
}

void drawPicture(QPainter &painter, const Part &part)
{
    const QSize size = part.image.size();
    const QSize fitting = size.scaled(part.area.size(), Qt::KeepAspectRatio).expandedTo({1, 1});
    switch (part.placement) {
    case Placement::None:
        break;
    case Placement::Tile:
        drawTiles(painter, part);
        break;
    case Placement::Center:
        painter.drawImage(centered(size, part.area).topLeft(), part.image);
        break;
    case Placement::Fit:
        drawScaled(painter, part.image, centered(fitting, part.area));
        break;
    case Placement::Stretch:
        drawScaled(painter, part.image, part.area);
        break;
    case Placement::Cover:
        drawCovering(painter, part.image, part.area);
        break;
    }
}

// Scaling a picture of two colours, Qt forgets which they are.
QImage inFullColour(const QImage &image)
{
    return image.convertToFormat(
        image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
}

QBrush brushOf(const Backdrop &backdrop, const QRect &area)
{
    if (backdrop.shading == Backdrop::Shading::Solid) {
        return backdrop.colour;
    }
    const bool isSideways = backdrop.shading == Backdrop::Shading::FromLeftToRight;
    const QRectF place(area);
    QLinearGradient gradient(place.topLeft(), isSideways ? place.topRight() : place.bottomLeft());
    gradient.setColorAt(0, backdrop.colour);
    gradient.setColorAt(1, backdrop.endColour);
    return gradient;
}

void draw(QPainter &painter, Part part)
{
    painter.setClipRect(part.screen);
    painter.fillRect(part.screen, brushOf(part.background, part.screen));
    if (!part.image.isNull() && !part.area.isEmpty()) {
        part.image = inFullColour(part.image);
        drawPicture(painter, part);
    }
}

} // namespace

QImage compose(const QList<Part> &parts)
{
    QRect desktop;
    for (const Part &part : parts) {
        desktop |= part.screen;
    }
    QImage composed(desktop.size(), QImage::Format_RGB32);
    composed.fill(Qt::black);
    QPainter painter(&composed);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate(-desktop.topLeft());
    for (const Part &part : parts) {
        draw(painter, part);
    }
    return composed;
}

} // namespace desktop
