#pragma once

#include "imageservice/painting/sky.h"

namespace imageservice {

/// Northern lights: curtains of rays over the whole sky.
void paintAurora(Canvas &canvas, const Sky &sky);

} // namespace imageservice
