#include "fakexfce.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

const QString busName = u"the fake Xfce"_s;

} // namespace

FakeXfce::FakeXfce(Manner manner) : m_manner(manner)
{
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, busName);
    const bool ready
        = bus.registerObject(u"/org/xfce/Xfconf"_s, this, QDBusConnection::ExportAllSlots)
        && bus.registerService(u"org.xfce.Xfconf"_s)
        && bus.registerService(u"org.xfce.xfdesktop"_s);
    if (!ready) {
        qFatal("The fake needs a bus of its own.");
    }
}

FakeXfce::~FakeXfce()
{
    leave();
}

QVariantMap FakeXfce::GetAllProperties(const QString &channel, const QString &base)
{
    QVariantMap found;
    for (auto property = properties.cbegin(); property != properties.cend(); ++property) {
        if (channel == "xfce4-desktop"_L1 && property.key().startsWith(base + u'/')) {
            found.insert(property.key(), property.value());
        }
    }
    if (!answersOtherwise(found) && found.isEmpty()) {
        sendErrorReply(u"org.xfce.Xfconf.Error.PropertyNotFound"_s,
            u"Property \"%1\" does not exist on channel \"%2\""_s.arg(base, channel));
    }
    return found;
}

void FakeXfce::SetProperty(
    const QString &channel, const QString &property, const QDBusVariant &value)
{
    const QVariant plain = value.variant();
    changes.append(property + u'=' + QLatin1StringView(plain.typeName()) + u':' + plain.toString());
    if (m_manner == Refusing) {
        sendErrorReply(u"org.xfce.Xfconf.Error.PermissionDenied"_s,
            u"The property is locked\nand so is the rest"_s);
    } else if (!answersOtherwise({}) && channel == "xfce4-desktop"_L1 && m_manner != Forgetful) {
        properties.insert(property, plain);
    }
}

bool FakeXfce::answersOtherwise(const QVariant &answer)
{
    constexpr int slowness = 1200;
    if (m_manner == Dying) {
        setDelayedReply(true);
        QMetaObject::invokeMethod(this, &FakeXfce::leave, Qt::QueuedConnection);
    } else if (m_manner == Silent) {
        setDelayedReply(true);
    } else if (m_manner == Slow) {
        setDelayedReply(true);
        const QDBusMessage reply
            = answer.isValid() ? message().createReply(answer) : message().createReply();
        QTimer::singleShot(slowness, this, [reply] { QDBusConnection(busName).send(reply); });
    }
    return m_manner == Dying || m_manner == Silent || m_manner == Slow;
}

void FakeXfce::leave()
{
    QDBusConnection::disconnectFromBus(busName);
}
