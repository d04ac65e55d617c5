#include "imageservice/painting/stars.h"

#include "imageservice/painting/field.h"
#include "imageservice/painting/noise.h"

#include <cmath>

namespace imageservice {

namespace {

constexpr std::array StarColors = {0xCFDDFFU, 0xFFFFFFU, 0xFFF1DDU, 0xFFDDB8U, 0xDDE8FFU};

struct Star
{
    float x;
    float y;
    float radius;
    Color light;
};

void paintStar(Canvas &canvas, const Star &star)
{
    const int reach = static_cast<int>(std::ceil(star.radius * 3));
    const int left = static_cast<int>(star.x) - reach;
    const int top = static_cast<int>(star.y) - reach;
    const float sharpness = 1 / (star.radius * star.radius);
    for (int y = top; y <= top + 2 * reach; ++y) {
        for (int x = left; x <= left + 2 * reach; ++x) {
            const float dx = static_cast<float>(x) - star.x;
            const float dy = static_cast<float>(y) - star.y;
            canvas.add(x, y, star.light * std::exp(-sharpness * (dx * dx + dy * dy)));
        }
    }
}

void paintGalaxy(Canvas &canvas, const Sky &sky)
{
    Dice dice = sky.scene().dice("galaxy");
    const Noise noise(dice.next());
    const float tilt = dice.between(0.35F, 0.75F) * (dice.chance(0.5F) ? 1.0F : -1.0F);
    const float middle = canvas.aspect() * dice.between(0.35F, 0.65F);
    const float unit = 1 / canvas.scale();
    const int rows = static_cast<int>(sky.horizon() * canvas.scale());
    const Field band(canvas, {0, sky.horizon()}, 1 / 300.0F, [&](float canvasX, float canvasY) {
        const float x = canvasX - middle;
        const float y = canvasY - 0.25F;
        const float across = (x * tilt + y) / std::sqrt(1 + tilt * tilt);
        const float wander = 0.07F * noise.fractal(x * 1.7F, y * 1.7F, 3);
        const float shape = std::exp(-std::pow((across + wander) / 0.13F, 2.0F));
        const float dust = smoothStep(
            -0.15F, 0.5F, noise.fractal(x * 5, y * 5 + 9, 5) + 2.2F * std::abs(across + wander));
        return shape * (0.35F + 0.65F * dust);
    });
    const Color light = Color::fromRgb(0x9FB4EC) * (0.10F * sky.scene().stars);
    for (int y = 0; y < rows; ++y) {
        const float fade = smoothStep(0, 0.3F, sky.horizon() - static_cast<float>(y) * unit);
        for (int x = 0; x < canvas.width(); ++x) {
            canvas.at(x, y) = canvas.at(x, y) + light * (fade * band.at(x, y));
        }
    }
}

} // namespace

void paintStars(Canvas &canvas, const Sky &sky)
{
    const float amount = sky.scene().stars;
    if (amount <= 0) {
        return;
    }
    if (amount > 0.6F) {
        paintGalaxy(canvas, sky);
    }
    Dice dice = sky.scene().dice("stars");
    const int count = static_cast<int>(1500 * amount * canvas.aspect());
    for (int index = 0; index < count; ++index) {
        const float x = dice.unit();
        const float y = dice.unit() * sky.horizon();
        // Few are bright: each step down in brightness has several times as many stars.
        const float brightness = std::pow(dice.unit(), 7.0F);
        const Color color
            = Color::fromRgb(StarColors[dice.below(static_cast<int>(StarColors.size()))]);
        const float fade = smoothStep(0, 0.35F, sky.horizon() - y) * (0.3F + 0.7F * amount);
        const float wanted = canvas.scale() * (0.00045F + 0.00085F * brightness);
        const float radius = std::max(wanted, 0.6F);
        // A star that cannot be as small as it should be is fainter instead.
        const float thinned = wanted * wanted / (radius * radius);
        paintStar(canvas,
            {x * static_cast<float>(canvas.width()), y * canvas.scale(), radius,
                color * (fade * thinned * (0.10F + dice.unit() * 0.25F + 1.6F * brightness))});
    }
}

} // namespace imageservice
