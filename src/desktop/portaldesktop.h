#pragma once

#include "desktop/backend.h"

#include <QDBusConnection>

#include <chrono>

namespace desktop {

/// How long a person may think about the desktop's question whether the program may.
constexpr std::chrono::seconds thinkingTime{60};

/// The wallpaper portal, for a program in a sandbox, which cannot write the desktop's settings.
/// The desktop may first ask the person whether it may, which is why it has more time than others;
/// a question cannot be taken back, so the picture may still come after that. The picture is for
/// all screens, and what the desktop keeps cannot be read back.
class PortalDesktop : public Backend
{
public:
    explicit PortalDesktop(QDBusConnection bus, std::chrono::milliseconds patience = thinkingTime);

    QCoro::Task<SetResult> setPicture(Picture picture, Screen screen) override;

private:
    QDBusConnection m_bus;
    std::chrono::milliseconds m_patience;
};

} // namespace desktop
