#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include <tl/expected.hpp>

namespace desktop {

/// A picture file that was proved to be one by decoding it.
struct Picture
{
    QString file; ///< Absolute path.
    QByteArray format; ///< "png", "jpeg" or "webp", whatever the name says.
    QImage image; ///< Upright, as it is meant to be seen.
};

/// Decodes the whole file, because desktops do not say when they cannot; else one sentence for
/// people. Takes as long as decoding takes: not for the main thread.
[[nodiscard]] tl::expected<Picture, QString> readPicture(const QString &file);

} // namespace desktop
