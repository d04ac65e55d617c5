#include "desktop/buscall.h"

#include <QCoroFuture>
#include <QDBusArgument>
#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QPromise>
#include <QScopedPointer>

#include <algorithm>
#include <memory>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

const QString notRunning = u"The desktop is not running"_s;

QString plainSentence(const QDBusMessage &answer, const QDBusError &error)
{
    if (error.name() == "org.freedesktop.DBus.Error.NameHasNoOwner"_L1) {
        return notRunning;
    }
    switch (error.type()) {
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        // The bus sends the same error when the other side ends instead of answering; when the
        // time is up, nobody has sent anything.
        return answer.service().isEmpty()
            ? u"The desktop did not answer within %1 seconds"_s.arg(answerTime.count())
            : u"The desktop ended without answering"_s;
    case QDBusError::ServiceUnknown:
        return notRunning;
    case QDBusError::Disconnected:
        return unreachableBus;
    default:
        return u"The desktop refused the picture"_s;
    }
}

BusError readableError(const QDBusMessage &answer)
{
    const QDBusError error(answer);
    const QString sentence = plainSentence(answer, error);
    // What the bus says of silence is three lines of what might be the reason.
    const QString detail
        = error.type() == QDBusError::NoReply ? QString() : error.message().section(u'\n', 0, 0);
    return {error.name(), detail.isEmpty() ? sentence : sentence + u": "_s + detail};
}

} // namespace

QCoro::Task<BusResult> callBus(QDBusConnection bus, QDBusMessage call, QDeadlineTimer deadline)
{
    // Less than that would mean Qt's own time-out, which is a longer one.
    const int milliseconds = int(std::max<qint64>(1, deadline.remainingTime()));
    const QDBusPendingCall pending = bus.asyncCall(call, milliseconds);
    if (!pending.isFinished()) {
        // When the bus ends, Qt says so twice of each call that has no answer yet; QCoro's own ways
        // of waiting for a call or a signal would go on twice, the second time with what is gone.
        const QScopedPointer<QDBusPendingCallWatcher, QScopedPointerDeleteLater> watcher(
            new QDBusPendingCallWatcher(pending));
        const auto promise = std::make_shared<QPromise<void>>();
        promise->start();
        QObject::connect(watcher.get(), &QDBusPendingCallWatcher::finished, watcher.get(),
            [promise] { promise->finish(); });
        const QFuture<void> finished = promise->future();
        co_await finished;
    }
    const QDBusMessage answer = pending.reply();
    if (answer.type() != QDBusMessage::ReplyMessage) {
        co_return tl::make_unexpected(readableError(answer));
    }
    co_return answer.arguments();
}

QVariantMap dictionary(const QVariant &value)
{
    const auto argument = value.value<QDBusArgument>();
    return argument.currentSignature() == "a{sv}"_L1 ? qdbus_cast<QVariantMap>(argument)
                                                     : QVariantMap();
}

QDBusMessage painterCall(const QString &painter)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        painter, u"/"_s, u"org.freedesktop.DBus.Peer"_s, u"Ping"_s);
    call.setAutoStartService(false);
    return call;
}

} // namespace desktop
