#pragma once

#include "imageservice/painting/sky.h"

namespace imageservice {

/// Stars and the band of the galaxy, as many as the scene shows.
void paintStars(Canvas &canvas, const Sky &sky);

} // namespace imageservice
