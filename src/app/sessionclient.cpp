#include "app/sessionclient.h"

#include "app/appdelegate.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QGuiApplication>
#include <QPointer>

#include <QCoroDBusPendingCall>

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
    auto *const names = new QDBusServiceWatcher(
        managerName, m_bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(names, &QDBusServiceWatcher::serviceRegistered, this, [this] { registerClient(); });
    registerClient();
}

QCoro::Task<> SessionClient::registerClient()
{
    const QPointer alive(this);
    auto call = QDBusMessage::createMethodCall(
        managerName, managerPath, managerName, u"RegisterClient"_s);
    call << QGuiApplication::desktopFileName() << qEnvironmentVariable("DESKTOP_AUTOSTART_ID");
    call.setAutoStartService(false);
    const QDBusPendingReply<QDBusObjectPath> answer = co_await m_bus.asyncCall(call);
    if (alive && answer.isValid()) {
        m_path = answer.value().path();
        listen();
    }
}

void SessionClient::listen()
{
    const auto connectTo = [this](const QString &signal, const char *slot) {
        m_bus.connect(managerName, m_path, clientInterface, signal, this, slot);
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
