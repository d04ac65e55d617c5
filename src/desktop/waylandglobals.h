#pragma once

#include "desktop/desktoppicture.h"

#include <QDeadlineTimer>

#include <optional>
#include <vector>

namespace desktop {

/// What a Wayland compositor tells everybody who connects.
struct WaylandGlobals
{
    bool hasLayerShell = false; ///< Whether programs may put surfaces behind all windows.
    /// Those that are on, with their places on the compositor's virtual desktop; none where it
    /// keeps them to itself.
    std::vector<Screen> outputs;
};

/// Asks the compositor of the session over a connection of its own; absent when there is none, or
/// when it does not answer in time. Waits for the answers: not for the main thread.
std::optional<WaylandGlobals> askWaylandGlobals(QDeadlineTimer deadline);

} // namespace desktop
