#pragma once

#include "desktop/desktoppicture.h"

#include <QDBusConnection>

namespace desktop {

/// The desktop the program runs on. Which one that is, is found out at each call: a session may
/// change its desktop while the program runs.
///
/// A task that was started goes on when this object is gone.
class SystemDesktopPicture : public DesktopPicture
{
public:
    explicit SystemDesktopPicture(QDBusConnection bus = QDBusConnection::sessionBus());

    std::optional<Screen> mainScreen() const override;
    QCoro::Task<SetResult> setPicture(QString file, Screen screen) override;

private:
    QDBusConnection m_bus;
};

} // namespace desktop
