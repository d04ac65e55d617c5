#pragma once

#include <QByteArray>

class QIODevice;

namespace desktop {

/// "png", "jpeg" or "webp", whatever the name says, and empty for everything else: Qt would try all
/// decoders it has, and only these three have business here. Leaves @p file where it is.
QByteArray pictureFormat(QIODevice &file);

/// Whether all chunks of a PNG lie within its file. libpng clears as much memory as a chunk says
/// that it is long, up to two gigabytes, before it finds that the bytes are not there. Begins at
/// the start of @p png and goes back there.
bool chunksFit(QIODevice &png);

} // namespace desktop
