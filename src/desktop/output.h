#pragma once

#include "desktop/desktoppicture.h"

#include <optional>
#include <vector>

namespace desktop {

/// The one of a Wayland compositor's @p outputs that is @p screen: the one with its name, else the
/// one at its place, since an X server within Wayland has names of its own for the outputs.
std::optional<Screen> outputOf(const Screen &screen, const std::vector<Screen> &outputs);

} // namespace desktop
