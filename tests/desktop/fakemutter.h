#pragma once

#include <QDBusContext>
#include <QObject>
#include <QString>
#include <QVariantMap>

/// Stands on the session bus where GNOME tells of its monitors. There are two, "left" and "right".
class FakeMutter : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.Mutter.DisplayConfig")

public:
    explicit FakeMutter(const QString &primary);
    ~FakeMutter() override;

    /// What it tells besides, such as how it lays out the monitors.
    QVariantMap properties;

    void changePrimary(const QString &primary);

public Q_SLOTS:
    void GetCurrentState();

private:
    QString m_primary;
};
