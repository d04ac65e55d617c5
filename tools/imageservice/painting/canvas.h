#pragma once

#include "imageservice/painting/color.h"

#include <QImage>
#include <QSize>

#include <memory>

namespace imageservice {

/// The picture while it is painted: one linear colour per pixel. Starts without defined colours;
/// the sky covers all of it. Lengths that have to look the same at every size are in canvas
/// heights.
class Canvas
{
public:
    explicit Canvas(QSize size);

    int width() const { return m_width; }
    int height() const { return m_height; }
    float aspect() const { return static_cast<float>(m_width) / static_cast<float>(m_height); }
    /// Pixels per canvas height, as a factor for lengths.
    float scale() const { return static_cast<float>(m_height); }

    Color *row(int y) { return m_pixels.get() + static_cast<size_t>(y) * m_width; }
    const Color *row(int y) const { return m_pixels.get() + static_cast<size_t>(y) * m_width; }
    Color &at(int x, int y) { return row(y)[x]; }
    /// Colour at a place in pixels, mixed from its neighbours; places outside are moved to the rim.
    Color sample(float x, float y) const;
    /// Mixes @p color over a pixel; places outside are ignored.
    void blend(int x, int y, Color color, float share);
    /// Adds light to a pixel; places outside are ignored.
    void add(int x, int y, Color light);

    /// The picture as a screen shows it. A fine grain that @p seed decides replaces the bands that
    /// 8 bits would make of soft skies.
    QImage developed(quint64 seed) const;

private:
    int m_width;
    int m_height;
    std::unique_ptr<Color[]> m_pixels;
};

} // namespace imageservice
