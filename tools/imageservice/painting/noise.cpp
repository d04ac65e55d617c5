#include "imageservice/painting/noise.h"

#include "imageservice/painting/dice.h"

#include <cmath>
#include <numbers>

namespace imageservice {

namespace {

struct Cell
{
    int whole;
    float part;
};

/// Faster than std::floor, which is a library call without SSE4.
Cell cellOf(float position)
{
    const int truncated = static_cast<int>(position);
    const int whole = truncated - static_cast<int>(position < static_cast<float>(truncated));
    return {whole, position - static_cast<float>(whole)};
}

float fade(float t)
{
    return t * t * t * (t * (t * 6 - 15) + 10);
}

float fadeSlope(float t)
{
    return 30 * t * t * (t * (t - 2) + 1);
}

} // namespace

Noise::Noise(quint64 seed) : m_lattice(static_cast<size_t>(Size) * Size)
{
    Dice dice(seed, "noise");
    for (int index = 0; index < Size; ++index) {
        const float angle = 2 * std::numbers::pi_v<float> * static_cast<float>(index) / Size;
        m_directions[index] = {std::cos(angle), std::sin(angle)};
    }
    for (size_t index = 0; index < m_lattice.size(); index += 8) {
        quint64 bits = dice.next();
        for (size_t offset = 0; offset < 8; ++offset, bits >>= 8U) {
            m_lattice[index + offset] = static_cast<quint8>(bits);
        }
    }
}

float Noise::at(float x, float y) const
{
    const auto [xi, xf] = cellOf(x);
    const auto [yi, yf] = cellOf(y);
    const float sx = fade(xf);
    const float top = corner(xi, yi, xf, yf);
    const float topRight = corner(xi + 1, yi, xf - 1, yf);
    const float bottom = corner(xi, yi + 1, xf, yf - 1);
    const float bottomRight = corner(xi + 1, yi + 1, xf - 1, yf - 1);
    const float upper = top + (topRight - top) * sx;
    const float lower = bottom + (bottomRight - bottom) * sx;
    return 1.41F * (upper + (lower - upper) * fade(yf));
}

Noise::Slope Noise::slopeAt(float x, float y) const
{
    const auto [xi, xf] = cellOf(x);
    const auto [yi, yf] = cellOf(y);
    const float sx = fade(xf);
    const float sy = fade(yf);
    const float a = lattice(xi, yi);
    const float b = static_cast<float>(lattice(xi + 1, yi)) - a;
    const float c = static_cast<float>(lattice(xi, yi + 1)) - a;
    const float d = static_cast<float>(lattice(xi + 1, yi + 1)) - a - b - c;
    constexpr float Scale = 1 / 255.0F;
    return {Scale * (a + b * sx + c * sy + d * sx * sy), Scale * fadeSlope(xf) * (b + d * sy),
        Scale * fadeSlope(yf) * (c + d * sx)};
}

float Noise::fractal(float x, float y, int octaves) const
{
    float sum = 0;
    float strength = 0.5F;
    for (int octave = 0; octave < octaves; ++octave, strength *= 0.5F) {
        sum += strength * at(x, y);
        // A turn between the octaves hides the lattice.
        const float turned = 1.6F * x - 1.2F * y + 17.3F;
        y = 1.2F * x + 1.6F * y + 41.7F;
        x = turned;
    }
    return sum * 1.6F;
}

float Noise::ridged(float x, float y, int octaves) const
{
    float sum = 0;
    float strength = 0.55F;
    float carried = 1;
    for (int octave = 0; octave < octaves; ++octave, strength *= 0.5F) {
        const float fold = 1 - std::abs(at(x, y));
        const float crest = fold * fold;
        sum += strength * crest * carried;
        carried = crest;
        const float turned = 1.6F * x - 1.2F * y + 17.3F;
        y = 1.2F * x + 1.6F * y + 41.7F;
        x = turned;
    }
    return sum;
}

float Noise::along(float x, int octaves) const
{
    float sum = 0;
    float strength = 0.6F;
    for (int octave = 0; octave < octaves; ++octave, strength *= 0.5F) {
        sum += strength * at(x, 0.37F + 7.0F * static_cast<float>(octave));
        x = x * 2.03F + 5.7F;
    }
    return sum * 1.4F;
}

} // namespace imageservice
