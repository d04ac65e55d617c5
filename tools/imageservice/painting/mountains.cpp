#include "imageservice/painting/mountains.h"

#include "imageservice/painting/conifer.h"
#include "imageservice/painting/ground.h"
#include "imageservice/painting/lake.h"
#include "imageservice/painting/noise.h"

#include <cmath>

namespace imageservice {

namespace {

class Massif : public Ground
{
public:
    Massif(const Sky &sky, float valley)
        : m_scene(sky.scene()), m_dice(m_scene.dice("mountains")), m_noise(m_dice.next()),
          m_fine(m_dice.next()), m_offsetX(m_dice.between(-100, 100)),
          m_offsetZ(m_dice.between(-100, 100)), m_valley(valley),
          m_shore(m_dice.between(2.4F, 3.1F)), m_density(m_dice.between(0.27F, 0.40F)),
          m_height(m_dice.between(3.6F, 4.8F) * (m_scene.aurora ? 0.75F : 1.0F)),
          m_snowLine(m_scene.snow ? -0.8F : m_dice.between(0.7F, 1.2F)),
          m_sunX(sky.sunSide() * 0.82F),
          m_brush(Color::fromRgb(m_scene.autumn ? 0x5A3E1E : 0x2E4228)),
          m_meadow(Color::fromRgb(m_scene.autumn ? 0x8A6A30 : 0x4C5B30)),
          m_rock(Color::fromRgb(0x6E6862)), m_darkRock(Color::fromRgb(0x4A4A52))
    {
    }

    float height(float x, float z, float detail) const override
    {
        const float shore = m_shore + 0.8F * m_fine.at(x * 0.5F + 3, 1.5F);
        const float rise = smoothStep(shore - 0.6F, shore + 5.5F, z);
        const float path = (x - m_valley * z) / (0.5F + 0.10F * z);
        const float valley = 1 - 0.9F / (1 + path * path);
        return -0.04F + 0.1F * smoothStep(shore - 0.3F, shore + 0.8F, z)
            + rise * m_height * valley
            * eroded(x * m_density + m_offsetX, z * m_density + m_offsetZ, detail * m_density);
    }

    Color color(const GroundPoint &point) const override
    {
        const float grain = m_fine.fractal(point.x * 7, point.distance * 7 + point.height * 9, 3);
        const Color rock = mix(m_rock, m_darkRock, 0.5F + 0.8F * grain);
        const Color green = mix(m_brush, m_meadow, 0.5F + grain);
        const float vegetation = smoothStep(0.85F, 0.45F, point.height + 0.25F * grain)
            * smoothStep(0.45F, 0.7F, point.normalUp);
        const float snow
            = smoothStep(m_snowLine - 0.15F, m_snowLine + 0.35F, point.height + 0.5F * grain)
            * smoothStep(0.42F, 0.62F, point.normalUp + 0.12F * grain);
        const Color albedo = mix(mix(rock, green, vegetation), Color{0.86F, 0.89F, 0.94F}, snow);
        const float facing = std::max(
            point.normalX * m_sunX + point.normalUp * 0.42F - point.normalAway * 0.25F, 0.0F);
        const Palette &palette = m_scene.palette;
        return albedo
            * (palette.sunlight * (facing * point.sunlit * sunReaching(point.height))
                + palette.ambient * (0.35F + 0.65F * point.normalUp));
    }

    /// A low sun has left the valley when it still reaches the peaks.
    float sunReaching(float height) const
    {
        const bool low = m_scene.daytime == Daytime::Sunset || m_scene.daytime == Daytime::Dawn;
        return low ? 0.12F + 0.88F * smoothStep(0.1F, 0.75F, height) : 1;
    }

    bool isWooded(float x, float z) const
    {
        const float here = height(x, z, 0.02F);
        if (here < 0.008F || here > 0.62F + 0.2F * m_fine.at(x * 2, z * 2)) {
            return false;
        }
        return std::abs(height(x + 0.05F, z, 0.02F) - here) < 0.06F
            && m_fine.at(x * 0.9F + 20, z * 0.9F) + 0.5F * m_fine.at(x * 3, z * 3) > -0.2F;
    }

private:
    /// Fractal noise whose detail grows less on slopes, which leaves ridges sharp and valleys
    /// smooth.
    float eroded(float x, float z, float detail) const
    {
        float sum = 0;
        float strength = 0.5F;
        float size = 1;
        float slopeX = 0;
        float slopeZ = 0;
        for (int octave = 0; octave < 10 && size > detail; ++octave) {
            const auto [value, alongX, alongY] = m_noise.slopeAt(x, z);
            slopeX += alongX;
            slopeZ += alongY;
            sum += strength * value / (1 + slopeX * slopeX + slopeZ * slopeZ);
            strength *= 0.5F;
            size *= 0.5F;
            const float turned = 1.6F * x - 1.2F * z;
            z = 1.2F * x + 1.6F * z;
            x = turned;
        }
        return sum;
    }

    const Scene &m_scene;
    Dice m_dice;
    Noise m_noise;
    Noise m_fine;
    float m_offsetX;
    float m_offsetZ;
    float m_valley;
    float m_shore;
    float m_density; ///< Mountains per length.
    float m_height;
    float m_snowLine;
    float m_sunX;
    Color m_brush;
    Color m_meadow;
    Color m_rock;
    Color m_darkRock;
};

struct Place
{
    float x;
    float distance;
};

std::vector<Place> woods(
    const Scene &scene, const Camera &camera, const Massif &massif, float aspect)
{
    Dice dice = scene.dice("woods");
    std::vector<Place> places;
    for (int count = 0; count < 60000; ++count) {
        const float distance = mix(1.9F, 11.0F, std::pow(dice.unit(), 0.7F));
        const float x = camera.groundX(dice.between(-0.02F, 1.02F) * aspect, distance);
        if (massif.isWooded(x, distance)) {
            places.push_back({x, distance});
        }
    }
    std::sort(places.begin(), places.end(),
        [](const Place &a, const Place &b) { return a.distance > b.distance; });
    return places;
}

/// Trees on the slopes, painted strip by strip between what is behind and before them.
class Woods
{
public:
    Woods(
        Canvas &canvas, const Sky &sky, const Camera &camera, const Massif &massif, const Air &air)
        : m_canvas(canvas), m_sky(sky), m_scene(sky.scene()), m_camera(camera), m_massif(massif),
          m_air(air), m_dice(m_scene.dice("trees")),
          m_places(woods(m_scene, camera, massif, canvas.aspect()))
    {
    }

    /// Plants all trees beyond @p distance that do not stand yet.
    void plantTo(float distance)
    {
        for (; m_next < m_places.size() && m_places[m_next].distance > distance; ++m_next) {
            plant(m_places[m_next]);
        }
    }

    /// A few tall ones on the bank at our feet, to both sides of the view.
    void plantBank()
    {
        const float side = -m_sky.sunSide();
        for (int index = 0; index < 9; ++index) {
            const bool main = index < 6;
            const float inward = m_dice.unit() * m_dice.unit() * (main ? 0.36F : 0.2F);
            const float across = (main ? side : -side) < 0 ? inward : 1 - inward;
            const float height
                = m_dice.between(0.30F, 0.62F) * (main ? 1.0F : 0.6F) * (1 - 1.1F * inward);
            paintTree(
                {across * m_canvas.aspect(), 1.05F + 0.05F * m_dice.unit(), height}, {1, 0}, 0.55F);
        }
    }

private:
    void plant(const Place &place)
    {
        const auto [x, z] = place;
        const float height = m_massif.height(x, z, 0.02F);
        const float size = m_dice.between(0.035F, 0.075F) * m_camera.focal / z;
        paintTree({m_camera.xOf(x, z), m_camera.yOf(height, z), size},
            {m_air.clearness(height, z), z}, 0.8F * m_massif.sunReaching(height) + 0.2F);
    }

    struct Stand
    {
        float x;
        float foot;
        float height;
    };

    struct Sight
    {
        float clearness;
        float distance;
    };

    void paintTree(const Stand &stand, const Sight &sight, float sunlit)
    {
        const Palette &palette = m_scene.palette;
        const Color haze = m_air.color(m_sky.haze(stand.x), sight.distance);
        const float scale = m_canvas.scale();
        const bool golden = m_scene.autumn && m_dice.chance(0.5F);
        const Color needles
            = Color::fromRgb(golden ? 0xA8702A : 0x26361F) * m_dice.between(0.7F, 1.2F);
        paintConifer(m_canvas,
            {stand.x * scale, stand.foot * scale + 1, stand.height * scale,
                m_dice.between(0.16F, 0.24F), static_cast<quint32>(m_dice.next()),
                mix(haze, needles * palette.ambient * 0.5F, sight.clearness),
                mix(haze, needles * (palette.sunlight * sunlit + palette.ambient), sight.clearness),
                m_sky.sunSide(), m_scene.snow ? 0.9F : 0.0F,
                mix(haze, palette.ambient + palette.sunlight * (0.3F * sunlit), sight.clearness)});
    }

    Canvas &m_canvas;
    const Sky &m_sky;
    const Scene &m_scene;
    const Camera &m_camera;
    const Massif &m_massif;
    const Air &m_air;
    Dice m_dice;
    std::vector<Place> m_places;
    size_t m_next = 0;
};

} // namespace

void paintMountains(Canvas &canvas, const Scene &scene)
{
    Dice dice = scene.dice("view");
    const Camera camera{dice.between(0.57F, 0.66F), dice.between(0.2F, 0.3F),
        dice.between(1.15F, 1.4F), canvas.aspect() / 2};
    const Sky sky(scene, canvas.aspect(), camera.horizon);
    paintSky(canvas, sky);
    const Air air(sky, 0.014F + 0.022F * scene.mist, 0.11F * scene.mist);
    // The valley opens towards the sun, which would else stand behind a mountain.
    const Massif massif(sky, (sky.sunX() - camera.middle) / camera.focal);
    Woods trees(canvas, sky, camera, massif, air);
    const auto shore = paintGround(canvas, sky, camera, massif, air, {2.0F, 18},
        [&](float distance) { trees.plantTo(distance); });
    paintLake(canvas, sky, shore, Water::Calm);
    trees.plantBank();
}

} // namespace imageservice
