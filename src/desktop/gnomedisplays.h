#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>

namespace desktop {

/// What GNOME is asked for its monitors and how they lie: a serial number, the monitors, the
/// screens that they make, and properties of all of it.
QDBusMessage displayStateCall();

/// The primary screen of GNOME, which tells it on the bus alone: to Wayland programs all screens
/// are alike. It is known a moment after this is made, and followed when it changes. Main thread
/// only.
class GnomePrimaryScreen : public QObject
{
    Q_OBJECT

public:
    explicit GnomePrimaryScreen(QDBusConnection bus, QObject *parent = nullptr);

    /// Asks and listens on another @p bus from now on.
    void moveTo(const QDBusConnection &bus);
    /// Empty where nobody tells.
    QString name() const { return m_name; }

private Q_SLOTS:
    void ask();

private:
    void listen();

    QDBusConnection m_bus;
    QDBusServiceWatcher m_gnome;
    QString m_name;
};

} // namespace desktop
