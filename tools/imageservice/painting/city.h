#pragma once

#include "imageservice/painting/canvas.h"
#include "imageservice/painting/scene.h"

namespace imageservice {

/// A city by the water, with its windows lit as far as the time of day asks for it.
void paintCity(Canvas &canvas, const Scene &scene);

} // namespace imageservice
