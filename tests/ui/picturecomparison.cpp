#include "picturecomparison.h"

#include <QColor>

#include <algorithm>
#include <cmath>

namespace ui::fakes {

namespace {

/// Of 255, in any channel.
constexpr int visible = 40;
/// Fewer are no letter and no line.
constexpr qsizetype fewest = 8;

int distance(QRgb one, QRgb other)
{
    return std::max({std::abs(qRed(one) - qRed(other)), std::abs(qGreen(one) - qGreen(other)),
        std::abs(qBlue(one) - qBlue(other))});
}

QRgb pale(QRgb pixel)
{
    const int gray = 160 + qGray(pixel) * 95 / 255;
    return qRgb(gray, gray, gray);
}

} // namespace

std::optional<Difference> difference(const QImage &approved, const QImage &made)
{
    const QImage before = approved.convertToFormat(QImage::Format_RGB32);
    const QImage now = made.convertToFormat(QImage::Format_RGB32);
    Difference result{.where = {}, .pixels = 0, .marked = now};
    if (before.size() != now.size()) {
        return Difference{
            .where = now.rect(), .pixels = qsizetype(now.width()) * now.height(), .marked = now};
    }
    for (int y = 0; y < now.height(); ++y) {
        for (int x = 0; x < now.width(); ++x) {
            const bool differs = distance(before.pixel(x, y), now.pixel(x, y)) > visible;
            result.marked.setPixel(x, y, differs ? qRgb(255, 0, 0) : pale(now.pixel(x, y)));
            if (differs) {
                ++result.pixels;
                result.where |= QRect(x, y, 1, 1);
            }
        }
    }
    return result.pixels >= fewest ? std::optional(result) : std::nullopt;
}

} // namespace ui::fakes
