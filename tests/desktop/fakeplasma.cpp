#include "fakeplasma.h"

#include <QDBusConnection>
#include <QDBusError>

using namespace Qt::StringLiterals;

namespace {

const QString busName = u"the fake Plasma"_s;

const QString shell = uR"js(
var printed = '';
function print(text) { printed += text; }
function Desktop(screen) {
    this.screen = screen;
    this.wallpaperPlugin = 'org.kde.slideshow';
    this.currentConfigGroup = [];
    this.kept = {};
}
Desktop.prototype.writeConfig = function (key, value) {
    this.kept[this.currentConfigGroup.join('/') + '/' + key] = value;
};
Desktop.prototype.readConfig = function (key) {
    return this.kept[this.currentConfigGroup.join('/') + '/' + key];
};
var all = [new Desktop(-1), new Desktop(0), new Desktop(1)];
function desktops() { return all; }
function screenGeometry(screen) {
    if (screen < 0) {
        throw new Error('crashed');
    }
    return { x: 800 * screen, y: -20 * screen, width: 800, height: 600 };
}
)js"_s;

} // namespace

FakePlasma::FakePlasma(Manner manner) : m_manner(manner)
{
    m_engine.evaluate(shell);
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, busName);
    if (!bus.registerObject(u"/PlasmaShell"_s, this, QDBusConnection::ExportAllSlots)
        || !bus.registerService(u"org.kde.plasmashell"_s)) {
        qFatal("The fake needs a bus of its own.");
    }
}

FakePlasma::~FakePlasma()
{
    leave();
}

QString FakePlasma::run(const QString &script)
{
    m_engine.evaluate(u"printed = ''"_s);
    const QJSValue value = m_engine.evaluate(script);
    return value.isError() ? value.toString() : m_engine.evaluate(u"printed"_s).toString();
}

QStringList FakePlasma::pictures()
{
    return run(uR"js(print(all.map(function (desktop) {
        return desktop.wallpaperPlugin + ' ' + desktop.kept['Wallpaper/org.kde.image/General/Image'];
    }).join('\n')))js"_s)
        .split(u'\n');
}

QString FakePlasma::evaluateScript(const QString &script)
{
    switch (m_manner) {
    case Breaking:
        sendErrorReply(QDBusError::Failed, u"Error: no such thing at line 3\n\nBacktrace:\nat 3"_s);
        return {};
    case Mumbling:
        return u"undefined"_s;
    case Dying:
        setDelayedReply(true);
        QMetaObject::invokeMethod(this, &FakePlasma::leave, Qt::QueuedConnection);
        return {};
    case Silent:
        setDelayedReply(true);
        return {};
    case Obliging:
    case Forgetful:
        break;
    }
    // What a script sees of its own change is still there when it ends.
    const QString answer = run(script);
    if (m_manner == Forgetful) {
        run(u"all.forEach(function (desktop) { desktop.kept = {}; })"_s);
    }
    return answer;
}

void FakePlasma::leave()
{
    QDBusConnection::disconnectFromBus(busName);
}
