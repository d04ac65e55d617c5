#pragma once

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QList>
#include <QObject>
#include <QString>

/// What the session manager has for its client.
class FakeClient : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.SessionManager.ClientPrivate")

public:
    QList<bool> answers;

public Q_SLOTS:
    void EndSessionResponse(bool agrees, const QString & /*reason*/) { answers << agrees; }

Q_SIGNALS:
    void QueryEndSession(uint flags);
    void EndSession(uint flags);
    void Stop();
};

/// A session manager, on a connection of its own.
class FakeSessionManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.SessionManager")

public:
    FakeSessionManager() : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, name))
    {
        m_bus.registerObject(
            QStringLiteral("/org/gnome/SessionManager"), this, QDBusConnection::ExportAllSlots);
        m_bus.registerObject(clientPath, &client,
            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
        m_bus.registerService(QStringLiteral("org.gnome.SessionManager"));
    }
    ~FakeSessionManager() override { QDBusConnection::disconnectFromBus(name); }

    FakeClient client;
    QString registered;

public Q_SLOTS:
    QDBusObjectPath RegisterClient(const QString &appId, const QString & /*startupId*/)
    {
        registered = appId;
        return QDBusObjectPath(clientPath);
    }

private:
    inline static const QString name = QStringLiteral("session manager");
    inline static const QString clientPath = QStringLiteral("/org/gnome/SessionManager/Client7");

    QDBusConnection m_bus;
};
