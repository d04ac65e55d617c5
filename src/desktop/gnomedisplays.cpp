#include "desktop/gnomedisplays.h"

#include "desktop/buscall.h"

#include <QDBusArgument>
#include <QPointer>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

const QString displays = u"org.gnome.Mutter.DisplayConfig"_s;
const QString displaysPath = u"/org/gnome/Mutter/DisplayConfig"_s;

struct GnomeScreen
{
    bool isPrimary = false;
    QString output; ///< Of screens that mirror each other, the first one's.
};

QString firstOutput(const QDBusArgument &argument)
{
    QStringList outputs;
    argument.beginArray();
    while (!argument.atEnd()) {
        QString output;
        QString vendor;
        QString product;
        QString serial;
        argument.beginStructure();
        argument >> output >> vendor >> product >> serial;
        argument.endStructure();
        outputs.append(output);
    }
    argument.endArray();
    return outputs.value(0);
}

GnomeScreen nextScreen(const QDBusArgument &argument)
{
    int x = 0;
    int y = 0;
    double scale = 1;
    uint transform = 0;
    QVariantMap properties;
    GnomeScreen screen;
    argument.beginStructure();
    argument >> x >> y >> scale >> transform >> screen.isPrimary;
    screen.output = firstOutput(argument);
    argument >> properties;
    argument.endStructure();
    return screen;
}

QString primaryOutput(const QVariant &screens)
{
    const auto argument = screens.value<QDBusArgument>();
    if (argument.currentSignature() != "a(iiduba(ssss)a{sv})"_L1) {
        return {};
    }
    QString primary;
    argument.beginArray();
    while (!argument.atEnd()) {
        const GnomeScreen screen = nextScreen(argument);
        primary = screen.isPrimary ? screen.output : primary;
    }
    argument.endArray();
    return primary;
}

QCoro::Task<QString> askPrimary(QDBusConnection bus)
{
    const BusResult state = co_await callBus(bus, displayStateCall(), QDeadlineTimer(answerTime));
    co_return state ? primaryOutput(state->value(2)) : QString();
}

} // namespace

QDBusMessage displayStateCall()
{
    QDBusMessage call
        = QDBusMessage::createMethodCall(displays, displaysPath, displays, u"GetCurrentState"_s);
    call.setAutoStartService(false);
    return call;
}

GnomePrimaryScreen::GnomePrimaryScreen(QDBusConnection bus, QObject *parent)
    : QObject(parent), m_bus(std::move(bus)),
      m_gnome(displays, m_bus, QDBusServiceWatcher::WatchForRegistration)
{
    connect(&m_gnome, &QDBusServiceWatcher::serviceRegistered, this, &GnomePrimaryScreen::ask);
    listen();
}

void GnomePrimaryScreen::moveTo(const QDBusConnection &bus)
{
    m_bus = bus;
    m_gnome.setConnection(bus);
    listen();
}

void GnomePrimaryScreen::listen()
{
    m_bus.connect(anybody, displaysPath, displays, u"MonitorsChanged"_s, this, SLOT(ask()));
    ask();
}

void GnomePrimaryScreen::ask()
{
    askPrimary(m_bus).then([self = QPointer(this)](const QString &name) {
        if (self) {
            self->m_name = name;
        }
    });
}

} // namespace desktop
