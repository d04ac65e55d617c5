#pragma once

#include "imageservice/painting/canvas.h"
#include "imageservice/painting/scene.h"

namespace imageservice {

/// A desert of sand dunes in low light.
void paintDunes(Canvas &canvas, const Scene &scene);

} // namespace imageservice
