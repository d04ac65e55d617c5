#include "imageservice/painting/dunes.h"

#include "imageservice/painting/ground.h"
#include "imageservice/painting/noise.h"

#include <cmath>

namespace imageservice {

namespace {

class Sand : public Ground
{
public:
    explicit Sand(const Sky &sky)
        : m_scene(sky.scene()), m_dice(m_scene.dice("dunes")), m_noise(m_dice.next()),
          m_offset(m_dice.between(0, 200)), m_across(m_dice.between(0.6F, 0.95F) * -sky.sunSide()),
          m_along(m_dice.between(0.35F, 0.7F)), m_sunX(sky.sunSide()),
          m_sand(Color::fromRgb(m_dice.chance(0.5F) ? 0xD9A566 : 0xE2B98A))
    {
    }

    float height(float x, float z, float detail) const override
    {
        const float big = dune(x, z, {3.6F, 0.8F, 0}, detail);
        const float small = dune(x, z, {1.3F, 0.5F, 50}, detail);
        const float relief
            = 0.5F + 0.8F * smoothStep(-0.3F, 0.5F, m_noise.at(x * 0.12F + m_offset, z * 0.12F));
        const float rise = 0.5F + 0.04F * z;
        const float fine = detail < 0.01F ? 0.002F * m_noise.at(x * 6, z * 6) : 0;
        return 0.01F + relief * rise * (0.62F * big + 0.13F * small * (1 - 0.6F * big)) + fine;
    }

    Color color(const GroundPoint &point) const override
    {
        const float grain = m_noise.at(point.x * 3, point.distance * 3);
        const float ripple = ripples(point);
        const Color albedo = m_sand * (0.92F + 0.08F * grain);
        const float facing = std::max((point.normalX + ripple) * m_sunX * 0.86F
                + point.normalUp * 0.40F - point.normalAway * 0.12F,
            0.0F);
        const Palette &palette = m_scene.palette;
        return albedo
            * (palette.sunlight * (facing * point.sunlit)
                + palette.ambient * (0.3F + 0.5F * point.normalUp));
    }

private:
    struct Chain
    {
        float length; ///< From crest to crest.
        float wander;
        float salt;
    };

    /// Long slope to windward, short steep one to leeward, a crest between as sharp as @p detail
    /// lets it be seen.
    float dune(float x, float z, const Chain &chain, float detail) const
    {
        const float warp = chain.wander
            * m_noise.fractal(
                x * 0.42F / chain.length + m_offset + chain.salt, z * 0.42F / chain.length, 2);
        const float position = (m_across * x + m_along * z) / chain.length + 1.5F * warp + m_offset;
        const float part = position - std::floor(position);
        const float slope = part < 0.68F ? part / 0.68F : (1 - part) / 0.32F;
        const float bend = std::min(3 * detail / chain.length, 0.2F);
        const float over = std::max(slope - 1 + bend, 0.0F);
        const float eased = slope - over * over / (2 * bend);
        return eased * (0.35F + 0.65F * eased);
    }

    /// What the wind draws in the sand; only near the camera is it wider than a pixel.
    float ripples(const GroundPoint &point) const
    {
        const float fade = smoothStep(5.5F, 1.5F, point.distance);
        if (fade <= 0) {
            return 0;
        }
        const float warp = 0.10F * m_noise.fractal(point.x * 2.2F, point.distance * 2.2F, 3);
        return fade * 0.08F
            * std::sin((m_across * point.x + m_along * point.distance + warp) * 300);
    }

    const Scene &m_scene;
    Dice m_dice;
    Noise m_noise;
    float m_offset;
    float m_across;
    float m_along;
    float m_sunX;
    Color m_sand;
};

} // namespace

void paintDunes(Canvas &canvas, const Scene &scene)
{
    const Sky sky(scene, canvas.aspect(), 0.50F);
    paintSky(canvas, sky);
    const Camera camera{0.50F, 1.15F, 1.2F, canvas.aspect() / 2};
    const Sand sand(sky);
    const Air air(sky, 0.02F + 0.03F * scene.mist, 0.02F);
    paintGround(canvas, sky, camera, sand, air, {0.9F, 30});
}

} // namespace imageservice
