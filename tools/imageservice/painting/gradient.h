#pragma once

#include "imageservice/painting/color.h"

#include <array>
#include <span>

namespace imageservice {

/// A run of colours from 0 to 1 in steps that look even; clamped outside.
class Gradient
{
public:
    struct Stop
    {
        float at;
        Color color;
    };

    /// @p stops in rising order, at least one.
    explicit Gradient(std::span<const Stop> stops);

    Color at(float position) const;

private:
    static constexpr int Steps = 512;
    std::array<Color, Steps + 2> m_colors;
};

} // namespace imageservice
