#include "desktop/lxqtdesktop.h"

#include "desktop/buscall.h"

#include <QDateTime>
#include <QDBusVariant>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QSettings>
#include <QStandardPaths>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

QDBusMessage fileManagerCall(
    const QString &interface, const QString &method, const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        u"org.pcmanfm.PCManFM"_s, u"/Application"_s, interface, method);
    call.setArguments(arguments);
    call.setAutoStartService(false);
    return call;
}

/// Of the file manager's profiles, the one changed last is in use. Empty before the first change.
QString settingsFile()
{
    const QStringList folders = QStandardPaths::locateAll(
        QStandardPaths::GenericConfigLocation, u"pcmanfm-qt"_s, QStandardPaths::LocateDirectory);
    QFileInfo newest;
    // The person's own folder comes first, those of the system after it.
    for (const QString &folder : folders) {
        for (const QFileInfo &profile : QDir(folder).entryInfoList(QDir::Dirs)) {
            const QFileInfo file(profile.filePath() + u"/settings.conf"_s);
            if (file.exists() && file.lastModified() > newest.lastModified()) {
                newest = file;
            }
        }
        if (newest.exists()) {
            break;
        }
    }
    return newest.filePath();
}

QVariant savedSetting(const QString &name)
{
    return QSettings(settingsFile(), QSettings::IniFormat).value(u"Desktop/"_s + name);
}

Placement placementOfMode(const QString &mode)
{
    return mode == "none"_L1  ? Placement::None
        : mode == "tile"_L1   ? Placement::Tile
        : mode == "center"_L1 ? Placement::Center
        : mode == "fit"_L1    ? Placement::Fit
        : mode == "zoom"_L1   ? Placement::Cover
                              : Placement::Stretch;
}

bool paintsEachScreenByItself()
{
    return savedSetting(u"PerScreenWallpaper"_s).toBool();
}

} // namespace

LxqtDesktop::LxqtDesktop(QDBusConnection bus, std::chrono::milliseconds timeForAnswers)
    : OnePictureDesktop(std::move(bus), u"lxqt"_s, timeForAnswers)
{
}

QCoro::Task<bool> LxqtDesktop::paints(QDBusConnection bus, QDeadlineTimer deadline)
{
    const QVariantList property{u"org.pcmanfm.Application"_s, u"desktopManagerEnabled"_s};
    const QDBusMessage call
        = fileManagerCall(u"org.freedesktop.DBus.Properties"_s, u"Get"_s, property);
    const BusResult answer = co_await callBus(bus, call, deadline);
    if (!answer) {
        // One that hangs may well be the painter: that it does not answer is told when it is asked
        // for more.
        co_return answer.error().name == "org.freedesktop.DBus.Error.NoReply"_L1;
    }
    co_return answer->value(0).value<QDBusVariant>().variant().toBool();
}

QCoro::Task<tl::expected<Setting, QString>> LxqtDesktop::setting()
{
    const QColor colour(savedSetting(u"BgColor"_s).toString());
    const Placement placement = placementOfMode(savedSetting(u"WallpaperMode"_s).toString());
    const bool isEachByItself
        = paintsEachScreenByItself() || QGuiApplication::screens().size() == 1;
    // The mode that comes with a picture is forgotten at the next start; then this one counts.
    // Spanning all screens, a picture is seen as it is in every mode.
    co_return Setting{savedSetting(u"Wallpaper"_s).toString(), placement,
        !paintsEachScreenByItself(), colour.isValid() ? colour : Qt::black,
        isEachByItself && placement == Placement::Cover};
}

QCoro::Task<SetResult> LxqtDesktop::show(QString file, bool isSpanning)
{
    // One tile as large as the desktop is the only way over all screens where each has its own.
    const QString mode = !isSpanning ? u"zoom"_s
        : paintsEachScreenByItself() ? u"tile"_s
                                     : u"stretch"_s;
    const QVariantList picture{file, mode};
    const QDBusMessage call
        = fileManagerCall(u"org.pcmanfm.Application"_s, u"setWallpaper"_s, picture);
    const BusResult answer = co_await callBus(bus(), call, deadline());
    if (!answer) {
        co_return tl::make_unexpected(answer.error().sentence);
    }
    // It answers before it looks at the file, and does not tell.
    if (savedSetting(u"Wallpaper"_s).toString() != file) {
        co_return tl::make_unexpected(u"The desktop did not keep the picture"_s);
    }
    co_return {};
}

} // namespace desktop
