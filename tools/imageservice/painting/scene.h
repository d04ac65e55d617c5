#pragma once

#include "imageservice/painting/palette.h"

#include <QString>

namespace imageservice {

enum class Motif { Mountains, Sea, Dunes, City, Forest };

/// Everything that the words of a prompt decide about its picture. What they leave open is drawn
/// from the seed, so each prompt has one picture of its own.
struct Scene
{
    quint64 seed = 0;
    Motif motif = Motif::Mountains;
    Daytime daytime = Daytime::Day;
    bool snow = false;
    bool aurora = false;
    bool autumn = false;
    bool moon = false;
    float clouds = 0; ///< Share of the sky, 0 to 1.
    float mist = 0; ///< 0 clear, 1 thick.
    float stars = 0; ///< 0 none, 1 a clear night.
    float sunAcross = 0.5F; ///< Where the sun or moon stands, 0 to 1 of the width.
    float sunUp = 0.1F; ///< Above the horizon, in canvas heights.
    Palette palette;

    /// A stream of chances for one purpose.
    Dice dice(std::string_view purpose) const { return {seed, purpose}; }
};

Scene sceneFor(const QString &prompt, const QString &model);

} // namespace imageservice
