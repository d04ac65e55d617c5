#pragma once

#include <QColor>
#include <QImage>
#include <QList>
#include <QRect>

namespace desktop {

/// How a picture lies on its area.
enum class Placement {
    None, ///< Not shown, only the colour behind it.
    Tile,
    Center,
    Fit,
    Stretch,
    Cover,
};

/// What is seen where no picture reaches: one colour, or two that run into each other.
struct Backdrop
{
    enum class Shading { Solid, FromLeftToRight, FromTopToBottom };

    Backdrop(const QColor &all = Qt::black) : colour(all), endColour(all) { }
    Backdrop(Qt::GlobalColor all) : Backdrop(QColor(all)) { }

    QColor colour;
    QColor endColour; ///< At the right or at the bottom.
    Shading shading = Shading::Solid;

    friend bool operator==(const Backdrop &, const Backdrop &) = default;
};

/// What is drawn on one screen. All places are in pixels of the virtual desktop, which may begin
/// anywhere, also left of or above zero.
struct Part
{
    QRect screen;
    QRect area; ///< What the picture is laid out in: the screen, or more where it spans several.
    QImage image; ///< May be null.
    Placement placement = Placement::Cover;
    Backdrop background = {}; ///< Where the picture does not reach or is transparent.
};

/// One image of the whole virtual desktop: as large as all screens together, black where there is
/// none. Where screens overlap, the later part is seen.
[[nodiscard]] QImage compose(const QList<Part> &parts);

} // namespace desktop
