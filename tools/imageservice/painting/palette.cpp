#include "imageservice/painting/palette.h"

#include <span>

namespace imageservice {

namespace {

/// A palette as one writes it down: 0xRRGGBB.
struct Sketch
{
    std::array<quint32, 4> sky;
    quint32 glow;
    float glowStrength;
    quint32 sunlight;
    float sunStrength;
    quint32 ambient;
    quint32 cloudLit;
    quint32 cloudShade;
};

constexpr std::array Dawns = {
    Sketch{{0xFFD9B4, 0xF3B3A6, 0xA79AC6, 0x56719F}, 0xFFB070, 0.55F, 0xFFC08A, 1.5F, 0x7C86B4,
        0xFFE0CC, 0xB596B0},
    Sketch{{0xFBE6C8, 0xF0C6B6, 0xB3B6D4, 0x6688B8}, 0xFFC890, 0.50F, 0xFFD0A0, 1.4F, 0x8594BC,
        0xFFF0E0, 0xBBA9BE},
    Sketch{{0xFFE0A8, 0xF6C48E, 0x9FBDBB, 0x4C86A0}, 0xFFC070, 0.55F, 0xFFCF90, 1.5F, 0x7F98A8,
        0xFFF0D0, 0xC0A898},
};

constexpr std::array Days = {
    Sketch{{0xDDEBF1, 0xAFD2EA, 0x6AA6DA, 0x2E6CB0}, 0xFFF4E0, 0.22F, 0xFFF1DC, 1.6F, 0x7FA3CC,
        0xFFFFFF, 0x9FB4CC},
    Sketch{{0xEFE9DA, 0xCBDDE2, 0x84B5D4, 0x417FB4}, 0xFFF0CC, 0.26F, 0xFFEBC8, 1.6F, 0x86A6C4,
        0xFFFBF2, 0xA9B3C0},
    Sketch{{0xE4F1E8, 0xB4DDDB, 0x60B0BF, 0x24708F}, 0xFFF4D8, 0.22F, 0xFFF0D4, 1.5F, 0x78A8B0,
        0xFFFFFA, 0x98B4B8},
};

constexpr std::array Sunsets = {
    Sketch{{0xFFC069, 0xF9835A, 0xA4557C, 0x3B3566}, 0xFF8A3C, 0.95F, 0xFF9A58, 1.7F, 0x6A5A8C,
        0xFFB884, 0x84507A},
    Sketch{{0xFFD684, 0xF6A254, 0xC66B50, 0x544470}, 0xFFA040, 0.90F, 0xFFB060, 1.7F, 0x7A6488,
        0xFFD09A, 0x9A6272},
    Sketch{{0xFF9A62, 0xE65A6A, 0x81407F, 0x2A2456}, 0xFF6A40, 0.95F, 0xFF8A60, 1.6F, 0x62508E,
        0xFF9C86, 0x6C3F74},
};

constexpr std::array Dusks = {
    Sketch{{0xF2A98E, 0xB57C9C, 0x605792, 0x20285A}, 0xE0806C, 0.40F, 0xC89098, 0.9F, 0x5C639C,
        0xE0A0A4, 0x5A5488},
    Sketch{{0xE992A0, 0x9170AC, 0x474E90, 0x161D48}, 0xD070A0, 0.40F, 0xB48CB4, 0.9F, 0x525CA0,
        0xD498B4, 0x4E4C86},
    Sketch{{0xBFD3D0, 0x6E96BA, 0x34548C, 0x14224C}, 0x90B8D0, 0.35F, 0x98B0D0, 0.9F, 0x4C6CA4,
        0xA8C0D4, 0x41598C},
};

constexpr std::array Nights = {
    Sketch{{0x33536E, 0x1D3759, 0x10224A, 0x070E29}, 0x8FB4E0, 0.16F, 0xA8C4F0, 0.40F, 0x2C4470,
        0x5C7CA0, 0x1A2C4C},
    Sketch{{0x3D5080, 0x253464, 0x161E47, 0x0A0F28}, 0x9CA8E8, 0.16F, 0xB0BCF4, 0.40F, 0x343F74,
        0x6878A8, 0x20284E},
    Sketch{{0x2A5C64, 0x17424F, 0x0C2640, 0x061126}, 0x8CD0D0, 0.14F, 0xA4D8E0, 0.38F, 0x285060,
        0x548890, 0x163444},
};

std::span<const Sketch> sketches(Daytime daytime)
{
    switch (daytime) {
    case Daytime::Dawn:
        return Dawns;
    case Daytime::Day:
        return Days;
    case Daytime::Sunset:
        return Sunsets;
    case Daytime::Dusk:
        return Dusks;
    case Daytime::Night:
        break;
    }
    return Nights;
}

} // namespace

Palette paletteFor(Daytime daytime, Dice dice, std::optional<Color> tint)
{
    const auto choices = sketches(daytime);
    const Sketch &sketch = choices[dice.below(static_cast<int>(choices.size()))];
    const auto color = [&](quint32 rgb, float strength) {
        const Color plain = Color::fromRgb(rgb);
        return tint ? tinted(plain, *tint, strength) : plain;
    };
    Palette palette;
    constexpr std::array<float, 4> SkyTint = {0.5F, 0.62F, 0.7F, 0.7F};
    for (size_t stop = 0; stop < palette.sky.size(); ++stop) {
        palette.sky[stop] = color(sketch.sky[stop], SkyTint[stop]);
    }
    palette.glow = color(sketch.glow, 0.4F) * sketch.glowStrength;
    palette.sunlight = color(sketch.sunlight, 0.45F) * sketch.sunStrength;
    palette.ambient = color(sketch.ambient, 0.7F);
    palette.cloudLit = color(sketch.cloudLit, 0.5F);
    palette.cloudShade = color(sketch.cloudShade, 0.75F);
    return palette;
}

} // namespace imageservice
