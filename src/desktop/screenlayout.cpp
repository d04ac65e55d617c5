#include "desktop/screenlayout.h"

#include "desktop/buscall.h"
#include "desktop/gnomedisplays.h"
#include "desktop/x11display.h"

#include <QGuiApplication>
#include <QScreen>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

// GNOME can do both, and Qt reports places and sizes as the desktop counts them.
QCoro::Task<bool> countsDevicePixels(QDBusConnection bus, QDeadlineTimer deadline)
{
    constexpr int physicalLayout = 2;
    const BusResult state = co_await callBus(bus, displayStateCall(), deadline);
    const QVariantMap properties = state ? dictionary(state->value(3)) : QVariantMap();
    co_return properties.value(u"layout-mode"_s).toInt() == physicalLayout;
}

} // namespace

QCoro::Task<QList<Screen>> screenLayout(QDBusConnection bus, QDeadlineTimer deadline)
{
    if (QGuiApplication::platformName() == "xcb"_L1) {
        const auto display = X11Display::open();
        const auto monitors = display ? display->monitors() : std::nullopt;
        co_return monitors ? QList<Screen>(monitors->begin(), monitors->end()) : QList<Screen>();
    }
    // The density of the densest screen.
    qreal density = qGuiApp->devicePixelRatio();
    if (density > 1 && co_await countsDevicePixels(bus, deadline)) {
        density = 1;
    }
    QList<Screen> screens;
    for (const QScreen *screen : QGuiApplication::screens()) {
        const QRect place = screen->geometry();
        screens.append({screen->name(), {place.topLeft() * density, place.size() * density}});
    }
    co_return screens;
}

} // namespace desktop
