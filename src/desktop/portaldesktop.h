#pragma once

#include "desktop/backend.h"

#include <QDBusConnection>

namespace desktop {

/// The wallpaper portal, for a program in a sandbox, which cannot write the desktop's settings.
/// The desktop may first ask the person whether it may; the picture is for all screens, and what
/// the desktop keeps cannot be read back.
class PortalDesktop : public Backend
{
public:
    explicit PortalDesktop(QDBusConnection bus);

    QCoro::Task<SetResult> setPicture(Picture picture, Screen screen) override;

private:
    QDBusConnection m_bus;
};

} // namespace desktop
