#include "imageservice/painting/air.h"

#include <cmath>

namespace imageservice {

Air::Air(const Sky &sky, float thickness, float valleyMist)
    : m_near(mix(sky.scene().palette.sky[1], sky.scene().palette.sky[2], 0.6F)),
      m_thickness(thickness), m_valleyMist(valleyMist)
{
}

float Air::clearness(float height, float distance) const
{
    const float low = std::max(height, 0.0F) * 3;
    const float mist = (1 - std::exp(-distance * m_valleyMist)) / (1 + low + 0.5F * low * low);
    return std::exp(-distance * m_thickness) * (1 - mist);
}

Color Air::color(Color haze, float distance) const
{
    return mix(m_near, haze, smoothStep(1, 14, distance));
}

} // namespace imageservice
