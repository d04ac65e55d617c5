#pragma once

#include "desktop/backend.h"

#include <QDBusConnection>
#include <QStringList>

#include <memory>

namespace desktop {

/// Who paints the desktop, as far as it can be seen without calling anybody: a call may start a
/// service that answers "done" while nobody paints.
struct Painting
{
    QStringList busNames; ///< Those that have an owner.
    bool isRootVisible = false; ///< The X11 root window, with no window over it as the desktop.
};

enum class DesktopKind {
    Xfce,
    X11Root,
    Unsupported,
};

/// Looks around. A bus that does not answer in time has no names.
QCoro::Task<Painting> lookAround(QDBusConnection bus);

/// The one place where the way of setting the picture is decided.
DesktopKind chooseDesktop(const Painting &painting);

std::unique_ptr<Backend> makeBackend(DesktopKind kind, const QDBusConnection &bus);

} // namespace desktop
