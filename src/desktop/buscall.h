#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <chrono>

#include <QCoroTask>
#include <tl/expected.hpp>

namespace desktop {

/// All the time a desktop has for its answers to one change of picture.
constexpr std::chrono::seconds answerTime{3};

/// For a question that nobody waits for.
constexpr std::chrono::seconds unhurriedTime{25};

struct BusError
{
    QString name; ///< The bus's own name for it, such as "org.freedesktop.DBus.Error.NoReply".
    QString sentence; ///< For people, with the bus's own text at its end if that says more.
};

/// Who sends a signal, to connect to it: anybody. For a name, Qt would ask the bus at once who has
/// it, and abort the program if the bus has ended. So what is heard is only a reason to ask, or
/// comes on a path that nobody else knows.
inline const QString anybody;

inline const QString unreachableBus = QStringLiteral("The session bus cannot be reached");

using BusResult = tl::expected<QVariantList, BusError>;

/// Sends @p call and comes back with the values of the answer, at @p deadline at the latest.
QCoro::Task<BusResult> callBus(QDBusConnection bus, QDBusMessage call, QDeadlineTimer deadline);

/// The dictionary of texts and values of any type, a{sv}, that an answer holds as @p value. Empty
/// where it is anything else, which Qt would read as if it were one, and crash.
QVariantMap dictionary(const QVariant &value);

/// A question that says nothing but whether @p painter, a name on the bus, still answers.
QDBusMessage painterCall(const QString &painter);

} // namespace desktop
