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

// The painter's own scaling looks at four pixels only, which spoils pictures made much smaller.
QImage scaled(const QImage &image, QSize size)
{
    return image.size() == size
        ? image
        : image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QImage coveringImage(const QImage &image, QSize size)
{
    const QSize kept = size.scaled(image.size(), Qt::KeepAspectRatio).expandedTo({1, 1});
    return scaled(image.copy(centered(kept, image.rect())), size);
}

void drawTiles(QPainter &painter, const Part &part)
{
    painter.setBrushOrigin(part.area.topLeft());
    painter.fillRect(part.area, QBrush(part.image));
}

void drawPicture(QPainter &painter, const Part &part)
{
    const QSize size = part.area.size();
    const QSize fitting = part.image.size().scaled(size, Qt::KeepAspectRatio).expandedTo({1, 1});
    switch (part.placement) {
    case Placement::None:
        break;
    case Placement::Tile:
        drawTiles(painter, part);
        break;
    case Placement::Center:
        painter.drawImage(centered(part.image.size(), part.area).topLeft(), part.image);
        break;
    case Placement::Fit:
        painter.drawImage(centered(fitting, part.area).topLeft(), scaled(part.image, fitting));
        break;
    case Placement::Stretch:
        painter.drawImage(part.area.topLeft(), scaled(part.image, size));
        break;
    case Placement::Cover:
        painter.drawImage(part.area.topLeft(), coveringImage(part.image, size));
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
    painter.translate(-desktop.topLeft());
    for (const Part &part : parts) {
        draw(painter, part);
    }
    return composed;
}

} // namespace desktop
