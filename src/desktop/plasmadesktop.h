#pragma once

#include "desktop/backend.h"

#include <QDBusConnection>
#include <QDeadlineTimer>

namespace desktop {

/// KDE Plasma 5: the shell runs scripts, and in them every screen has a desktop of its own.
class PlasmaDesktop : public Backend
{
public:
    enum class Task {
        Show, ///< Gives the picture to the screen's desktops.
        Look, ///< Only looks which of them have it.
    };

    explicit PlasmaDesktop(QDBusConnection bus);

    QCoro::Task<SetResult> setPicture(Picture picture, Screen screen) override;

    /// A script for the desktops of the screen with this top left corner; it prints how many of
    /// them now have the picture.
    static QString script(Task task, const QString &file, QPoint topLeft);

private:
    QCoro::Task<tl::expected<int, QString>> run(QString script);

    QDBusConnection m_bus;
    QDeadlineTimer m_deadline;
};

} // namespace desktop
