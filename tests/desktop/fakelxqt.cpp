#include "fakelxqt.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QSettings>
#include <QStandardPaths>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

const QString busName = u"the fake LXQt"_s;

QString settingsFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + u"/pcmanfm-qt/lxqt/settings.conf"_s;
}

} // namespace

FakeLxqt::FakeLxqt(Manner manner) : m_manner(manner)
{
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, busName);
    const bool ready = bus.registerObject(u"/Application"_s, this,
                           QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties)
        && bus.registerService(u"org.pcmanfm.PCManFM"_s);
    if (!ready) {
        qFatal("The fake needs a bus of its own.");
    }
}

FakeLxqt::~FakeLxqt()
{
    QDBusConnection::disconnectFromBus(busName);
}

void FakeLxqt::writeSetting(const QString &name, const QVariant &value)
{
    QSettings(settingsFile(), QSettings::IniFormat).setValue(u"Desktop/"_s + name, value);
}

QVariant FakeLxqt::setting(const QString &name)
{
    return QSettings(settingsFile(), QSettings::IniFormat).value(u"Desktop/"_s + name);
}

void FakeLxqt::setWallpaper(const QString &file, const QString &mode)
{
    told.append(mode + u':' + file);
    if (m_manner == Obliging || m_manner == Slow) {
        writeSetting(u"Wallpaper"_s, file);
    }
    if (m_manner == Silent || m_manner == Slow) {
        setDelayedReply(true);
    }
    if (m_manner == Slow) {
        constexpr int slowness = 1200;
        QTimer::singleShot(slowness, this,
            [reply = message().createReply()] { QDBusConnection(busName).send(reply); });
    }
}
