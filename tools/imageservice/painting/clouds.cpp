#include "imageservice/painting/clouds.h"

#include "imageservice/painting/field.h"
#include "imageservice/painting/noise.h"

#include <cmath>

namespace imageservice {

namespace {

/// Clouds as seen from below: thickness by the place on the canvas.
class Deck
{
public:
    Deck(const Sky &sky, float aspect)
        : m_dice(sky.scene().dice("clouds")), m_noise(m_dice.next()), m_warp(m_dice.next()),
          m_horizon(sky.horizon()), m_middle(aspect / 2), m_stretch(m_dice.between(0.55F, 1.25F)),
          m_threshold(mix(0.42F, -0.28F, sky.scene().clouds))
    {
    }

    float density(float x, float y, int octaves) const
    {
        const float up = std::max(m_horizon - y, 0.0F) + 0.09F;
        const float px = (x - m_middle) / up * 0.62F * m_stretch;
        const float pz = 0.55F / up;
        const float wx = 0.45F * m_warp.fractal(px * 0.9F, pz * 0.9F, 2);
        const float wz = 0.45F * m_warp.fractal(px * 0.9F + 31, pz * 0.9F + 7, 2);
        return m_noise.fractal(px + wx, pz * 1.5F + wz, octaves) - m_threshold;
    }

private:
    Dice m_dice;
    Noise m_noise;
    Noise m_warp;
    float m_horizon;
    float m_middle;
    float m_stretch;
    float m_threshold;
};

/// A cloud of that thickness before @p behind; @p sunward is the thickness nearer to the sun, @p
/// air is 0 at the horizon and 1 well above it.
Color shaded(const Palette &palette, Color behind, float thick, float sunward, float air)
{
    const float cover = smoothStep(0, 0.34F, thick) * (0.25F + 0.7F * air);
    const float lit = std::clamp(0.62F + 1.5F * (thick - sunward) - 0.85F * thick, 0.0F, 1.0F);
    const Color cloud = mix(palette.cloudShade, palette.cloudLit, lit);
    // Thin parts let the glow behind them through; the rest of the sky tints all of it.
    const Color glow = behind * (0.35F * smoothStep(0.5F, 1.4F, luminance(behind)));
    return mix(behind, mix(cloud, behind, 0.30F * (1 - air) + 0.12F) + glow, cover);
}

} // namespace

void paintClouds(Canvas &canvas, const Sky &sky)
{
    if (sky.scene().clouds <= 0) {
        return;
    }
    const Deck deck(sky, canvas.aspect());
    const float unit = 1 / canvas.scale();
    const int rows = static_cast<int>(sky.horizon() * canvas.scale());
    const Field density(canvas, {0, sky.horizon()}, 1 / 540.0F,
        [&](float x, float y) { return deck.density(x, y, 6); });
    const Field sunward(canvas, {0, sky.horizon()}, 1 / 300.0F, [&](float x, float y) {
        const float dx = sky.sunX() - x;
        const float dy = sky.sunY() - y;
        const float step = 0.035F / std::max(std::sqrt(dx * dx + dy * dy), 0.05F);
        return deck.density(x + dx * step, y + dy * step, 4);
    });
    for (int y = 0; y < rows; ++y) {
        const float air = smoothStep(0.0F, 0.16F, sky.horizon() - static_cast<float>(y) * unit);
        Color *row = canvas.row(y);
        for (int x = 0; x < canvas.width(); ++x) {
            const float thick = density.at(x, y);
            if (thick > 0) {
                row[x] = shaded(sky.scene().palette, row[x], thick, sunward.at(x, y), air);
            }
        }
    }
}

} // namespace imageservice
