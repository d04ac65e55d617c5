#include "imageservice/painting/aurora.h"

#include "imageservice/painting/field.h"
#include "imageservice/painting/noise.h"

#include <cmath>

namespace imageservice {

namespace {

/// A curtain of light: rays that stand on a wandering lower edge. In canvas heights.
class Curtain
{
public:
    Curtain(const Noise &noise, Dice &dice, float middle)
        : m_noise(noise), m_base(dice.between(0.20F, 0.46F)), m_slope(dice.between(-0.30F, 0.30F)),
          m_swing(dice.between(0.13F, 0.29F)), m_offset(dice.between(0, 200)),
          m_strength(dice.between(0.8F, 1.0F)), m_reach(dice.between(0.10F, 0.24F)),
          m_middle(middle)
    {
    }

    /// Height above the lower edge without its bends; what the colours follow.
    float above(float x, float y) const { return m_base + m_slope * (x - m_middle) - y; }

    float lightAt(float x, float y) const
    {
        const float place = x + m_offset;
        const float up = above(x, y) + m_swing * m_noise.along(x * 1.3F + m_offset, 3);
        const float fine = m_noise.at(x * 26 + m_offset + up * 2, 3.1F + up * 0.7F);
        const float broad = m_noise.at(x * 5 + m_offset, 7.7F);
        const float ray = std::clamp(0.55F + 0.35F * fine + 0.75F * broad, 0.0F, 1.5F);
        const float length = 0.5F + m_noise.at(x * 9 + m_offset, 1.3F);
        const float reach = m_reach * (0.55F + 0.9F * std::clamp(length, 0.0F, 1.0F));
        const float shape = up < 0 ? std::exp(up / 0.014F) : std::exp(-up / reach);
        // A curtain does not hang over the whole sky.
        const float presence = smoothStep(-0.45F, 0.15F, m_noise.along(place * 0.8F + 50, 2));
        return m_strength * ray * shape * presence;
    }

private:
    const Noise &m_noise;
    float m_base;
    float m_slope;
    float m_swing;
    float m_offset;
    float m_strength;
    float m_reach;
    float m_middle;
};

void paintCurtain(Canvas &canvas, float horizon, const Curtain &curtain, Color high)
{
    const Color low = Color::fromRgb(0x4DFFB0);
    const float unit = 1 / canvas.scale();
    const Field light(
        canvas, {0, horizon}, 1 / 540.0F, [&](float x, float y) { return curtain.lightAt(x, y); });
    const int rows = static_cast<int>(horizon * canvas.scale());
    for (int y = 0; y < rows; ++y) {
        Color *row = canvas.row(y);
        for (int x = 0; x < canvas.width(); ++x) {
            const float strength = light.at(x, y);
            if (strength < 0.003F) {
                continue;
            }
            const float above
                = curtain.above(static_cast<float>(x) * unit, static_cast<float>(y) * unit);
            row[x] = row[x] + mix(low, high, smoothStep(0.02F, 0.30F, above)) * (0.5F * strength);
        }
    }
}

} // namespace

void paintAurora(Canvas &canvas, const Sky &sky)
{
    Dice dice = sky.scene().dice("aurora");
    const Noise noise(dice.next());
    const Color high = Color::fromRgb(dice.chance(0.5F) ? 0x9A5CFF : 0xE05CC8);
    for (int count = 0; count < 4; ++count) {
        paintCurtain(canvas, sky.horizon(), Curtain(noise, dice, canvas.aspect() / 2), high);
    }
}

} // namespace imageservice
