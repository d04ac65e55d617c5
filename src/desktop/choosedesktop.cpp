#include "desktop/choosedesktop.h"

#include "desktop/buscall.h"
#include "desktop/unsupporteddesktop.h"
#include "desktop/workerthread.h"
#include "desktop/x11display.h"
#include "desktop/x11rootdesktop.h"
#include "desktop/xfcedesktop.h"

#include <QCoroFuture>
#include <QGuiApplication>

#include <array>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

struct Painter
{
    QLatin1StringView busName;
    DesktopKind kind;
};

// The first whose name is owned is the painter, so the order matters: Cinnamon owns names of GNOME,
// too. Those not supported are here because the root window lies unseen beneath them.
constexpr std::array painters{
    Painter{"org.kde.plasmashell"_L1, DesktopKind::Unsupported},
    Painter{"org.xfce.xfdesktop"_L1, DesktopKind::Xfce},
    Painter{"org.Cinnamon"_L1, DesktopKind::Unsupported},
    Painter{"org.mate.Caja"_L1, DesktopKind::Unsupported},
    Painter{"org.mate.SettingsDaemon"_L1, DesktopKind::Unsupported},
    Painter{"org.gnome.Shell"_L1, DesktopKind::Unsupported},
};

// Under Wayland an X server may run as well, but its root window is not shown.
bool isX11Session()
{
    return QGuiApplication::platformName() == "xcb"_L1
        && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

bool seesRootWindow()
{
    const auto display = X11Display::open();
    return display && !display->hasDesktopWindow();
}

} // namespace

QCoro::Task<Painting> lookAround(QDBusConnection bus)
{
    Painting painting;
    const QDBusMessage listNames = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s,
        u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"ListNames"_s);
    const BusResult names = co_await callBus(bus, listNames, QDeadlineTimer(answerTime));
    if (names) {
        painting.busNames = names->value(0).toStringList();
    }
    if (isX11Session()) {
        const QFuture<bool> seen = onWorkerThread(seesRootWindow);
        painting.isRootVisible = co_await seen;
    }
    co_return painting;
}

DesktopKind chooseDesktop(const Painting &painting)
{
    for (const Painter &painter : painters) {
        if (painting.busNames.contains(painter.busName)) {
            return painter.kind;
        }
    }
    return painting.isRootVisible ? DesktopKind::X11Root : DesktopKind::Unsupported;
}

std::unique_ptr<Backend> makeBackend(DesktopKind kind, const QDBusConnection &bus)
{
    switch (kind) {
    case DesktopKind::Xfce:
        return std::make_unique<XfceDesktop>(bus);
    case DesktopKind::X11Root:
        return std::make_unique<X11RootDesktop>();
    case DesktopKind::Unsupported:
        break;
    }
    return std::make_unique<UnsupportedDesktop>();
}

} // namespace desktop
