#include "desktop/screenchanges.h"

#include <QGuiApplication>
#include <QScreen>

namespace desktop {

using namespace std::chrono_literals;

ScreenChanges::ScreenChanges(
    const QDBusConnection &bus, const QStringList &painters, QObject *parent)
    : QObject(parent)
{
    m_painters.setConnection(bus);
    m_painters.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    m_painters.setWatchedServices(painters);
    connect(
        &m_painters, &QDBusServiceWatcher::serviceRegistered, &m_calm, qOverload<>(&QTimer::start));
    // Plugging in one screen makes several changes, some of them a while later.
    m_calm.setInterval(1s);
    m_calm.setSingleShot(true);
    connect(&m_calm, &QTimer::timeout, this, &ScreenChanges::settled);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, &ScreenChanges::watch);
    connect(qGuiApp, &QGuiApplication::screenRemoved, &m_calm, qOverload<>(&QTimer::start));
    for (const QScreen *screen : QGuiApplication::screens()) {
        watch(screen);
    }
}

void ScreenChanges::moveTo(const QDBusConnection &bus)
{
    m_painters.setConnection(bus);
    m_calm.start();
}

void ScreenChanges::watch(const QScreen *screen)
{
    connect(screen, &QScreen::geometryChanged, &m_calm, qOverload<>(&QTimer::start));
    m_calm.start();
}

} // namespace desktop
