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

} // namespace

SingleInstance::SingleInstance(QObject *parent) : QObject(parent) { }

SingleInstance::Role SingleInstance::claim(const ActivationToken &token)
{
    const auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return Role::First;
    }
    return serveOn(bus) ? Role::First : activateOther(token);
}

bool SingleInstance::serveOn(QDBusConnection bus)
{
    // The object must be there before the name: whoever sees the name may call at once.
    bus.registerObject(objectPath, this, QDBusConnection::ExportAllSlots);
    return bus.registerService(serviceName);
}

SingleInstance::Role SingleInstance::activateOther(const ActivationToken &token)
{
    auto call
        = QDBusMessage::createMethodCall(serviceName, objectPath, interfaceName, u"Activate"_s);
    call << token.platformData();
    const auto answer = QDBusConnection::sessionBus().call(call, QDBus::Block, answerTimeoutMs);
    return answer.type() == QDBusMessage::ReplyMessage ? Role::Second : Role::Unreachable;
}

bool SingleInstance::startedByBus()
{
    return qEnvironmentVariableIsSet("DBUS_STARTER_BUS_TYPE");
}

void SingleInstance::Activate(const QVariantMap &platformData)
{
    ActivationToken::ofCall(platformData).adopt();
    Q_EMIT activated();
    ActivationToken::drop();
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
    ActivationToken::ofCall(platformData).adopt();
    if (name == "generate"_L1) {
        Q_EMIT generateRequested();
    } else if (name == "settings"_L1) {
        Q_EMIT settingsRequested();
    } else if (name == "quit"_L1) {
        Q_EMIT quitRequested();
    }
    ActivationToken::drop();
}

} // namespace app
