#include "app/singleinstance.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>

using namespace Qt::StringLiterals;

namespace app {

namespace {

const auto serviceName = u"com.tarnel.Plenaura"_s;
const auto objectPath = u"/com/tarnel/Plenaura"_s;
const auto interfaceName = u"org.freedesktop.Application"_s;
constexpr int answerTimeoutMs = 5000;

// Lets the window that is shown next come to the front although another program has the focus.
void adoptActivationToken(const QVariantMap &platformData)
{
    const auto token = platformData.value(u"activation-token"_s).toString().toUtf8();
    const auto startupId = platformData.value(u"desktop-startup-id"_s).toString().toUtf8();
    if (!token.isEmpty()) {
        qputenv("XDG_ACTIVATION_TOKEN", token);
    }
    if (!startupId.isEmpty()) {
        qputenv("DESKTOP_STARTUP_ID", startupId);
    }
}

QVariantMap ownActivationToken()
{
    QVariantMap platformData;
    if (qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN")) {
        platformData[u"activation-token"_s] = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
    }
    if (qEnvironmentVariableIsSet("DESKTOP_STARTUP_ID")) {
        platformData[u"desktop-startup-id"_s] = qEnvironmentVariable("DESKTOP_STARTUP_ID");
    }
    return platformData;
}

} // namespace

SingleInstance::SingleInstance(QObject *parent) : QObject(parent) { }

SingleInstance::Role SingleInstance::claim()
{
    const auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return Role::First;
    }
    return serveOn(bus) ? Role::First : activateOther();
}

bool SingleInstance::serveOn(QDBusConnection bus)
{
    // The object must be there before the name: whoever sees the name may call at once.
    bus.registerObject(objectPath, this, QDBusConnection::ExportAllSlots);
    return bus.registerService(serviceName);
}

SingleInstance::Role SingleInstance::activateOther()
{
    auto call
        = QDBusMessage::createMethodCall(serviceName, objectPath, interfaceName, u"Activate"_s);
    call << ownActivationToken();
    const auto answer = QDBusConnection::sessionBus().call(call, QDBus::Block, answerTimeoutMs);
    return answer.type() == QDBusMessage::ReplyMessage ? Role::Second : Role::Unreachable;
}

bool SingleInstance::startedByBus()
{
    return qEnvironmentVariableIsSet("DBUS_STARTER_BUS_TYPE");
}

void SingleInstance::Activate(const QVariantMap &platformData)
{
    adoptActivationToken(platformData);
    Q_EMIT activated();
}

void SingleInstance::Open(const QStringList &uris, const QVariantMap &platformData)
{
    Q_UNUSED(uris) // The program has no documents.
    Activate(platformData);
}

void SingleInstance::ActivateAction(
    const QString &name, const QVariantList &parameter, const QVariantMap &platformData)
{
    Q_UNUSED(parameter)
    adoptActivationToken(platformData);
    if (name == "generate"_L1) {
        Q_EMIT generateRequested();
    } else if (name == "settings"_L1) {
        Q_EMIT settingsRequested();
    } else if (name == "quit"_L1) {
        Q_EMIT quitRequested();
    }
}

} // namespace app
