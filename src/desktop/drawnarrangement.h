#pragma once

#include "desktop/composedpictures.h"
#include "desktop/picturefile.h"

namespace desktop {

/// Makes the file that shows @p wanted: the picture itself where it covers every screen, else, or
/// if @p wanted is spanning, a composed one. Comes back with @p wanted and that file, or one
/// sentence for people.
///
/// A picture that cannot be read any more is replaced by what is seen of it in the file of
/// @p present, from where screens that stay as they are come as well. @p decoded spares reading
/// that picture once more. Takes as long as decoding and encoding takes: not for the main thread.
tl::expected<Arrangement, QString> drawn(const Arrangement &wanted, const Arrangement &present,
    const Picture &decoded, const ComposedPictures &pictures);

} // namespace desktop
