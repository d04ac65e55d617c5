#pragma once

#include <QtGlobal>

#include <algorithm>

namespace imageservice {

/// Linear light, so that mixing and adding behave as light does. 1 is the brightest that a screen
/// shows; a canvas may hold more until it is developed.
struct Color
{
    float red = 0;
    float green = 0;
    float blue = 0;

    /// From the usual 0xRRGGBB, which is not linear.
    static Color fromRgb(quint32 rgb);
};

inline Color operator+(Color a, Color b)
{
    return {a.red + b.red, a.green + b.green, a.blue + b.blue};
}

inline Color operator-(Color a, Color b)
{
    return {a.red - b.red, a.green - b.green, a.blue - b.blue};
}

inline Color operator*(Color a, Color b)
{
    return {a.red * b.red, a.green * b.green, a.blue * b.blue};
}

inline Color operator*(Color a, float factor)
{
    return {a.red * factor, a.green * factor, a.blue * factor};
}

inline Color mix(Color a, Color b, float share)
{
    return a + (b - a) * share;
}

inline float mix(float a, float b, float share)
{
    return a + (b - a) * share;
}

inline float luminance(Color color)
{
    return 0.2126F * color.red + 0.7152F * color.green + 0.0722F * color.blue;
}

/// 0 below @p low, 1 above @p high, and a soft passage between them.
inline float smoothStep(float low, float high, float value)
{
    const float t = std::clamp((value - low) / (high - low), 0.0F, 1.0F);
    return t * t * (3 - 2 * t);
}

/// A colour in Oklab, where equal steps look equal and hue can be turned without changing
/// lightness.
struct PerceivedColor
{
    float lightness = 0;
    float greenToRed = 0;
    float blueToYellow = 0;
};

PerceivedColor perceived(Color color);
Color fromPerceived(const PerceivedColor &color);

/// @p color with its hue drawn towards that of @p tint; the lightness stays.
Color tinted(Color color, Color tint, float strength);

} // namespace imageservice
