#include "imageservice/painting/lake.h"

#include "imageservice/painting/noise.h"

#include <cmath>

namespace imageservice {

namespace {

/// The shore without its small bays: a mirror has one line, not one per column.
std::vector<float> smoothed(const std::vector<float> &shore, int reach)
{
    const int count = static_cast<int>(shore.size());
    std::vector<float> result(shore.size());
    float sum = 0;
    const auto at = [&](int index) { return shore[std::clamp(index, 0, count - 1)]; };
    for (int index = -reach; index <= reach; ++index) {
        sum += at(index);
    }
    for (int index = 0; index < count; ++index) {
        result[index] = sum / static_cast<float>(2 * reach + 1);
        sum += at(index + reach + 1) - at(index - reach);
    }
    return result;
}

class LakePainter
{
public:
    LakePainter(Canvas &canvas, const Sky &sky, const std::vector<float> &shore, Water water)
        : m_canvas(canvas), m_sky(sky), m_shore(shore),
          m_mirror(smoothed(shore, canvas.height() / 16)), m_rippled(water == Water::Rippled),
          m_noise(sky.scene().dice("lake").next())
    {
        const Palette &palette = sky.scene().palette;
        m_deep = (palette.sky[3] * 0.35F + palette.ambient * 0.12F) * Color{0.55F, 0.8F, 0.85F};
    }

    void paint()
    {
        const int first = static_cast<int>(*std::min_element(m_shore.begin(), m_shore.end()));
        for (int y = std::max(first, 0); y < m_canvas.height(); ++y) {
            paintRow(y);
        }
    }

private:
    /// The waves of one place.
    struct Ripple
    {
        float height; ///< About -1 to 1.
        float breeze; ///< 0 where the water is still.
    };

    void paintRow(int y)
    {
        const float below
            = std::max(static_cast<float>(y) / m_canvas.scale() - m_sky.horizon(), 0.02F);
        const float far = 0.12F / below;
        Color *row = m_canvas.row(y);
        // Seen this low, waves are much wider than high: few places across tell them all.
        const int cell = std::max(m_canvas.height() / 500, 1);
        Ripple left = rippleAt(0, far);
        for (int start = 0; start < m_canvas.width(); start += cell) {
            const Ripple right = rippleAt(start + cell, far);
            for (int x = start; x < std::min(start + cell, m_canvas.width()); ++x) {
                const float depth = static_cast<float>(y) - m_shore[x];
                if (depth > -0.5F) {
                    const float share = static_cast<float>(x - start) / static_cast<float>(cell);
                    const Ripple ripple{mix(left.height, right.height, share),
                        mix(left.breeze, right.breeze, share)};
                    row[x]
                        = mix(row[x], colorAt(x, y, below, ripple), std::min(depth + 0.5F, 1.0F));
                }
            }
            left = right;
        }
    }

    Ripple rippleAt(int x, float far) const
    {
        const float groundX
            = (static_cast<float>(x) / m_canvas.scale() - m_canvas.aspect() / 2) * far * 8;
        const float breeze = m_noise.fractal(groundX * 0.20F + 40, far * 5, 2);
        return {m_noise.fractal(groundX * 1.6F, far * 44, 3),
            m_rippled ? 0.8F : smoothStep(0.10F, 0.45F, breeze)};
    }

    /// @p below is measured from the horizon in canvas heights.
    Color colorAt(int x, int y, float below, const Ripple &ripple) const
    {
        const float depth = (static_cast<float>(y) - m_shore[x]) / m_canvas.scale();
        const float strength = m_canvas.scale()
            * (m_rippled ? 0.006F + 0.10F * below : 0.002F + 0.045F * below * below);
        const float swing
            = ripple.height * strength * (1 + 1.5F * ripple.breeze) * std::min(depth * 65, 1.0F);
        const float lift = ripple.breeze * strength * 2 * std::min(depth * 22, 1.0F);
        const float source = 2 * m_mirror[x] - static_cast<float>(y) + swing - lift;
        const Color mirrored = mirroredAt(x, source, swing, m_rippled ? strength : 0);
        const float through = mix(0.06F, 0.5F, smoothStep(0, 0.42F, below)) + 0.05F * ripple.height;
        return mix(mirrored * Color{0.90F, 0.94F, 0.97F}, m_deep, std::clamp(through, 0.0F, 1.0F));
    }

    /// Ripples draw lights out into streaks.
    Color mirroredAt(int x, float source, float swing, float streak) const
    {
        const float place = static_cast<float>(x) + 0.35F * swing;
        const float shore = m_shore[x] - 1;
        if (streak <= 0) {
            return m_canvas.sample(place, std::min(source, shore));
        }
        Color sum;
        for (int tap = -2; tap <= 2; ++tap) {
            sum = sum
                + m_canvas.sample(
                    place, std::min(source + streak * 0.45F * static_cast<float>(tap), shore));
        }
        return sum * 0.2F;
    }

    Canvas &m_canvas;
    const Sky &m_sky;
    const std::vector<float> &m_shore;
    std::vector<float> m_mirror;
    bool m_rippled;
    Noise m_noise;
    Color m_deep;
};

} // namespace

void paintLake(Canvas &canvas, const Sky &sky, const std::vector<float> &shore, Water water)
{
    LakePainter(canvas, sky, shore, water).paint();
}

} // namespace imageservice
