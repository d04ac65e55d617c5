#pragma once

#include "imageservice/painting/color.h"
#include "imageservice/painting/dice.h"

#include <array>
#include <optional>

namespace imageservice {

enum class Daytime { Dawn, Day, Sunset, Dusk, Night };

/// The light of a scene: what the sky looks like and what reaches the ground.
struct Palette
{
    std::array<Color, 4> sky; ///< From the horizon to the zenith.
    Color glow; ///< Around the sun or moon, added to the sky.
    Color sunlight; ///< On what faces the sun.
    Color ambient; ///< From the whole sky.
    Color cloudLit;
    Color cloudShade;
};

/// One of several palettes of that time of day, drawn towards @p tint where there is one.
Palette paletteFor(Daytime daytime, Dice dice, std::optional<Color> tint);

} // namespace imageservice
