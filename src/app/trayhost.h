#pragma once

#include <QCoroTask>
#include <QDBusConnection>
#include <QObject>

#include <memory>

class QDBusServiceWatcher;

namespace app {

/// Tells when there is something on screen that shows tray icons.
///
/// Qt asks this once per process and keeps the answer, so a program that touches its tray icon
/// before the panel is up never gets one. This class looks for itself: for a host on the session
/// bus, and for the owner of the X11 tray selection.
class TrayHost : public QObject
{
    Q_OBJECT

public:
    explicit TrayHost(QObject *parent = nullptr);
    ~TrayHost() override;

    bool isAvailable() const { return m_isAvailable; }
    /// Once more on another @p bus, when the one before has ended.
    void watch(const QDBusConnection &bus = QDBusConnection::sessionBus());

Q_SIGNALS:
    /// Once for each bus, as soon as the first host is seen; maybe from within watch().
    void available();

private Q_SLOTS:
    void askForHost();

private:
    class SelectionWatch;

    QCoro::Task<> findHost();
    void onSeen();

    bool m_isAvailable = false;
    QDBusConnection m_bus;
    std::unique_ptr<QDBusServiceWatcher> m_names;
    std::unique_ptr<SelectionWatch> m_selectionWatch;
};

} // namespace app
