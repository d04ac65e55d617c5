#pragma once

#include "desktop/backend.h"

namespace desktop {

/// For desktops that nobody here knows how to paint: always an error, nothing is changed.
class UnsupportedDesktop : public Backend
{
public:
    QCoro::Task<SetResult> setPicture(Picture picture, Screen screen) override;
};

} // namespace desktop
