#pragma once

#include "imageservice/painting/canvas.h"

namespace imageservice {

/// Lets what is brighter than the screen shine into its neighbourhood, as a lens does.
void paintBloom(Canvas &canvas);

} // namespace imageservice
