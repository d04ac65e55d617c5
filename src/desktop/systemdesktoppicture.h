#pragma once

#include "desktop/desktoppicture.h"

#include <QDBusConnection>

namespace desktop {

class BackgroundProcesses;

/// The desktop the program runs on. Which one that is, is found out at each call: a session may
/// change its desktop while the program runs.
///
/// A task that was started goes on when this object is gone, but pictures that are shown by
/// processes of ours are then no longer seen.
class SystemDesktopPicture : public DesktopPicture
{
public:
    explicit SystemDesktopPicture(QDBusConnection bus = QDBusConnection::sessionBus());

    std::optional<Screen> mainScreen() const override;
    QCoro::Task<SetResult> setPicture(QString file, Screen screen) override;

private:
    QDBusConnection m_bus;
    std::shared_ptr<BackgroundProcesses> m_processes;
};

} // namespace desktop
