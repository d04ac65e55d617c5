#include "desktop/xfcedesktop.h"

#include "desktop/buscall.h"
#include "desktop/pngcopy.h"

#include <QCoroFuture>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QRegularExpression>

#include <algorithm>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

constexpr auto lastImage = "/last-image"_L1;
constexpr auto imageStyle = "/image-style"_L1;
constexpr int zoomedStyle = 5;

QDBusMessage settingsCall(const QString &method, const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        u"org.xfce.Xfconf"_s, u"/org/xfce/Xfconf"_s, u"org.xfce.Xfconf"_s, method);
    call.setArguments(QVariantList{u"xfce4-desktop"_s} + arguments);
    return call;
}

QDBusMessage setting(const QString &property, const QVariant &value)
{
    // Wrapped once: a variant within a variant makes the settings service crash.
    return settingsCall(u"SetProperty"_s, {property, QVariant::fromValue(QDBusVariant(value))});
}

QStringList workspacesMatching(const QStringList &properties, const QString &monitorPattern)
{
    const QRegularExpression path(
        u"^/backdrop/screen0/monitor%1/(workspace[0-9]+)/"_s.arg(monitorPattern));
    QStringList workspaces;
    for (const QString &property : properties) {
        const QRegularExpressionMatch match = path.match(property);
        if (match.hasMatch() && !workspaces.contains(match.captured(1))) {
            workspaces.append(match.captured(1));
        }
    }
    workspaces.sort();
    return workspaces;
}

bool shows(const QVariantMap &properties, const QString &workspace, const QString &file)
{
    const QVariant style = properties.value(workspace + imageStyle, zoomedStyle);
    return properties.value(workspace + lastImage).toString() == file
        && XfceDesktop::isStyleForOneMonitor(style);
}

} // namespace

XfceDesktop::XfceDesktop(QDBusConnection bus) : m_bus(std::move(bus)) { }

QStringList XfceDesktop::workspacePaths(const QStringList &properties, const QString &monitor)
{
    QStringList workspaces = workspacesMatching(properties, QRegularExpression::escape(monitor));
    if (workspaces.isEmpty()) {
        workspaces = workspacesMatching(properties, u"[^/]+"_s);
    }
    if (workspaces.isEmpty()) {
        workspaces = QStringList{u"workspace0"_s};
    }
    for (QString &workspace : workspaces) {
        workspace.prepend(u"/backdrop/screen0/monitor%1/"_s.arg(monitor));
    }
    return workspaces;
}

bool XfceDesktop::isStyleForOneMonitor(const QVariant &style)
{
    constexpr int noPicture = 0;
    constexpr int acrossAllMonitors = 6;
    return style.toInt() != noPicture && style.toInt() != acrossAllMonitors;
}

QCoro::Task<SetResult> XfceDesktop::setPicture(Picture picture, Screen screen)
{
    const tl::expected<QString, QString> file = co_await prepareFile(picture);
    if (!file) {
        co_return tl::make_unexpected(file.error());
    }
    m_deadline.setRemainingTime(answerTime);
    // The settings service takes everything, also while nobody paints: the painter is asked first.
    SetResult painter = co_await send(painterCall(u"org.xfce.xfdesktop"_s));
    if (!painter) {
        co_return painter;
    }
    const tl::expected<QVariantMap, QString> before = co_await backdropProperties();
    if (!before) {
        co_return tl::make_unexpected(before.error());
    }
    const QStringList workspaces = workspacePaths(before->keys(), screen.name);
    SetResult changed = co_await change(workspaces, *file, *before);
    if (!changed) {
        co_return changed;
    }
    co_return co_await readBack(workspaces, *file);
}

QCoro::Task<SetResult> XfceDesktop::change(
    QStringList workspaces, QString file, QVariantMap properties)
{
    for (const QString &workspace : workspaces) {
        SetResult set = co_await send(setting(workspace + lastImage, file));
        const QVariant style = properties.value(workspace + imageStyle, zoomedStyle);
        if (set && !isStyleForOneMonitor(style)) {
            set = co_await send(setting(workspace + imageStyle, zoomedStyle));
        }
        if (!set) {
            co_return set;
        }
    }
    co_return {};
}

QCoro::Task<SetResult> XfceDesktop::readBack(QStringList workspaces, QString file)
{
    const tl::expected<QVariantMap, QString> properties = co_await backdropProperties();
    if (!properties) {
        co_return tl::make_unexpected(properties.error());
    }
    const bool kept = std::all_of(workspaces.begin(), workspaces.end(),
        [&](const QString &workspace) { return shows(*properties, workspace, file); });
    if (!kept) {
        co_return tl::make_unexpected(u"The desktop did not keep the picture"_s);
    }
    co_return {};
}

QCoro::Task<SetResult> XfceDesktop::send(QDBusMessage call)
{
    const BusResult answer = co_await callBus(m_bus, call, m_deadline);
    if (!answer) {
        co_return tl::make_unexpected(answer.error().sentence);
    }
    co_return {};
}

QCoro::Task<tl::expected<QVariantMap, QString>> XfceDesktop::backdropProperties()
{
    const QDBusMessage call = settingsCall(u"GetAllProperties"_s, {u"/backdrop"_s});
    const BusResult answer = co_await callBus(m_bus, call, m_deadline);
    // A profile in which no desktop was ever painted.
    if (!answer && answer.error().name == "org.xfce.Xfconf.Error.PropertyNotFound"_L1) {
        co_return QVariantMap();
    }
    if (!answer) {
        co_return tl::make_unexpected(answer.error().sentence);
    }
    co_return dictionary(answer->value(0));
}

} // namespace desktop
