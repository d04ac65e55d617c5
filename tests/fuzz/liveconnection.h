#pragma once

#include "fakebus.h"
#include "input.h"

#include <QDBusConnection>
#include <QString>

#include <array>

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

/// A part of the program with others on its bus, who do what a script says.
using Way = void (*)(const QDBusConnection &bus, const QList<BusAct> &script);

/// Tries one input: its first byte says which of @p ways, the rest is the script.
template <size_t count>
int tryWay(const std::array<Way, count> &ways, const uint8_t *data, size_t size)
{
    if (size == 0) {
        return -1;
    }
    const QDBusConnection bus = liveConnection();
    ways.at(data[0] % count)(bus, busScript(bytes(data + 1, size - 1)));
    fakeBus().settle(bus);
    return 0;
}

} // namespace fuzzing
