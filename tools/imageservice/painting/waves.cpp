#include "imageservice/painting/waves.h"

#include "imageservice/painting/noise.h"

#include <cmath>

namespace imageservice {

namespace {

constexpr int Trains = 7;

/// Slopes of the water: swell and ever smaller waves that run over it in slightly other directions.
class Water
{
public:
    explicit Water(const Scene &scene)
        : m_dice(scene.dice("waves")), m_noise(m_dice.next()),
          m_wind(m_dice.between(-0.35F, 0.35F)),
          m_height(m_dice.between(0.75F, 1.15F) * (scene.clouds > 0.7F ? 1.35F : 1.0F))
    {
    }

    /// @p seen is the smallest length that fits a pixel there; shorter waves are left out.
    Noise::Slope at(float x, float z, float seen) const
    {
        Noise::Slope sum{0, 0, 0};
        float length = 1.25F;
        float strength = 0.055F * m_height;
        float angle = m_wind;
        for (int train = 0; train < Trains; ++train) {
            const float visible = std::clamp(length / seen - 0.6F, 0.0F, 1.0F);
            if (visible <= 0) {
                break;
            }
            add(sum, x, z, {length, strength * visible, angle, static_cast<float>(train) * 19.7F});
            length *= 0.52F;
            strength *= 0.93F;
            angle = -angle * 1.25F + 0.17F;
        }
        return sum;
    }

private:
    struct Train
    {
        float length;
        float strength;
        float angle;
        float offset;
    };

    void add(Noise::Slope &sum, float x, float z, const Train &train) const
    {
        const float cosine = 1 - train.angle * train.angle / 2;
        const float across = (x * cosine - z * train.angle) / train.length * 0.45F + train.offset;
        const float along = (x * train.angle + z * cosine) / train.length + train.offset;
        const auto [value, slopeAcross, slopeAlong] = m_noise.slopeAt(across, along);
        // Crests are sharper than troughs.
        const float sharp = 0.5F + value;
        const float height = train.strength * train.length;
        sum.value += height * (value * value * 0.5F + 0.5F * value);
        sum.alongX += train.strength * sharp
            * (0.45F * slopeAcross * cosine + slopeAlong * train.angle) * 1.6F;
        sum.alongY += train.strength * sharp
            * (slopeAlong * cosine - 0.45F * slopeAcross * train.angle) * 1.6F;
    }

    Dice m_dice;
    Noise m_noise;
    float m_wind;
    float m_height;
};

class WavePainter
{
public:
    WavePainter(Canvas &canvas, const Sky &sky)
        : m_canvas(canvas), m_sky(sky), m_water(sky.scene()),
          m_flicker(sky.scene().dice("flicker").next()), m_unit(1 / canvas.scale()),
          m_middle(canvas.aspect() / 2)
    {
        const Palette &palette = sky.scene().palette;
        m_deep = (palette.sky[3] * 0.28F + palette.ambient * 0.10F) * Color{0.45F, 0.85F, 0.95F};
        m_crest = (palette.sky[1] * 0.35F + palette.ambient * 0.3F) * Color{0.35F, 0.9F, 0.8F};
        m_glitter = palette.glow * 1.4F;
    }

    void paint()
    {
        const int first = static_cast<int>(std::ceil(m_sky.horizon() * m_canvas.scale()));
        for (int y = first; y < m_canvas.height(); ++y) {
            paintRow(y);
        }
    }

private:
    static constexpr float Altitude = 0.95F;

    /// Waves are several times as long across as they are deep: half the places tell them all.
    void paintRow(int y)
    {
        const int cell = std::max(m_canvas.height() / 1000, 1);
        const float down
            = std::max(static_cast<float>(y) * m_unit - m_sky.horizon(), 0.4F * m_unit);
        const float z = Altitude / down;
        const float seen = 1.3F * z * m_unit + 0.35F * z * z * m_unit / Altitude;
        // Waves too small to see still scatter the mirror image.
        const float unseen
            = smoothStep(0.01F, 0.6F, seen) * mix(0.015F, 0.06F, smoothStep(0, 0.03F, down));
        const auto surfaceAt = [&](int x) {
            const float canvasX = static_cast<float>(x) * m_unit;
            const auto waves = m_water.at((canvasX - m_middle) * z, z, seen);
            const auto flicker
                = m_flicker.slopeAt(canvasX * 55, static_cast<float>(y) * m_unit * 480);
            return Noise::Slope{waves.value, waves.alongX + 2 * unseen * flicker.alongX,
                waves.alongY + unseen * flicker.alongY};
        };
        Noise::Slope left = surfaceAt(0);
        for (int start = 0; start < m_canvas.width(); start += cell) {
            const Noise::Slope right = surfaceAt(start + cell);
            const int end = std::min(start + cell, m_canvas.width());
            for (int x = start; x < end; ++x) {
                const float share = static_cast<float>(x - start) / static_cast<float>(cell);
                m_canvas.at(x, y) = colorOf(
                    {mix(left.value, right.value, share), mix(left.alongX, right.alongX, share),
                        mix(left.alongY, right.alongY, share)},
                    static_cast<float>(x) * m_unit - m_middle, down, seen);
            }
            left = right;
        }
    }

    /// What the water shows where the view (@p viewX, -@p down, 1) meets it.
    Color colorOf(const Noise::Slope &surface, float viewX, float down, float seen) const
    {
        const auto [height, slopeX, slopeZ] = surface;
        // The view mirrored at the normal (-slopeX, 1, -slopeZ).
        const float against
            = (slopeX * viewX + down + slopeZ) / (1 + slopeX * slopeX + slopeZ * slopeZ);
        const float away = std::max(1 - 2 * against * slopeZ, 0.2F);
        // Of the waves too small to see we face the near sides, which mirror higher places.
        const float rough = 0.035F * smoothStep(0.02F, 1.2F, seen);
        // A side that would mirror the water is hidden behind one that mirrors the sky.
        const float mirrorY = m_sky.horizon() - std::abs((2 * against - down) / away) - rough;
        const float mirrorX = m_middle + (viewX - 2 * against * slopeX) / away;
        const float facing
            = std::clamp(against / std::sqrt(1 + down * down + viewX * viewX), 0.0F, 1.0F);
        const float grazing = (1 - facing) * (1 - facing);
        const float fresnel = 0.03F + 0.97F * grazing * grazing * (1 - facing);
        const float toSunX = mirrorX - m_sky.sunX();
        const float toSunY = mirrorY - m_sky.sunY();
        const float lobe = 1 / (1 + 500 * (toSunX * toSunX + 0.5F * toSunY * toSunY));
        const float crest
            = std::clamp(height * 9 - 0.1F, 0.0F, 1.0F) * smoothStep(0.03F, 0.3F, down);
        const Color mirrored = m_canvas.sample(mirrorX / m_unit, mirrorY / m_unit);
        return mix(mix(m_deep, m_crest, crest), mirrored, std::min(fresnel * 1.15F, 1.0F))
            + m_glitter * (lobe * lobe);
    }

    Canvas &m_canvas;
    const Sky &m_sky;
    Water m_water;
    Noise m_flicker;
    float m_unit;
    float m_middle;
    Color m_deep;
    Color m_crest;
    Color m_glitter;
};

} // namespace

void paintWaves(Canvas &canvas, const Sky &sky)
{
    WavePainter(canvas, sky).paint();
}

} // namespace imageservice
