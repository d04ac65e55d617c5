#pragma once

#include "imageservice/painting/scene.h"

#include <optional>

namespace imageservice {

/// What a prompt asks for in words that the painter knows; the rest is left open.
struct Wishes
{
    std::optional<Motif> motif;
    std::optional<Daytime> daytime;
    std::optional<Color> tint;
    std::optional<float> clouds;
    std::optional<float> mist;
    bool snow = false;
    bool aurora = false;
    bool autumn = false;
    bool moon = false;
    bool water = false;
};

/// The first word of a kind decides; upper and lower case and plurals are alike.
Wishes wishesIn(const QString &prompt);

} // namespace imageservice
