#pragma once

#include "imageservice/painting/sky.h"

namespace imageservice {

/// Ranges of hills or mountains so far away that only their outlines are left. In canvas heights.
struct Ridges
{
    int count;
    float foot; ///< From the top of the canvas.
    float height; ///< Of the farthest range.
    float width; ///< Of a typical hill.
    float air; ///< Share of haze before the nearest range.
    bool scattered; ///< With gaps down to the foot, as islands have.
};

void paintRidges(Canvas &canvas, const Sky &sky, const Ridges &ridges);

} // namespace imageservice
