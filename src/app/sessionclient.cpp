#include "app/sessionclient.h"

#include "app/appdelegate.h"
#include "desktop/buscall.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QGuiApplication>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace app {

namespace {

const auto managerName = u"org.gnome.SessionManager"_s;
const auto managerPath = u"/org/gnome/SessionManager"_s;
const auto clientInterface = u"org.gnome.SessionManager.ClientPrivate"_s;

} // namespace

SessionClient::SessionClient(AppDelegate &delegate, QDBusConnection bus, QObject *parent)
    : QObject(parent), m_delegate(delegate), m_bus(std::move(bus))
{
}

SessionClient::~SessionClient() = default;

bool SessionClient::isAskedByX11()
{
    return QGuiApplication::platformName() == "xcb"_L1
        && !qEnvironmentVariableIsEmpty("SESSION_MANAGER");
}

void SessionClient::watch()
{
    m_names = std::make_unique<QDBusServiceWatcher>(
        managerName, m_bus, QDBusServiceWatcher::WatchForRegistration);
    connect(
        m_names.get(), &QDBusServiceWatcher::serviceRegistered, this, [this] { registerClient(); });
    registerClient();
}

void SessionClient::moveTo(const QDBusConnection &bus)
{
    m_bus = bus;
    m_path.clear();
    watch();
}

QCoro::Task<> SessionClient::registerClient()
{
    const QPointer alive(this);
    auto call = QDBusMessage::createMethodCall(
        managerName, managerPath, managerName, u"RegisterClient"_s);
    call << QGuiApplication::desktopFileName() << qEnvironmentVariable("DESKTOP_AUTOSTART_ID");
    call.setAutoStartService(false);
    const desktop::BusResult answer
        = co_await desktop::callBus(m_bus, call, QDeadlineTimer(desktop::unhurriedTime));
    const auto path = answer ? answer->value(0).value<QDBusObjectPath>() : QDBusObjectPath();
    if (alive && !path.path().isEmpty()) {
        m_path = path.path();
        listen();
    }
}

void SessionClient::listen()
{
    // Whoever else is on the bus could quit the program in simpler ways.
    const auto connectTo = [this](const QString &signal, const char *slot) {
        m_bus.connect(desktop::anybody, m_path, clientInterface, signal, this, slot);
    };
    connectTo(u"QueryEndSession"_s, SLOT(onQueryEndSession()));
    connectTo(u"EndSession"_s, SLOT(onEndSession()));
    connectTo(u"Stop"_s, SLOT(onStop()));
}

void SessionClient::onQueryEndSession()
{
    const bool agrees = m_delegate.applicationShouldTerminate() == AppDelegate::TerminateReply::Now;
    answer(agrees, agrees ? QString() : u"Plenaura runs until it is quit from its menu"_s);
}

// Nobody asks any more: somebody insisted.
void SessionClient::onEndSession()
{
    answer(true, {});
    m_delegate.quitForReal();
}

void SessionClient::onStop()
{
    m_delegate.quitForReal();
}

void SessionClient::answer(bool agrees, const QString &reason)
{
    auto call = QDBusMessage::createMethodCall(
        managerName, m_path, clientInterface, u"EndSessionResponse"_s);
    call << agrees << reason;
    m_bus.asyncCall(call);
}

} // namespace app
