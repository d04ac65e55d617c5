#include "imageservice/painting/city.h"

#include "imageservice/painting/building.h"
#include "imageservice/painting/lake.h"
#include "imageservice/painting/sky.h"

#include <cmath>

namespace imageservice {

namespace {

constexpr float Waterline = 0.735F;
constexpr std::array Lamps = {0xFFC27AU, 0xFFD9A0U, 0xFFE8C8U, 0xFFB066U, 0xDCE8FFU};
constexpr std::array Neons = {0x4AD8FFU, 0xFF5AA8U, 0x8A6CFFU, 0xFFD24AU, 0x54FFB8U};

struct Quarter
{
    float nearness; ///< 0 for the farthest row of buildings, 1 for the nearest.
    float lowest;
    float highest;
    float widest;
};

class City
{
public:
    City(Canvas &canvas, const Sky &sky)
        : m_canvas(canvas), m_sky(sky), m_scene(sky.scene()), m_dice(m_scene.dice("city")),
          m_centre(canvas.aspect() * m_dice.between(0.3F, 0.7F)),
          m_night(m_scene.daytime == Daytime::Night  ? 1.0F
                  : m_scene.daytime == Daytime::Dusk ? 0.8F
                  : m_scene.daytime == Daytime::Day  ? 0.06F
                                                     : 0.4F)
    {
    }

    void paint()
    {
        paintGlow();
        constexpr std::array Quarters
            = {Quarter{0, 0.05F, 0.20F, 0.05F}, Quarter{0.33F, 0.06F, 0.34F, 0.06F},
                Quarter{0.66F, 0.05F, 0.44F, 0.075F}, Quarter{1, 0.03F, 0.30F, 0.09F}};
        for (const Quarter &quarter : Quarters) {
            build(quarter);
            paintVeil(quarter);
        }
        paintQuay();
    }

private:
    /// What the lamps of the city do to the air above it.
    void paintGlow()
    {
        const Color warm
            = Color::fromRgb(0xFF9A5C) * (0.26F * m_night) + m_scene.palette.sky[0] * 0.12F;
        const float unit = 1 / m_canvas.scale();
        for (int y = 0; y < static_cast<int>(Waterline * m_canvas.scale()); ++y) {
            Color *row = m_canvas.row(y);
            const float up = (Waterline - static_cast<float>(y) * unit) / 0.26F;
            for (int x = 0; x < m_canvas.width(); ++x) {
                const float aside = (static_cast<float>(x) * unit - m_centre) / 0.75F;
                row[x]
                    = row[x] + warm * (1 / ((1 + up * up) * (1 + up * up) * (1 + aside * aside)));
            }
        }
    }

    void build(const Quarter &quarter)
    {
        float x = -0.05F;
        while (x < m_canvas.aspect() + 0.05F) {
            const float width = m_dice.between(0.35F, 1.0F) * quarter.widest;
            const float centre = std::exp(-std::pow((x - m_centre) / 0.5F, 2.0F));
            const float tall
                = std::pow(m_dice.unit(), mix(2.6F, 1.3F, centre)) * (0.45F + 0.75F * centre);
            raise(quarter, x, width, mix(quarter.lowest, quarter.highest, tall));
            x += width * m_dice.between(0.75F, 1.25F);
        }
    }

    Color wall(const Quarter &quarter, float x, float lightness) const
    {
        const Palette &palette = m_scene.palette;
        const float day = 1 - m_night;
        const Color stone = Color::fromRgb(0x5C6474) * lightness;
        const Color lit = stone
            * (palette.ambient * (0.22F + 0.5F * day) + palette.sunlight * (0.08F + 0.4F * day));
        return mix(m_sky.haze(x) + Color::fromRgb(0xFF9A5C) * (0.05F * m_night), lit,
            0.35F + 0.6F * quarter.nearness);
    }

    void raise(const Quarter &quarter, float x, float width, float height)
    {
        const float scale = m_canvas.scale();
        const float lightness = m_dice.between(0.5F, 1.1F);
        const float grain = m_dice.between(0.8F, 1.3F) * mix(0.6F, 1.0F, quarter.nearness);
        const Color high = wall(quarter, x, lightness);
        const Color street
            = Color::fromRgb(0xFFA860) * (0.05F * m_night * (0.4F + quarter.nearness));
        Block block{x * scale, (x + width) * scale, (Waterline - height) * scale, Waterline * scale,
            high + street, high, std::max(0.0042F * grain * scale, 2.5F),
            std::max(0.0062F * grain * scale, 3.5F),
            (0.25F * m_night + 0.75F * m_night * m_night) * m_dice.between(0.15F, 0.5F),
            mix(0.7F, 1.6F, quarter.nearness),
            Color::fromRgb(Lamps[m_dice.below(static_cast<int>(Lamps.size()))]),
            static_cast<quint32>(m_dice.next())};
        const bool tower = height > 0.17F;
        const int steps = tower ? m_dice.below(3) : 0;
        paintBlock(m_canvas, block);
        for (int step = 0; step < steps; ++step) {
            const float inset = (block.right - block.left) * m_dice.between(0.1F, 0.2F);
            block.bottom = block.top + 1;
            block.left += inset;
            block.right -= inset;
            block.top -= height * scale * m_dice.between(0.06F, 0.16F);
            paintBlock(m_canvas, block);
        }
        crown(quarter, block, tower);
    }

    void crown(const Quarter &quarter, const Block &block, bool tower)
    {
        if (!tower) {
            return;
        }
        const float scale = m_canvas.scale();
        const float middle = (block.left + block.right) / 2;
        if (m_dice.chance(0.4F)) {
            const Color neon = Color::fromRgb(Neons[m_dice.below(static_cast<int>(Neons.size()))]);
            const float thick = std::max(0.0022F * scale, 1.0F);
            fill(block.left, block.right, block.top, block.top + thick,
                neon * (1.5F * m_night * (0.4F + quarter.nearness)));
        }
        if (m_dice.chance(0.5F)) {
            const float tip = block.top - scale * m_dice.between(0.02F, 0.07F);
            const float half = std::max(0.0007F * scale, 0.5F);
            fill(middle - half, middle + half, tip, block.top, block.high);
            fill(middle - 2 * half, middle + 2 * half, tip - 2 * half, tip + 2 * half,
                Color{2.2F, 0.12F, 0.08F} * m_night);
        }
    }

    void fill(float left, float right, float top, float bottom, Color color)
    {
        for (int y = static_cast<int>(top); y <= static_cast<int>(bottom); ++y) {
            const float rows = std::min(static_cast<float>(y) + 1, bottom)
                - std::max(static_cast<float>(y), top);
            for (int x = static_cast<int>(left); x <= static_cast<int>(right); ++x) {
                const float columns = std::min(static_cast<float>(x) + 1, right)
                    - std::max(static_cast<float>(x), left);
                m_canvas.blend(
                    x, y, color, std::clamp(rows, 0.0F, 1.0F) * std::clamp(columns, 0.0F, 1.0F));
            }
        }
    }

    /// Lit air between this row of buildings and the next.
    void paintVeil(const Quarter &quarter)
    {
        const Color warm = Color::fromRgb(0xFF9E62) * (0.10F * m_night);
        const float unit = 1 / m_canvas.scale();
        const float thick = (1 - quarter.nearness) * (0.35F + 0.4F * m_scene.mist);
        const int first = static_cast<int>((Waterline - 0.3F) * m_canvas.scale());
        const int last = static_cast<int>(Waterline * m_canvas.scale());
        for (int y = first; y < last; ++y) {
            const float up = (Waterline - static_cast<float>(y) * unit) / 0.3F;
            const float share = thick * (1 - up) * (1 - up);
            Color *row = m_canvas.row(y);
            for (int x = 0; x < m_canvas.width(); ++x) {
                const Color air = m_sky.haze(static_cast<float>(x) * unit) * 0.8F + warm;
                row[x] = mix(row[x], air, share);
            }
        }
    }

    void paintQuay()
    {
        const float scale = m_canvas.scale();
        const float width = static_cast<float>(m_canvas.width());
        const float edge = Waterline * scale;
        fill(0, width, edge - 0.006F * scale, edge, wall({1, 0, 0, 0}, 0, 0.35F));
        const float radius = std::max(0.0011F * scale, 0.7F);
        for (float x = 0.008F * scale; x < width; x += 0.019F * scale) {
            fill(x - radius, x + radius, edge - 0.009F * scale - radius,
                edge - 0.009F * scale + radius, Color{3.0F, 1.9F, 0.9F} * m_night);
        }
    }

    Canvas &m_canvas;
    const Sky &m_sky;
    const Scene &m_scene;
    Dice m_dice;
    float m_centre;
    float m_night;
};

} // namespace

void paintCity(Canvas &canvas, const Scene &scene)
{
    const Sky sky(scene, canvas.aspect(), Waterline);
    paintSky(canvas, sky);
    City(canvas, sky).paint();
    const std::vector<float> shore(canvas.width(), Waterline * canvas.scale());
    paintLake(canvas, sky, shore, Water::Rippled);
}

} // namespace imageservice
