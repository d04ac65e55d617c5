#include "imageservice/painting/sky.h"

#include "imageservice/painting/aurora.h"
#include "imageservice/painting/clouds.h"
#include "imageservice/painting/luminaries.h"
#include "imageservice/painting/stars.h"

namespace imageservice {

namespace {

Gradient skyGradient(const std::array<Color, 4> &colors)
{
    const std::array<Gradient::Stop, 4> stops
        = {{{0, colors[0]}, {0.24F, colors[1]}, {0.58F, colors[2]}, {1, colors[3]}}};
    return Gradient(stops);
}

void paintGradient(Canvas &canvas, const Sky &sky)
{
    const float unit = 1 / canvas.scale();
    const int horizon
        = std::min(static_cast<int>(sky.horizon() * canvas.scale()), canvas.height() - 1);
    for (int y = 0; y <= horizon; ++y) {
        Color *row = canvas.row(y);
        for (int x = 0; x < canvas.width(); ++x) {
            row[x] = sky.at(static_cast<float>(x) * unit, static_cast<float>(y) * unit);
        }
    }
    for (int y = horizon + 1; y < canvas.height(); ++y) {
        std::copy_n(canvas.row(horizon), canvas.width(), canvas.row(y));
    }
}

} // namespace

Sky::Sky(const Scene &scene, float aspect, float horizon)
    : m_scene(scene), m_horizon(horizon), m_sunX(scene.sunAcross * aspect),
      m_sunY(horizon - scene.sunUp), m_gradient(skyGradient(scene.palette.sky))
{
}

Color Sky::haze(float x) const
{
    // Air before the land is not lit by the sun's own disc: that would draw a bright stripe below
    // it.
    return colorAt(x, 0.035F, 0);
}

Color Sky::colorAt(float x, float up, float closeness) const
{
    up = std::max(up, 0.0F);
    const float dx = x - m_sunX;
    const float dy = m_horizon - up - m_sunY;
    // Low light spreads along the horizon more than upwards.
    const float wide = 1 / (1 + 2.2F * dx * dx + 9 * dy * dy);
    const float near = 1 / (1 + 26 * (dx * dx + dy * dy));
    const float close = 1 / (1 + 420 * (dx * dx + dy * dy));
    const float glow = 0.34F * wide * wide + 0.30F * near * near + closeness * close * close;
    return m_gradient.at(up / m_horizon) + m_scene.palette.glow * glow;
}

void paintSky(Canvas &canvas, const Sky &sky)
{
    paintGradient(canvas, sky);
    paintStars(canvas, sky);
    paintLuminaries(canvas, sky);
    if (sky.scene().aurora) {
        paintAurora(canvas, sky);
    }
    paintClouds(canvas, sky);
}

} // namespace imageservice
