#pragma once

#include "fakebus.h"
#include "input.h"

#include <QDBusConnection>
#include <QString>

namespace fuzzing {

/// The one bus of a target.
inline FakeBus &fakeBus()
{
    static FakeBus bus;
    return bus;
}

/// Its program's connection to it, made anew after an input that ended it.
inline QDBusConnection liveConnection()
{
    const QString name = QStringLiteral("fuzzed");
    const QDBusConnection before(name);
    if (before.isConnected()) {
        return before;
    }
    QDBusConnection::disconnectFromBus(name);
    const auto connection
        = QDBusConnection::connectToBus(QString::fromLocal8Bit(fakeBus().address()), name);
    require(connection.isConnected());
    return connection;
}

} // namespace fuzzing
