#pragma once

#include "desktop/picturefile.h"

#include <QFuture>

namespace desktop {

/// The picture as a PNG file among the program's own data, for desktops that read the file
/// themselves and may know no WebP; the file itself where it is PNG or JPEG. Else one sentence for
/// people. The copy stays, as the desktop reads it again at each start. Takes as long as encoding
/// takes: not for the main thread.
[[nodiscard]] tl::expected<QString, QString> fileEveryDesktopReads(const Picture &picture);

/// The same on a worker thread; await it.
[[nodiscard]] QFuture<tl::expected<QString, QString>> prepareFile(const Picture &picture);

} // namespace desktop
