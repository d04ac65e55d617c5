#pragma once

#include "imageservice/painting/sky.h"

#include <vector>

namespace imageservice {

/// How restless water is.
enum class Water { Calm, Rippled };

/// Fills each column below its @p shore, in pixels, with water that mirrors what stands above.
void paintLake(Canvas &canvas, const Sky &sky, const std::vector<float> &shore, Water water);

} // namespace imageservice
