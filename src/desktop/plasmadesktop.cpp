#include "desktop/plasmadesktop.h"

#include "desktop/buscall.h"
#include "desktop/pngcopy.h"

#include <QCoroFuture>
#include <QDBusMessage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

// Walks over all desktops, as asking Plasma 5.27 for the one of a screen that is gone makes it
// crash. Desktops of other activities have no screen. The image plugin is named because a slide
// show or a plain colour may be there now.
const QString scriptFrame = uR"js(
var picture = %1[0];
var found = 0;
desktops().forEach(function (desktop) {
    if (desktop.screen < 0) {
        return;
    }
    var place = screenGeometry(desktop.screen);
    if (place.x !== %2 || place.y !== %3) {
        return;
    }
    var group = ['Wallpaper', 'org.kde.image', 'General'];
    %4
    desktop.currentConfigGroup = group;
    if (desktop.wallpaperPlugin === 'org.kde.image' && desktop.readConfig('Image') == picture) {
        found += 1;
    }
});
print(found);
)js"_s;

const QString showing = uR"js(desktop.wallpaperPlugin = 'org.kde.image';
    desktop.currentConfigGroup = group;
    desktop.writeConfig('Image', picture);)js"_s;

QDBusMessage scriptCall(const QString &script)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        u"org.kde.plasmashell"_s, u"/PlasmaShell"_s, u"org.kde.PlasmaShell"_s, u"evaluateScript"_s);
    call.setAutoStartService(false);
    call.setArguments({script});
    return call;
}

} // namespace

PlasmaDesktop::PlasmaDesktop(QDBusConnection bus) : m_bus(std::move(bus)) { }

QString PlasmaDesktop::script(Task task, const QString &file, QPoint topLeft)
{
    // Only JSON's way of quoting is sure to be read by the script as it was meant, and Qt writes
    // that for whole documents only.
    const QString url = QUrl::fromLocalFile(file).toString(QUrl::FullyEncoded);
    const QByteArray quoted = QJsonDocument(QJsonArray{url}).toJson(QJsonDocument::Compact);
    return scriptFrame.arg(QString::fromUtf8(quoted), QString::number(topLeft.x()),
        QString::number(topLeft.y()), task == Task::Show ? showing : QString());
}

QCoro::Task<SetResult> PlasmaDesktop::setPicture(Picture picture, Screen screen)
{
    const tl::expected<QString, QString> file = co_await prepareFile(picture);
    if (!file) {
        co_return tl::make_unexpected(file.error());
    }
    m_deadline.setRemainingTime(answerTime);
    const QPoint topLeft = screen.geometry.topLeft();
    const tl::expected<int, QString> shown = co_await run(script(Task::Show, *file, topLeft));
    if (!shown) {
        co_return tl::make_unexpected(shown.error());
    }
    if (*shown == 0) {
        co_return tl::make_unexpected(u"The desktop shows nothing on the main screen"_s);
    }
    const tl::expected<int, QString> kept = co_await run(script(Task::Look, *file, topLeft));
    if (!kept) {
        co_return tl::make_unexpected(kept.error());
    }
    if (*kept != *shown) {
        co_return tl::make_unexpected(u"The desktop did not keep the picture"_s);
    }
    co_return {};
}

QCoro::Task<tl::expected<int, QString>> PlasmaDesktop::run(QString script)
{
    const BusResult answer = co_await callBus(m_bus, scriptCall(script), m_deadline);
    if (!answer) {
        co_return tl::make_unexpected(answer.error().sentence);
    }
    bool isNumber = false;
    const int desktops = answer->value(0).toString().trimmed().toInt(&isNumber);
    if (!isNumber) {
        co_return tl::make_unexpected(u"The desktop refused the picture"_s);
    }
    co_return desktops;
}

} // namespace desktop
