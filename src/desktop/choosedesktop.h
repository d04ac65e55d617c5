#pragma once

#include "desktop/backend.h"
#include "desktop/buscall.h"

#include <QDBusConnection>
#include <QStringList>

#include <memory>

namespace desktop {

class BackgroundProcesses;

/// Who paints the desktop, as far as it can be seen without starting anybody: a call may start a
/// service that answers "done" while nobody paints.
struct Painting
{
    QStringList busNames = {}; ///< Those that have an owner.
    bool isFileManagerPainting = false; ///< LXQt's, which otherwise only shows folders.
    /// What it has left of the time for its answers, after it was asked that.
    std::chrono::milliseconds fileManagersTime = answerTime;
    bool isRootVisible = false; ///< The X11 root window, with no window over it as the desktop.
    QString swaySocket = {}; ///< Path of the socket of a sway that runs; else empty.
    bool needsPortal = false; ///< In a sandbox, where GNOME's settings are out of reach.
    bool hasLayerShell = false; ///< Of a Wayland compositor: a place for backgrounds.
};

enum class DesktopKind {
    Plasma,
    Portal,
    Sway,
    Swaybg,
    Xfce,
    Cinnamon,
    Mate,
    Lxqt,
    Gnome, ///< And Budgie.
    X11Root,
    Unsupported,
};

/// Looks around. A bus that does not answer in time has no names, and a compositor offers nothing.
QCoro::Task<Painting> lookAround(QDBusConnection bus);

/// The names on the bus of all painters there are.
QStringList painterNames();

/// The one place where the way of setting the picture is decided.
DesktopKind chooseDesktop(const Painting &painting);

/// For the @p painting that was decided about; what must go on running is among the @p processes.
std::unique_ptr<Backend> makeBackend(DesktopKind kind, const Painting &painting,
    const QDBusConnection &bus, std::shared_ptr<BackgroundProcesses> processes);

} // namespace desktop
