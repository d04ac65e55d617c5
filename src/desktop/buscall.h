#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QString>
#include <QVariantList>

#include <chrono>

#include <QCoroTask>
#include <tl/expected.hpp>

namespace desktop {

/// All the time a desktop has for its answers to one change of picture.
constexpr std::chrono::seconds answerTime{3};

struct BusError
{
    QString name; ///< The bus's own name for it, such as "org.freedesktop.DBus.Error.NoReply".
    QString sentence; ///< For people, with the bus's own text at its end if that says more.
};

using BusResult = tl::expected<QVariantList, BusError>;

/// Sends @p call and comes back with the values of the answer, at @p deadline at the latest.
QCoro::Task<BusResult> callBus(QDBusConnection bus, QDBusMessage call, QDeadlineTimer deadline);

/// A question that says nothing but whether @p painter, a name on the bus, still answers.
QDBusMessage painterCall(const QString &painter);

} // namespace desktop
