#pragma once

#include "app/activationtoken.h"

#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace app {

/// One running program per session bus, reachable there as the freedesktop application
/// com.tarnel.Plenaura: starting it again, a desktop action, or a call brings it to the front.
///
/// Without a bus the program runs all the same, and nothing keeps a second one from starting.
class SingleInstance : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    enum class Role {
        First, ///< This program serves the name from now on.
        Second, ///< Another one runs and was asked to show itself; this one is to end.
        Unreachable ///< Another one runs but did not answer.
    };

    explicit SingleInstance(QObject *parent = nullptr);

    /// Takes the name, or hands the wish to be shown to whoever has it, with the @p token of this
    /// start. Waits for at most some seconds for the other program's answer.
    Role claim(const ActivationToken &token);
    /// Offers itself on @p bus. False where another program has the name.
    bool serveOn(QDBusConnection bus);

    /// Whether the bus started this program: then nobody has asked for a window yet.
    static bool startedByBus();

public Q_SLOTS:
    // Called over the bus; the names are those of the interface.
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &uris, const QVariantMap &platformData);
    void ActivateAction(
        const QString &name, const QVariantList &parameter, const QVariantMap &platformData);

Q_SIGNALS:
    void activated();
    void generateRequested();
    void settingsRequested();
    void quitRequested();

private:
    static Role activateOther(const ActivationToken &token);
};

} // namespace app
