#pragma once

#include "imageservice/painting/sky.h"

namespace imageservice {

/// A deck of clouds that runs away to the horizon, lit from the sun's side.
void paintClouds(Canvas &canvas, const Sky &sky);

} // namespace imageservice
