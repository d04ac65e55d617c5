#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <atomic>

namespace ui {

/// Whether a picture is to fill a box, and may stick out of it, or to lie in it whole.
enum class Framing { Cover, Fit };

/// The picture in @p file, turned upright and no larger than covering or fitting @p box takes; null
/// if the file is no readable PNG, JPEG or WebP picture, whatever its name says, or one so large
/// that showing it would endanger the program. Stops early, with null, once @p stopped is set.
/// Safe on any thread.
QImage readPicture(
    const QString &file, QSize box, Framing framing, const std::atomic_bool &stopped);

} // namespace ui
