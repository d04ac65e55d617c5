#pragma once

#include "core/wallpapermanager.h"

#include <qqml.h>

namespace ui {

/// Makes the manager known to QML under its name; core itself knows no QML.
struct ForeignWallpaperManager
{
    Q_GADGET
    QML_FOREIGN(core::WallpaperManager)
    QML_NAMED_ELEMENT(WallpaperManager)
    QML_UNCREATABLE("There is one manager, and the program makes it.")
};

} // namespace ui
