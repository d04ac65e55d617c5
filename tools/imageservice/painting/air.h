#pragma once

#include "imageservice/painting/sky.h"

namespace imageservice {

/// The air between the camera and the ground: clear near by, hazy far away, misty in the valleys.
class Air
{
public:
    /// @p thickness is the share of haze per length, @p valleyMist what comes to it near height 0.
    Air(const Sky &sky, float thickness, float valleyMist);

    /// Share of what is at that place that still can be seen.
    float clearness(float height, float distance) const;
    /// What one sees instead; @p haze is the sky's in that direction. Near by it has the colour of
    /// the sky above us, far away that of the horizon.
    Color color(Color haze, float distance) const;

private:
    Color m_near;
    float m_thickness;
    float m_valleyMist;
};

} // namespace imageservice
