#pragma once

#include "imageservice/painting/sky.h"

namespace imageservice {

/// Fills the canvas below the horizon with waves that mirror what is painted above it.
void paintWaves(Canvas &canvas, const Sky &sky);

} // namespace imageservice
