#pragma once

#include <QByteArray>

class QIODevice;

namespace desktop {

/// "png", "jpeg" or "webp", whatever the name says, and empty for everything else: Qt would try all
/// decoders it has, and only these three have business here. Leaves @p file where it is.
QByteArray pictureFormat(QIODevice &file);

/// Whether the file of a PNG or JPEG ends no sooner than its picture. A JPEG that was cut is
/// decoded all the same, with grey for what is missing; and libpng clears as much memory as a chunk
/// says that it is long, up to two gigabytes, before it finds that the bytes are not there. The
/// decoder of WebP looks itself. Begins at the start of @p file and goes back there.
bool isWhole(QIODevice &file, const QByteArray &format);

} // namespace desktop
