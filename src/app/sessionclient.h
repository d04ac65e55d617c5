#pragma once

#include <QCoroTask>
#include <QDBusConnection>
#include <QObject>

#include <memory>

class QDBusServiceWatcher;

namespace app {

class AppDelegate;

/// Hears of the end of a session from org.gnome.SessionManager, GNOME's and those of desktops that
/// come from it, and lets the delegate answer. For where Qt hears of none, as it knows no other way
/// than that of X11: being asked by both would be answered twice.
class SessionClient : public QObject
{
    Q_OBJECT

public:
    /// @p delegate must outlive this object.
    explicit SessionClient(AppDelegate &delegate,
        QDBusConnection bus = QDBusConnection::sessionBus(), QObject *parent = nullptr);
    ~SessionClient() override;

    /// Whether Qt takes part in an X11 session.
    static bool isAskedByX11();
    /// Registers with the session manager, and with any that comes later.
    void watch();
    /// The same on another @p bus from now on.
    void moveTo(const QDBusConnection &bus);
    bool isRegistered() const { return !m_path.isEmpty(); }

private Q_SLOTS:
    void onQueryEndSession();
    void onEndSession();
    void onStop();

private:
    QCoro::Task<> registerClient();
    void listen();
    void answer(bool agrees, const QString &reason);

    AppDelegate &m_delegate;
    QDBusConnection m_bus;
    std::unique_ptr<QDBusServiceWatcher> m_names;
    QString m_path; ///< What the session manager knows this program by.
};

} // namespace app
