#include "imageservice/painting/ridges.h"

#include "imageservice/painting/noise.h"

#include <cmath>

namespace imageservice {

namespace {

struct Ridge
{
    float nearness; ///< 0 for the farthest, 1 for the nearest.
    float offset;
};

float heightAt(const Noise &noise, const Ridges &ridges, const Ridge &ridge, float x)
{
    const float place = x / ridges.width + ridge.offset;
    const float relief = noise.ridged(place * 0.5F, ridge.offset, 6);
    const float large = 0.5F + 0.6F * noise.at(place * 0.23F, ridge.offset + 8);
    const float lower = mix(1.0F, 0.45F, ridge.nearness);
    if (ridges.scattered) {
        const float land = smoothStep(0.18F, 0.6F, noise.at(place * 0.3F, ridge.offset + 3));
        return ridges.height * lower * land * (0.35F + 0.65F * relief);
    }
    return ridges.height * lower * (0.25F + 0.55F * relief * large + 0.35F * large);
}

void paintRidge(
    Canvas &canvas, const Sky &sky, const Noise &noise, const Ridges &ridges, const Ridge &ridge)
{
    const Palette &palette = sky.scene().palette;
    const float scale = canvas.scale();
    const float foot = ridges.foot * scale;
    const Color land = palette.ambient * 0.22F + palette.sky[2] * 0.12F;
    const float air = mix(0.5F + 0.5F * ridges.air, ridges.air, ridge.nearness);
    for (int x = 0; x < canvas.width(); ++x) {
        const float canvasX = static_cast<float>(x) / scale;
        const float height = heightAt(noise, ridges, ridge, canvasX) * scale;
        if (height < 0.5F) {
            continue;
        }
        const Color haze = sky.haze(canvasX);
        const float top = foot - height;
        for (int y = std::max(static_cast<int>(top), 0);
             y < std::min(static_cast<int>(foot), canvas.height()); ++y) {
            const auto row = static_cast<float>(y);
            // Air lies thicker at the foot of a range.
            const float down = (row - top) / (ridges.height * scale);
            const float share
                = mix(air, 1.0F, (ridges.scattered ? 0.25F : 0.8F) * std::min(down, 1.0F));
            canvas.blend(x, y, mix(land, haze, share), std::min(row + 1 - top, 1.0F));
        }
    }
}

} // namespace

void paintRidges(Canvas &canvas, const Sky &sky, const Ridges &ridges)
{
    Dice dice = sky.scene().dice("ridges");
    const Noise noise(dice.next());
    for (int index = 0; index < ridges.count; ++index) {
        const float nearness = ridges.count > 1
            ? static_cast<float>(index) / static_cast<float>(ridges.count - 1)
            : 1;
        paintRidge(canvas, sky, noise, ridges, {nearness, dice.between(0, 200)});
    }
}

} // namespace imageservice
