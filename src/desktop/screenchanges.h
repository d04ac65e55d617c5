#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>
#include <QTimer>

class QScreen;

namespace desktop {

/// Tells when screens came, went, moved or changed their size, or somebody came who paints them,
/// and the painter of the desktop has had time to notice. Main thread only.
class ScreenChanges : public QObject
{
    Q_OBJECT

public:
    /// Tells it once at the beginning, too: what happened before the program started is not known.
    /// What happened before a painter came, such as after the login, is made up for when its name
    /// appears among @p painters on the @p bus.
    explicit ScreenChanges(
        const QDBusConnection &bus, const QStringList &painters, QObject *parent = nullptr);

    /// Watches the painters on another @p bus from now on, which may have come with it.
    void moveTo(const QDBusConnection &bus);

Q_SIGNALS:
    void settled();

private:
    void watch(const QScreen *screen);

    QDBusServiceWatcher m_painters;
    QTimer m_calm;
};

} // namespace desktop
