#pragma once

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>

/// Everything that was on its way over the bus before this call has arrived after it.
inline void letTheBusSettle()
{
    const auto ping = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus.Peer"),
        QStringLiteral("Ping"));
    for (int i = 0; i < 3; ++i) {
        QDBusConnection::sessionBus().call(ping);
        QCoreApplication::processEvents();
    }
}
