#pragma once

#include <QDBusContext>
#include <QObject>
#include <QStringList>

/// Stands on the session bus where LXQt's file manager would, keeps its settings in its file, and
/// records what it is told to show.
class FakeLxqt : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.pcmanfm.Application")
    Q_PROPERTY(bool desktopManagerEnabled MEMBER isDesktop)

public:
    enum Manner {
        Obliging,
        Forgetful, ///< Says yes to each picture and keeps its own.
        Silent, ///< Never answers.
        Slow, ///< Answers after more than a second.
    };

    explicit FakeLxqt(Manner manner);
    ~FakeLxqt() override;

    bool isDesktop = true;
    /// One "mode:file" for each picture.
    QStringList told;

    /// As a person would set it.
    static void writeSetting(const QString &name, const QVariant &value);
    static QVariant setting(const QString &name);

public Q_SLOTS:
    void setWallpaper(const QString &file, const QString &mode);

private:
    const Manner m_manner;
};
