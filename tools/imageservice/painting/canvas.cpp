#include "imageservice/painting/canvas.h"

#include <array>
#include <cmath>

namespace imageservice {

namespace {

constexpr int CurveSteps = 8192;
constexpr float CurveEnd = 4;

/// Screens cannot show more than 1: what is brighter is bent into the last part below it.
float shoulder(float light)
{
    constexpr float Knee = 0.62F;
    if (light <= Knee) {
        return light;
    }
    const float over = (light - Knee) / (1 - Knee);
    return Knee + (1 - Knee) * (1 - std::exp(-over));
}

quint16 encoded(float light)
{
    const float value = shoulder(light);
    const float curved
        = value <= 0.0031308F ? 12.92F * value : 1.055F * std::pow(value, 1 / 2.4F) - 0.055F;
    return static_cast<quint16>(curved * 255 * 128);
}

/// Light to 1/128 of a byte. The square root spreads the entries as the eye does.
std::array<quint16, CurveSteps + 1> developingCurve()
{
    std::array<quint16, CurveSteps + 1> curve{};
    for (int step = 0; step <= CurveSteps; ++step) {
        const float root = static_cast<float>(step) / CurveSteps;
        curve[step] = encoded(root * root * CurveEnd);
    }
    return curve;
}

/// Two throws added, as grain whose strength does not depend on the colour below it.
quint32 grain(quint32 &state)
{
    state ^= state << 13U;
    state ^= state >> 17U;
    state ^= state << 5U;
    return (state & 0x7FU) + ((state >> 8U) & 0x7FU);
}

} // namespace

Canvas::Canvas(QSize size)
    : m_width(size.width()), m_height(size.height()),
      m_pixels(std::make_unique_for_overwrite<Color[]>(static_cast<size_t>(m_width) * m_height))
{
}

Color Canvas::sample(float x, float y) const
{
    x = std::clamp(x, 0.0F, static_cast<float>(m_width - 1));
    y = std::clamp(y, 0.0F, static_cast<float>(m_height - 1));
    const int left = std::min(static_cast<int>(x), m_width - 2);
    const int top = std::min(static_cast<int>(y), m_height - 2);
    const float dx = x - static_cast<float>(left);
    const Color *upper = row(top) + left;
    const Color *lower = row(top + 1) + left;
    return mix(
        mix(upper[0], upper[1], dx), mix(lower[0], lower[1], dx), y - static_cast<float>(top));
}

void Canvas::blend(int x, int y, Color color, float share)
{
    if (x >= 0 && x < m_width && y >= 0 && y < m_height) {
        Color &pixel = at(x, y);
        pixel = mix(pixel, color, share);
    }
}

void Canvas::add(int x, int y, Color light)
{
    if (x >= 0 && x < m_width && y >= 0 && y < m_height) {
        Color &pixel = at(x, y);
        pixel = pixel + light;
    }
}

QImage Canvas::developed(quint64 seed) const
{
    static const auto curve = developingCurve();
    const auto byte = [](float light, quint32 dither) {
        const float root = std::sqrt(std::clamp(light, 0.0F, CurveEnd) / CurveEnd);
        const quint32 value = curve[static_cast<size_t>(root * CurveSteps)] + dither;
        return std::min(value > 63 ? (value - 63) >> 7U : 0U, 255U);
    };
    QImage image(m_width, m_height, QImage::Format_RGB32);
    auto state = static_cast<quint32>(seed | 1U);
    for (int y = 0; y < m_height; ++y) {
        const Color *from = row(y);
        auto *to = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < m_width; ++x) {
            const quint32 dither = grain(state);
            to[x] = 0xFF000000U | byte(from[x].red, dither) << 16U
                | byte(from[x].green, dither) << 8U | byte(from[x].blue, dither);
        }
    }
    return image;
}

} // namespace imageservice
