#pragma once

#include <QDeadlineTimer>
#include <QStringList>

#include <optional>

namespace desktop {

/// What a Wayland compositor tells everybody who connects.
struct WaylandGlobals
{
    bool hasLayerShell = false; ///< Whether programs may put surfaces behind all windows.
    QStringList outputs; ///< Names of those that are on; none where the compositor is an old one.
};

/// Asks the compositor of the session over a connection of its own; absent when there is none, or
/// when it does not answer in time. Waits for the answers: not for the main thread.
std::optional<WaylandGlobals> askWaylandGlobals(QDeadlineTimer deadline);

} // namespace desktop
