#pragma once

#include <QByteArray>
#include <QImage>

namespace imageservice {

enum class PictureFormat { Png, Jpeg };

/// An encoded picture.
struct Picture
{
    PictureFormat format = PictureFormat::Png;
    QByteArray bytes;

    QByteArray mimeType() const
    {
        return format == PictureFormat::Png ? "image/png" : "image/jpeg";
    }
};

/// Encoded to be quick rather than small, as services do.
Picture encoded(const QImage &image, PictureFormat format);

/// The picture scaled smoothly to 3840 pixels across in its own proportions; null where @p bytes
/// are no picture, or the result would be higher than 16 K.
QImage upscaled(const QByteArray &bytes);

} // namespace imageservice
