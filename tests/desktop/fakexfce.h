#pragma once

#include <QDBusContext>
#include <QDBusVariant>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

/// Stands on the session bus where xfdesktop and Xfce's settings service would, and records what it
/// is asked to change.
class FakeXfce : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.xfce.Xfconf")

public:
    enum Manner {
        Obliging,
        Refusing,
        Forgetful, ///< Says yes to each change and makes none.
        Silent, ///< Never answers.
        Slow, ///< Answers each call after more than a second.
        Dying, ///< Leaves the bus instead of answering.
    };

    explicit FakeXfce(Manner manner);
    ~FakeXfce() override;

    QVariantMap properties;
    /// One "property=type:value" for each change asked for.
    QStringList changes;

public Q_SLOTS:
    QVariantMap GetAllProperties(const QString &channel, const QString &base);
    void SetProperty(const QString &channel, const QString &property, const QDBusVariant &value);

private:
    /// Whether the answer is not to be given now by the slot itself.
    bool answersOtherwise(const QVariant &answer);
    void leave();

    const Manner m_manner;
};
