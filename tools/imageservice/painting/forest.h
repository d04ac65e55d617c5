#pragma once

#include "imageservice/painting/canvas.h"
#include "imageservice/painting/scene.h"

namespace imageservice {

/// Rows of spruces that fade into mist, with light falling through it.
void paintForest(Canvas &canvas, const Scene &scene);

} // namespace imageservice
