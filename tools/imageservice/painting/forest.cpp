#include "imageservice/painting/forest.h"

#include "imageservice/painting/conifer.h"
#include "imageservice/painting/field.h"
#include "imageservice/painting/noise.h"
#include "imageservice/painting/ridges.h"
#include "imageservice/painting/sky.h"

#include <cmath>

namespace imageservice {

namespace {

constexpr int Rows = 9;

/// One row of trees; nearness is 0 for the farthest, 1 for the nearest.
struct TreeRow
{
    float nearness;
    float foot; ///< Canvas height of the middle of its ground.
    float treeHeight;
    float air; ///< Share of haze before it.
};

class Forest
{
public:
    Forest(Canvas &canvas, const Sky &sky)
        : m_canvas(canvas), m_sky(sky), m_scene(sky.scene()), m_dice(m_scene.dice("forest")),
          m_noise(m_dice.next()), m_darkGrass(Color::fromRgb(m_scene.autumn ? 0x5A3A1C : 0x27361C)),
          m_grass(Color::fromRgb(m_scene.autumn ? 0x94602A : 0x4A5A2A)),
          m_clearing(mix(canvas.aspect() / 2, sky.sunX(), 0.6F))
    {
        for (int x = 0; x < canvas.width(); ++x) {
            m_haze.push_back(sky.haze(static_cast<float>(x) / canvas.scale()));
        }
    }

    void paint()
    {
        for (int index = 0; index < Rows; ++index) {
            const float nearness = static_cast<float>(index) / (Rows - 1);
            const TreeRow row{nearness, 0.56F + 0.42F * std::pow(nearness, 1.25F),
                0.05F + 0.62F * std::pow(nearness, 1.9F),
                std::pow(1 - nearness, 1.1F) * (0.72F + 0.25F * m_scene.mist)};
            paintGround(row);
            plant(row);
            if (index < Rows - 1) {
                paintMist(row);
            }
            if (index == Rows - 3) {
                paintRays();
            }
        }
    }

private:
    /// Ground is lower in the clearing, which leads the eye to the light.
    float footAt(const TreeRow &row, float x) const
    {
        const float aside = std::min(std::abs(x - m_clearing) * 1.1F, 1.0F);
        const float hills = m_noise.along(x * (2.2F - row.nearness) + row.nearness * 40, 3);
        return row.foot + 0.035F * hills - (0.10F - 0.06F * row.nearness) * aside * aside;
    }

    std::vector<float> feetOf(const TreeRow &row) const
    {
        std::vector<float> feet(m_canvas.width());
        for (int x = 0; x < m_canvas.width(); ++x) {
            feet[x] = footAt(row, static_cast<float>(x) / m_canvas.scale());
        }
        return feet;
    }

    /// The row of pixels at that height of the canvas, or its rim.
    int rowAt(float y) const
    {
        return std::clamp(static_cast<int>(y * m_canvas.scale()), 0, m_canvas.height());
    }

    Color groundColor(float x, float y) const
    {
        const float grain = m_noise.fractal(x * 30, y * 90, 3);
        const Color grass = mix(m_darkGrass, m_grass, 0.5F + grain);
        const Color surface
            = m_scene.snow ? Color{0.8F, 0.84F, 0.9F} * (0.9F + 0.2F * grain) : grass;
        return surface * (m_scene.palette.ambient * 0.75F + m_scene.palette.sunlight * 0.36F);
    }

    void paintGround(const TreeRow &row)
    {
        const float unit = 1 / m_canvas.scale();
        const float shade = 1 - (m_scene.snow ? 0.15F : 0.4F) * row.nearness;
        const auto feet = feetOf(row);
        const auto [highest, lowest] = std::minmax_element(feet.begin(), feet.end());
        for (int y = rowAt(*highest); y < rowAt(*lowest + 0.16F); ++y) {
            const float canvasY = static_cast<float>(y) * unit;
            for (int x = 0; x < m_canvas.width(); ++x) {
                const float cover = (canvasY - feet[x]) * m_canvas.scale() + 1;
                if (cover > 0) {
                    const Color color = groundColor(static_cast<float>(x) * unit, canvasY) * shade;
                    m_canvas.blend(x, y, mix(color, m_haze[x], row.air), std::min(cover, 1.0F));
                }
            }
        }
    }

    void plant(const TreeRow &row)
    {
        const float spacing = row.treeHeight * mix(0.20F, 0.30F, row.nearness);
        const int count = static_cast<int>(m_canvas.aspect() / spacing) + 2;
        for (int index = 0; index < count; ++index) {
            const float x = (static_cast<float>(index) + m_dice.between(-0.5F, 0.5F)) * spacing;
            const float aside = std::abs(x - m_clearing);
            const float opening = 0.10F + 0.34F * row.nearness;
            const float grown = smoothStep(opening * 0.45F, opening * 1.5F, aside);
            if (row.nearness > 0.3F && m_dice.unit() > 0.15F + grown) {
                continue;
            }
            paintTree(row, x, mix(0.35F, 1.0F, std::max(grown, 0.6F * (1 - row.nearness))));
        }
    }

    void paintTree(const TreeRow &row, float x, float growth)
    {
        const Palette &palette = m_scene.palette;
        const bool golden = m_scene.autumn && m_dice.chance(0.55F);
        const Color needles
            = Color::fromRgb(golden ? 0xB4702A : 0x22331F) * m_dice.between(0.75F, 1.2F);
        const Color haze = m_sky.haze(x);
        const float air = row.air;
        const float hill = 0.8F + 0.5F * m_noise.at(x * 2.5F, row.nearness * 30);
        const float height = row.treeHeight * growth * hill * m_dice.between(0.6F, 1.2F);
        const float dark = 1 - 0.5F * row.nearness;
        paintConifer(m_canvas,
            {x * m_canvas.scale(), (footAt(row, x) + 0.01F * row.nearness) * m_canvas.scale(),
                height * m_canvas.scale(), m_dice.between(0.15F, 0.22F),
                static_cast<quint32>(m_dice.next()),
                mix(needles * palette.ambient * (0.55F * dark), haze, air),
                mix(needles * (palette.sunlight * 0.8F + palette.ambient) * dark, haze, air),
                x < m_sky.sunX() ? 1.0F : -1.0F, m_scene.snow ? 0.85F : 0.0F,
                mix(palette.ambient * 0.8F + palette.sunlight * 0.25F, haze, air)});
    }

    /// Mist lies on the ground of a row and hides the feet of its trees.
    void paintMist(const TreeRow &row)
    {
        const float unit = 1 / m_canvas.scale();
        const float deep = 0.05F + 0.10F * row.nearness;
        const float thick = (0.25F + 0.75F * m_scene.mist) * (1 - 0.55F * row.nearness);
        const auto feet = feetOf(row);
        const auto [highest, lowest] = std::minmax_element(feet.begin(), feet.end());
        const Field::Extent extent{*highest - deep, *lowest + 2 * deep};
        const Field swathes(m_canvas, extent, 1 / 270.0F, [&](float x, float y) {
            return m_noise.fractal(x * 1.8F + row.nearness * 9, (y + row.foot) * 5, 3);
        });
        for (int y = rowAt(extent.top); y < rowAt(extent.bottom); ++y) {
            for (int x = 0; x < m_canvas.width(); ++x) {
                const float away = (static_cast<float>(y) * unit - feet[x]) / deep;
                const float shape = away < 0 ? smoothStep(-1, 0, away) : smoothStep(2, 0, away);
                const float swathe = std::clamp(0.6F + 1.1F * swathes.at(x, y), 0.0F, 1.0F);
                m_canvas.blend(x, y, m_haze[x], thick * shape * swathe);
            }
        }
    }

    /// Light that the mist shows on its way between the trees.
    void paintRays()
    {
        const bool low = m_scene.daytime != Daytime::Day && m_scene.daytime != Daytime::Night;
        const float strength = 0.9F * m_scene.mist * (low ? 1.0F : 0.3F);
        const float sunY = std::min(m_sky.sunY(), m_sky.horizon() - 0.2F);
        const Field rays(m_canvas, {0, 1}, 1 / 360.0F, [&](float x, float y) {
            const float dx = x - m_sky.sunX();
            const float dy = y - sunY;
            const float angle = std::atan2(dx, dy);
            const float beam = smoothStep(
                -0.05F, 0.55F, m_noise.at(angle * 9, 0.5F) + 0.5F * m_noise.at(angle * 23, 4.5F));
            const float distance = dx * dx + dy * dy;
            return beam * smoothStep(0, 0.25F, dy + 0.1F) / (1 + 9 * distance);
        });
        const Color light = m_scene.palette.glow * strength;
        for (int y = 0; y < m_canvas.height(); ++y) {
            Color *row = m_canvas.row(y);
            for (int x = 0; x < m_canvas.width(); ++x) {
                row[x] = row[x] + light * rays.at(x, y);
            }
        }
    }

    Canvas &m_canvas;
    const Sky &m_sky;
    const Scene &m_scene;
    Dice m_dice;
    Noise m_noise;
    Color m_darkGrass;
    Color m_grass;
    float m_clearing;
    std::vector<Color> m_haze; ///< For each column of pixels.
};

} // namespace

void paintForest(Canvas &canvas, const Scene &scene)
{
    const Sky sky(scene, canvas.aspect(), 0.58F);
    paintSky(canvas, sky);
    paintRidges(canvas, sky, {3, 0.60F, 0.30F, 0.5F, 0.45F + 0.3F * scene.mist, false});
    Forest(canvas, sky).paint();
}

} // namespace imageservice
