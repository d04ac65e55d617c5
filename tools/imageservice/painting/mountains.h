#pragma once

#include "imageservice/painting/canvas.h"
#include "imageservice/painting/scene.h"

namespace imageservice {

/// A valley between high peaks, often with a lake.
void paintMountains(Canvas &canvas, const Scene &scene);

} // namespace imageservice
