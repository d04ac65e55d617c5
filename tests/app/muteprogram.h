#pragma once

#include <QDBusConnection>
#include <QString>

/// A program that has the name of ours on the bus, and does not answer to it.
class MuteProgram
{
public:
    MuteProgram() : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, connection))
    {
        m_bus.registerService(QStringLiteral("com.tarnel.Plenaura"));
    }
    MuteProgram(const MuteProgram &) = delete;
    MuteProgram &operator=(const MuteProgram &) = delete;
    ~MuteProgram() { QDBusConnection::disconnectFromBus(connection); }

private:
    inline static const QString connection = QStringLiteral("mute program");

    QDBusConnection m_bus;
};
