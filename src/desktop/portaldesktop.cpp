#include "desktop/portaldesktop.h"

#include "desktop/buscall.h"
#include "desktop/pngcopy.h"
#include "desktop/unsupporteddesktop.h"

#include <QCoroFuture>
#include <QCoroSignal>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <QUuid>

#include <chrono>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

const QString portal = u"org.freedesktop.portal.Desktop"_s;

/// Hears the portal's response to one request. It must be there before the request is made, or the
/// response may come too early.
class PortalResponse : public QObject
{
    Q_OBJECT

public:
    PortalResponse(QDBusConnection bus, const QString &token)
    {
        const QString sender = bus.baseService().mid(1).replace(u'.', u'_');
        bus.connect(anybody, u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(sender, token),
            u"org.freedesktop.portal.Request"_s, u"Response"_s, this,
            SLOT(respond(uint, QVariantMap)));
    }

    /// Absent when there is none at @p deadline.
    QCoro::Task<std::optional<uint>> code(QDeadlineTimer deadline)
    {
        if (!m_code) {
            const std::chrono::milliseconds remaining(deadline.remainingTime());
            co_await qCoro(this, &PortalResponse::responded, remaining);
        }
        co_return m_code;
    }

public Q_SLOTS:
    void respond(uint code, const QVariantMap & /*results*/)
    {
        m_code = code;
        Q_EMIT responded();
    }

Q_SIGNALS:
    void responded();

private:
    std::optional<uint> m_code;
};

QDBusMessage wallpaperCall(const QFile &file, const QString &token)
{
    QDBusMessage call = QDBusMessage::createMethodCall(portal, u"/org/freedesktop/portal/desktop"_s,
        u"org.freedesktop.portal.Wallpaper"_s, u"SetWallpaperFile"_s);
    const QVariantMap options{
        {u"handle_token"_s, token}, {u"set-on"_s, u"background"_s}, {u"show-preview"_s, false}};
    const QString noParentWindow = u""_s;
    call.setArguments(
        {noParentWindow, QVariant::fromValue(QDBusUnixFileDescriptor(file.handle())), options});
    return call;
}

SetResult resultOf(std::optional<uint> code)
{
    if (!code) {
        return tl::make_unexpected(
            u"The desktop did not answer; it may be asking for permission"_s);
    }
    switch (*code) {
    case 0:
        return {};
    case 1:
        return tl::make_unexpected(u"Setting the picture was cancelled"_s);
    default:
        return tl::make_unexpected(u"The desktop refused the picture"_s);
    }
}

// Portals are made of parts, and only some desktops bring the one for wallpapers.
bool hasNoWallpapers(const BusError &error)
{
    return error.name == QDBusError::errorString(QDBusError::UnknownMethod)
        || error.name == QDBusError::errorString(QDBusError::UnknownInterface);
}

} // namespace

PortalDesktop::PortalDesktop(QDBusConnection bus, std::chrono::milliseconds patience)
    : m_bus(std::move(bus)), m_patience(patience)
{
}

QCoro::Task<SetResult> PortalDesktop::setPicture(Picture picture, Screen screen)
{
    const tl::expected<QString, QString> path = co_await prepareFile(picture);
    if (!path) {
        co_return tl::make_unexpected(path.error());
    }
    QFile file(*path);
    if (!file.open(QIODevice::ReadOnly)) {
        co_return tl::make_unexpected(u"The file cannot be read: "_s + file.errorString());
    }
    const QString token = u"plenaura"_s + QUuid::createUuid().toString(QUuid::Id128);
    PortalResponse response(m_bus, token);
    const BusResult asked
        = co_await callBus(m_bus, wallpaperCall(file, token), QDeadlineTimer(answerTime));
    if (!asked && hasNoWallpapers(asked.error())) {
        UnsupportedDesktop unsupported;
        co_return co_await unsupported.setPicture(picture, screen);
    }
    if (!asked) {
        co_return tl::make_unexpected(asked.error().sentence);
    }
    const std::optional<uint> code = co_await response.code(QDeadlineTimer(m_patience));
    co_return resultOf(code);
}

} // namespace desktop

#include "portaldesktop.moc"
