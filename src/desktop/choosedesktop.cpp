#include "desktop/choosedesktop.h"

#include "desktop/gsettingsdesktop.h"
#include "desktop/lxqtdesktop.h"
#include "desktop/plasmadesktop.h"
#include "desktop/portaldesktop.h"
#include "desktop/swaybgdesktop.h"
#include "desktop/swaydesktop.h"
#include "desktop/unsupporteddesktop.h"
#include "desktop/waylandglobals.h"
#include "desktop/workerthread.h"
#include "desktop/x11display.h"
#include "desktop/x11rootdesktop.h"
#include "desktop/xfcedesktop.h"

#include <QCoroFuture>
#include <QFile>
#include <QGuiApplication>

#include <algorithm>
#include <array>

namespace desktop {

using namespace Qt::StringLiterals;
using std::chrono::duration_cast;
using std::chrono::milliseconds;

namespace {

struct Painter
{
    QLatin1StringView busName;
    DesktopKind kind;
};

constexpr auto lxqtFileManager = "org.pcmanfm.PCManFM"_L1;

// The first whose name is owned is the painter, so the order matters: Cinnamon owns names of GNOME,
// too. Those not supported are here because the root window lies unseen beneath them.
constexpr std::array painters{
    Painter{"org.kde.plasmashell"_L1, DesktopKind::Plasma},
    Painter{"org.xfce.xfdesktop"_L1, DesktopKind::Xfce},
    Painter{"org.Cinnamon"_L1, DesktopKind::Cinnamon},
    Painter{"org.mate.Caja"_L1, DesktopKind::Mate},
    Painter{"org.mate.SettingsDaemon"_L1, DesktopKind::Mate},
    Painter{lxqtFileManager, DesktopKind::Lxqt},
    Painter{"org.gnome.Shell"_L1, DesktopKind::Gnome},
};

// Under Wayland an X server may run as well, but its root window is not shown.
bool isX11Session()
{
    return QGuiApplication::platformName() == "xcb"_L1
        && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

bool isWaylandSession()
{
    return QGuiApplication::platformName().startsWith("wayland"_L1)
        || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

bool isInSandboxOnGnome()
{
    const QStringList desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':');
    return QFile::exists(u"/.flatpak-info"_s) && desktops.contains("GNOME"_L1);
}

bool seesRootWindow()
{
    const auto display = X11Display::open();
    return display && !display->hasDesktopWindow() && !display->isRootCovered();
}

QString painterOf(const Painting &painting, DesktopKind kind)
{
    const auto *const painter
        = std::find_if(painters.begin(), painters.end(), [&](const Painter &each) {
              return each.kind == kind && painting.busNames.contains(each.busName);
          });
    return painter == painters.end() ? QString() : QString(painter->busName);
}

} // namespace

QCoro::Task<Painting> lookAround(QDBusConnection bus)
{
    const QDeadlineTimer deadline(answerTime);
    Painting painting;
    painting.needsPortal = isInSandboxOnGnome();
    const QDBusMessage listNames = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s,
        u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"ListNames"_s);
    const BusResult names = co_await callBus(bus, listNames, deadline);
    if (names) {
        painting.busNames = names->value(0).toStringList();
    }
    const QFuture<QString> swaySocket = onWorkerThread(SwayDesktop::liveSocket);
    painting.swaySocket = co_await swaySocket;
    if (painting.busNames.contains(lxqtFileManager)) {
        const QDeadlineTimer all(answerTime);
        painting.isFileManagerPainting
            = co_await LxqtDesktop::paints(bus, QDeadlineTimer(answerTime / 3));
        painting.fileManagersTime = duration_cast<milliseconds>(all.remainingTimeAsDuration());
    }
    // A painter is enough to know. When it hangs, what it shows the screen with hangs, too, and
    // asking that would take up the time.
    if (chooseDesktop(painting) == DesktopKind::Unsupported && isWaylandSession()) {
        const QFuture<std::optional<WaylandGlobals>> asking
            = onWorkerThread([deadline] { return askWaylandGlobals(deadline); });
        const std::optional<WaylandGlobals> globals = co_await asking;
        painting.hasLayerShell = globals && globals->hasLayerShell;
    }
    if (chooseDesktop(painting) == DesktopKind::Unsupported && isX11Session()) {
        const QFuture<bool> seen = onWorkerThread(seesRootWindow);
        painting.isRootVisible = co_await seen;
    }
    co_return painting;
}

QStringList painterNames()
{
    QStringList names;
    for (const Painter &painter : painters) {
        names.append(painter.busName);
    }
    return names;
}

DesktopKind chooseDesktop(const Painting &painting)
{
    if (!painting.swaySocket.isEmpty()) {
        return DesktopKind::Sway;
    }
    if (painting.needsPortal) {
        return DesktopKind::Portal;
    }
    for (const Painter &painter : painters) {
        const bool paints = painter.kind != DesktopKind::Lxqt || painting.isFileManagerPainting;
        if (paints && painting.busNames.contains(painter.busName)) {
            return painter.kind;
        }
    }
    if (painting.hasLayerShell) {
        return DesktopKind::Swaybg;
    }
    return painting.isRootVisible ? DesktopKind::X11Root : DesktopKind::Unsupported;
}

std::unique_ptr<Backend> makeBackend(DesktopKind kind, const Painting &painting,
    const QDBusConnection &bus, std::shared_ptr<BackgroundProcesses> processes)
{
    switch (kind) {
    case DesktopKind::Plasma:
        return std::make_unique<PlasmaDesktop>(bus);
    case DesktopKind::Portal:
        return std::make_unique<PortalDesktop>(bus);
    case DesktopKind::Sway:
        return std::make_unique<SwayDesktop>(painting.swaySocket);
    case DesktopKind::Swaybg:
        return std::make_unique<SwaybgDesktop>(std::move(processes));
    case DesktopKind::Xfce:
        return std::make_unique<XfceDesktop>(bus);
    case DesktopKind::Cinnamon:
        return std::make_unique<GSettingsDesktop>(
            bus, painterOf(painting, kind), BackgroundKeys::cinnamon());
    case DesktopKind::Mate:
        return std::make_unique<GSettingsDesktop>(
            bus, painterOf(painting, kind), BackgroundKeys::mate());
    case DesktopKind::Lxqt:
        return std::make_unique<LxqtDesktop>(bus, painting.fileManagersTime);
    case DesktopKind::Gnome:
        return std::make_unique<GSettingsDesktop>(
            bus, painterOf(painting, kind), BackgroundKeys::gnome());
    case DesktopKind::X11Root:
        return std::make_unique<X11RootDesktop>();
    case DesktopKind::Unsupported:
        break;
    }
    return std::make_unique<UnsupportedDesktop>();
}

} // namespace desktop
