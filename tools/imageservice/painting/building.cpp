#include "imageservice/painting/building.h"

#include <cmath>

namespace imageservice {

namespace {

float chance(quint32 value)
{
    value ^= value >> 16U;
    value *= 0x7FEB352DU;
    value ^= value >> 15U;
    value *= 0x846CA68BU;
    value ^= value >> 16U;
    return static_cast<float>(value >> 8U) / 16777216.0F;
}

/// Share of the pixel from @p position to the next that lies in the opening of its window.
float opening(float position, float size, float gap)
{
    const float begin = std::floor(position / size) * size + size * gap;
    const float end = begin + size * (1 - 2 * gap);
    return std::clamp(std::min(position + 1, end) - std::max(position, begin), 0.0F, 1.0F);
}

/// Light behind one window; whole storeys are lit or dark more often than chance would have it.
Color lightBehind(const Block &block, quint32 column, quint32 storey)
{
    const float floorMood = chance(block.tenants + 977 * storey);
    const float here = chance(block.tenants ^ (column * 2246822519U + storey * 3266489917U));
    const float share = block.litShare * (floorMood > 0.86F ? 2.2F : 0.45F + floorMood);
    if (here > share) {
        return {0.012F, 0.014F, 0.02F};
    }
    const float strength
        = 0.25F + 1.3F * std::pow(chance(block.tenants + column * 131 + storey * 7817), 2.2F);
    const Color cool = Color{0.75F, 0.86F, 1.0F};
    const Color lamp = mix(block.lamps, cool, here < 0.12F * share ? 0.8F : 0.0F);
    return lamp * (strength * block.brightness);
}

} // namespace

void paintBlock(Canvas &canvas, const Block &block)
{
    const int firstRow = std::max(static_cast<int>(block.top), 0);
    const int lastRow = std::min(static_cast<int>(block.bottom), canvas.height() - 1);
    const int firstColumn = std::max(static_cast<int>(block.left), 0);
    const int lastColumn = std::min(static_cast<int>(block.right), canvas.width() - 1);
    const float margin = block.windowWidth * 0.6F;
    for (int y = firstRow; y <= lastRow; ++y) {
        const float down = static_cast<float>(y) - block.top;
        const float rowCover = std::clamp(down + 1, 0.0F, 1.0F);
        const float share = std::clamp(down / (block.bottom - block.top), 0.0F, 1.0F);
        const Color wall = mix(block.high, block.low, share * share);
        const float inStorey
            = down < block.windowHeight ? 0 : opening(down, block.windowHeight, 0.24F);
        const auto storey = static_cast<quint32>(std::max(down, 0.0F) / block.windowHeight);
        for (int x = firstColumn; x <= lastColumn; ++x) {
            const float across = static_cast<float>(x) - block.left;
            const float cover
                = std::min({across + 1, block.right - static_cast<float>(x), 1.0F}) * rowCover;
            // The corner nearest to us catches a little more light than the far side.
            Color color = wall * (1.12F - 0.3F * across / (block.right - block.left));
            if (inStorey > 0 && across > margin && static_cast<float>(x) + margin < block.right) {
                const auto column = static_cast<quint32>((across - margin) / block.windowWidth);
                const float open = inStorey * opening(across - margin, block.windowWidth, 0.2F);
                color = mix(color, lightBehind(block, column, storey) + color * 0.5F, open);
            }
            canvas.blend(x, y, color, std::max(cover, 0.0F));
        }
    }
}

} // namespace imageservice
