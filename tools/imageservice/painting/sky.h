#pragma once

#include "imageservice/painting/canvas.h"
#include "imageservice/painting/gradient.h"
#include "imageservice/painting/scene.h"

namespace imageservice {

/// The clear sky of a scene over a level horizon: its gradient and the glow around the sun or moon.
/// Places are in canvas heights from the upper left corner.
class Sky
{
public:
    Sky(const Scene &scene, float aspect, float horizon);

    const Scene &scene() const { return m_scene; }
    float horizon() const { return m_horizon; }
    float sunX() const { return m_sunX; }
    float sunY() const { return m_sunY; }
    /// -1 where light comes from the left, 1 from the right.
    float sunSide() const { return m_scene.sunAcross < 0.5F ? -1.0F : 1.0F; }

    Color at(float x, float y) const { return colorAt(x, m_horizon - y, 0.5F); }
    /// What the air far away is filled with, in that direction.
    Color haze(float x) const;

private:
    /// @p closeness is the strength of the glow right around the sun.
    Color colorAt(float x, float up, float closeness) const;

    const Scene &m_scene;
    float m_horizon;
    float m_sunX;
    float m_sunY;
    Gradient m_gradient;
};

/// Covers the whole canvas: sky with stars, sun or moon, aurora and clouds; below the horizon the
/// colour of the haze.
void paintSky(Canvas &canvas, const Sky &sky);

} // namespace imageservice
