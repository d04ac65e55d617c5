#include "desktop/sessionbus.h"

#include "desktop/buscall.h"

namespace desktop {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

void forget(const QDBusConnection &connection)
{
    // Qt would go on using its own one, which is others' as well.
    if (connection.name() != QDBusConnection::sessionBus().name()) {
        QDBusConnection::disconnectFromBus(connection.name());
    }
}

// Watchers of names take a connection of the same name for the one they have.
QDBusConnection connectAnew()
{
    static int number = 0;
    return QDBusConnection::connectToBus(
        QDBusConnection::SessionBus, u"session bus %1"_s.arg(++number));
}

} // namespace

SessionBus::SessionBus(QObject *parent)
    : QObject(parent), m_connection(QDBusConnection::sessionBus())
{
    m_nextLook.setInterval(1s);
    connect(&m_nextLook, &QTimer::timeout, this, &SessionBus::look);
    listen();
    // A name on it shows that it was there; where there never was a bus, none is waited for.
    if (!m_connection.isConnected() && !m_connection.baseService().isEmpty()) {
        onEnded();
    }
}

SessionBus::~SessionBus()
{
    forget(m_connection);
}

std::shared_ptr<SessionBus> SessionBus::shared()
{
    static std::weak_ptr<SessionBus> held;
    std::shared_ptr<SessionBus> bus = held.lock();
    if (!bus) {
        bus = std::make_shared<SessionBus>();
        held = bus;
    }
    return bus;
}

void SessionBus::listen()
{
    m_connection.connect(anybody, u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
        u"Disconnected"_s, this, SLOT(onEnded()));
}

void SessionBus::onEnded()
{
    m_nextLook.start();
}

void SessionBus::look()
{
    const QDBusConnection found = connectAnew();
    if (!found.isConnected()) {
        forget(found);
        return;
    }
    m_nextLook.stop();
    forget(m_connection);
    m_connection = found;
    listen();
    Q_EMIT returned();
}

} // namespace desktop
