#pragma once

#include <QDBusContext>
#include <QJSEngine>
#include <QObject>
#include <QStringList>

/// Stands on the session bus where plasmashell would, and runs the scripts that it is sent on
/// desktops of its own: one on a screen at 0,0, one on a screen at 800,-20, and one of another
/// activity, which is on no screen.
class FakePlasma : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.PlasmaShell")

public:
    enum Manner {
        Obliging,
        Forgetful, ///< Lets each script write, and keeps nothing of it.
        Breaking, ///< Ends each script with an error.
        Mumbling, ///< Answers with something that no script has printed.
        Silent, ///< Never answers.
        Dying, ///< Leaves the bus instead of answering.
    };

    explicit FakePlasma(Manner manner);
    ~FakePlasma() override;

    /// "plugin picture" of each desktop.
    QStringList pictures();
    /// Runs more script on the same desktops.
    QString run(const QString &script);

public Q_SLOTS:
    QString evaluateScript(const QString &script);

private:
    void leave();

    const Manner m_manner;
    QJSEngine m_engine;
};
