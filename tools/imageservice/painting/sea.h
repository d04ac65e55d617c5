#pragma once

#include "imageservice/painting/canvas.h"
#include "imageservice/painting/scene.h"

namespace imageservice {

/// The open sea up to a level horizon, with the sun's or moon's path on it.
void paintSea(Canvas &canvas, const Scene &scene);

} // namespace imageservice
