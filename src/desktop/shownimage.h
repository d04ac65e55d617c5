#pragma once

#include <QImage>
#include <QString>

namespace desktop {

/// The image that a desktop shows when it is told to show @p file: in any format that can be
/// decoded here, or the first picture of a slide show, which GNOME and its kin write as XML. Null
/// when there is none. Takes as long as decoding takes: not for the main thread.
[[nodiscard]] QImage readShownImage(const QString &file);

} // namespace desktop
