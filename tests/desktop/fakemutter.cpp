#include "fakemutter.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>

using namespace Qt::StringLiterals;

namespace {

const QString busName = u"the fake GNOME"_s;
const QString service = u"org.gnome.Mutter.DisplayConfig"_s;
const QString path = u"/org/gnome/Mutter/DisplayConfig"_s;

struct Output
{
    QString name;
};

struct LogicalMonitor
{
    int x = 0;
    bool isPrimary = false;
    QList<Output> outputs;
};

QDBusArgument &operator<<(QDBusArgument &argument, const Output &output)
{
    argument.beginStructure();
    argument << output.name << u"vendor"_s << u"product"_s << u"serial"_s;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const LogicalMonitor &monitor)
{
    argument.beginStructure();
    argument << monitor.x << 0 << 1.0 << uint(0) << monitor.isPrimary << monitor.outputs
             << QVariantMap();
    argument.endStructure();
    return argument;
}

// The library wants both ways; nobody reads here.
const QDBusArgument &operator>>(const QDBusArgument &argument, Output & /*output*/)
{
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, LogicalMonitor & /*monitor*/)
{
    return argument;
}

} // namespace

FakeMutter::FakeMutter(const QString &primary) : m_primary(primary)
{
    qDBusRegisterMetaType<Output>();
    qDBusRegisterMetaType<QList<Output>>();
    qDBusRegisterMetaType<LogicalMonitor>();
    qDBusRegisterMetaType<QList<LogicalMonitor>>();
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, busName);
    if (!bus.registerObject(path, this, QDBusConnection::ExportAllSlots)
        || !bus.registerService(service)) {
        qFatal("The fake needs a bus of its own.");
    }
}

FakeMutter::~FakeMutter()
{
    QDBusConnection::disconnectFromBus(busName);
}

void FakeMutter::changePrimary(const QString &primary)
{
    m_primary = primary;
    QDBusConnection(busName).send(QDBusMessage::createSignal(path, service, u"MonitorsChanged"_s));
}

void FakeMutter::GetCurrentState()
{
    const QList<LogicalMonitor> monitors{
        {0, m_primary == "left"_L1, {{u"left"_s}}}, {80, m_primary == "right"_L1, {{u"right"_s}}}};
    setDelayedReply(true);
    // What the monitors themselves can do is left out.
    connection().send(
        message().createReply({uint(1), QStringList(), QVariant::fromValue(monitors), properties}));
}
