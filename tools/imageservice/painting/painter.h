#pragma once

#include "imageservice/painting/scene.h"

#include <QImage>

namespace imageservice {

/// Paints the scene; the same scene and size give the same picture. Uses one thread, the caller's.
/// Sides below 16 pixels are raised to it.
QImage painted(const Scene &scene, QSize size);

} // namespace imageservice
