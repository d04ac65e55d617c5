#pragma once

#include "desktop/backend.h"

namespace desktop {

/// X11 with nothing but a window manager: the root window's own background, which every screen
/// shares. A copy of it with the one screen repainted takes its place, and stays until the end of
/// the session.
class X11RootDesktop : public Backend
{
public:
    /// The picture is scaled to cover the screen and cut where it is too long or too high.
    QCoro::Task<SetResult> setPicture(Picture picture, Screen screen) override;
};

} // namespace desktop
