#include "imageservice/painting/luminaries.h"

#include "imageservice/painting/noise.h"

#include <cmath>

namespace imageservice {

namespace {

template <typename Shade>
void paintDisc(Canvas &canvas, const Sky &sky, float radius, const Shade &shade)
{
    const float cx = sky.sunX() * canvas.scale();
    const float cy = sky.sunY() * canvas.scale();
    const float r = radius * canvas.scale();
    for (int y = static_cast<int>(cy - r) - 1; y <= static_cast<int>(cy + r) + 1; ++y) {
        for (int x = static_cast<int>(cx - r) - 1; x <= static_cast<int>(cx + r) + 1; ++x) {
            const float dx = static_cast<float>(x) - cx;
            const float dy = static_cast<float>(y) - cy;
            const float cover = std::clamp(r - std::sqrt(dx * dx + dy * dy) + 0.5F, 0.0F, 1.0F);
            if (cover > 0) {
                canvas.blend(x, y, shade(dx / r, dy / r), cover);
            }
        }
    }
}

void paintSun(Canvas &canvas, const Sky &sky)
{
    const Color rim = sky.scene().palette.glow * 0.9F + sky.scene().palette.sky[0] * 0.9F;
    const Color heart = rim + Color{1.1F, 0.95F, 0.7F};
    paintDisc(canvas, sky, 0.034F, [&](float dx, float dy) {
        // Its lower part shines through more air.
        return mix(heart, rim * 1.25F, smoothStep(-0.6F, 1.3F, dy + 0.3F * (dx * dx + dy * dy)));
    });
}

void paintMoon(Canvas &canvas, const Sky &sky)
{
    Dice dice = sky.scene().dice("moon");
    const Noise noise(dice.next());
    const Color bright = Color::fromRgb(0xFFF8E8) * 1.25F;
    const Color dark = Color::fromRgb(0xB9C0CC) * 0.8F;
    paintDisc(canvas, sky, 0.036F, [&](float dx, float dy) {
        const float seas = smoothStep(-0.05F, 0.35F, noise.fractal(dx * 1.3F + 3, dy * 1.3F, 5));
        const float round = 1 - 0.22F * std::pow(dx * dx + dy * dy, 2.0F);
        return mix(bright, dark, 0.75F * seas) * round;
    });
}

} // namespace

void paintLuminaries(Canvas &canvas, const Sky &sky)
{
    const Scene &scene = sky.scene();
    if (scene.daytime == Daytime::Night) {
        if (scene.moon) {
            paintMoon(canvas, sky);
        }
    } else if (scene.daytime == Daytime::Sunset || scene.daytime == Daytime::Dawn) {
        paintSun(canvas, sky);
    }
}

} // namespace imageservice
