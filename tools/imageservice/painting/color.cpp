#include "imageservice/painting/color.h"

#include <cmath>

namespace imageservice {

namespace {

float linear(quint32 byte)
{
    const float value = static_cast<float>(byte & 0xFFU) / 255;
    return value <= 0.04045F ? value / 12.92F : std::pow((value + 0.055F) / 1.055F, 2.4F);
}

} // namespace

Color Color::fromRgb(quint32 rgb)
{
    return {linear(rgb >> 16U), linear(rgb >> 8U), linear(rgb)};
}

PerceivedColor perceived(Color color)
{
    const auto [r, g, b] = color;
    const float l = std::cbrt(0.4122214708F * r + 0.5363325363F * g + 0.0514459929F * b);
    const float m = std::cbrt(0.2119034982F * r + 0.6806995451F * g + 0.1073969566F * b);
    const float s = std::cbrt(0.0883024619F * r + 0.2817188376F * g + 0.6299787005F * b);
    return {0.2104542553F * l + 0.7936177850F * m - 0.0040720468F * s,
        1.9779984951F * l - 2.4285922050F * m + 0.4505937099F * s,
        0.0259040371F * l + 0.7827717662F * m - 0.8086757660F * s};
}

Color fromPerceived(const PerceivedColor &color)
{
    const float l
        = color.lightness + 0.3963377774F * color.greenToRed + 0.2158037573F * color.blueToYellow;
    const float m
        = color.lightness - 0.1055613458F * color.greenToRed - 0.0638541728F * color.blueToYellow;
    const float s
        = color.lightness - 0.0894841775F * color.greenToRed - 1.2914855480F * color.blueToYellow;
    const float l3 = l * l * l;
    const float m3 = m * m * m;
    const float s3 = s * s * s;
    return {std::max(0.0F, 4.0767416621F * l3 - 3.3077115913F * m3 + 0.2309699292F * s3),
        std::max(0.0F, -1.2684380046F * l3 + 2.6097574011F * m3 - 0.3413193965F * s3),
        std::max(0.0F, -0.0041960863F * l3 - 0.7034186147F * m3 + 1.7076147010F * s3)};
}

Color tinted(Color color, Color tint, float strength)
{
    PerceivedColor result = perceived(color);
    const PerceivedColor wanted = perceived(tint);
    // Very light and very dark colours cannot hold as much of a hue.
    const float room = 4 * result.lightness * (1 - std::min(result.lightness, 1.0F)) + 0.15F;
    const float share = std::min(room, 1.0F);
    result.greenToRed = mix(result.greenToRed, wanted.greenToRed * share, strength);
    result.blueToYellow = mix(result.blueToYellow, wanted.blueToYellow * share, strength);
    return fromPerceived(result);
}

} // namespace imageservice
