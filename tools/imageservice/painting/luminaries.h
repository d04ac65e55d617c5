#pragma once

#include "imageservice/painting/sky.h"

namespace imageservice {

/// The sun or moon itself, where the scene shows one. Its glow belongs to the sky.
void paintLuminaries(Canvas &canvas, const Sky &sky);

} // namespace imageservice
