#include "desktop/swaydesktop.h"

#include "desktop/buscall.h"
#include "desktop/output.h"
#include "desktop/pngcopy.h"
#include "desktop/swayipc.h"
#include "desktop/workerthread.h"

#include <QCoroFuture>
#include <QDeadlineTimer>
#include <QLocalSocket>

#include <algorithm>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

/// One conversation, which waits for each answer: not for the main thread.
class SwayConnection
{
public:
    explicit SwayConnection(const QString &socket) : m_deadline(answerTime)
    {
        m_socket.connectToServer(socket);
    }

    tl::expected<QByteArray, QString> ask(SwayQuestion question, const QByteArray &text)
    {
        if (!m_socket.waitForConnected(remainingMs())) {
            return tl::make_unexpected(u"The desktop is not running: "_s + m_socket.errorString());
        }
        m_socket.write(swayMessage(question, text));
        QByteArray received;
        while (true) {
            auto answer = swayAnswer(question, received);
            if (!answer) {
                return tl::make_unexpected(answer.error());
            }
            if (*answer) {
                return **answer;
            }
            if (!m_socket.waitForReadyRead(remainingMs())) {
                return tl::make_unexpected(silence());
            }
            // No more than that, whatever is sent.
            received += m_socket.read(longestSwayAnswer);
        }
    }

private:
    // Less than that would mean Qt's own time-out, or none.
    int remainingMs() const { return int(std::max<qint64>(1, m_deadline.remainingTime())); }

    QString silence() const
    {
        return m_socket.state() == QLocalSocket::ConnectedState
            ? u"The desktop did not answer within %1 seconds"_s.arg(answerTime.count())
            : u"The desktop ended without answering"_s;
    }

    QLocalSocket m_socket;
    const QDeadlineTimer m_deadline;
};

SetResult show(const Picture &picture, const Screen &screen, const QString &socket)
{
    const tl::expected<QString, QString> file = fileEveryDesktopReads(picture);
    if (!file) {
        return tl::make_unexpected(file.error());
    }
    SwayConnection sway(socket);
    const auto outputs = sway.ask(SwayQuestion::Outputs, {}).and_then(swayOutputs);
    if (!outputs) {
        return tl::make_unexpected(outputs.error());
    }
    // It would take a picture for an output that it does not have.
    const std::optional<Screen> output = outputOf(screen, *outputs);
    if (!output) {
        return tl::make_unexpected(u"The screen is no longer there"_s);
    }
    const std::optional<QByteArray> command = swayPictureCommand(output->name, *file);
    if (!command) {
        return tl::make_unexpected(u"The desktop cannot read a file of this name"_s);
    }
    return sway.ask(SwayQuestion::Command, *command).and_then(swayCommandResult);
}

} // namespace

SwayDesktop::SwayDesktop(QString socket) : m_socket(std::move(socket)) { }

QString SwayDesktop::liveSocket()
{
    // The variable outlives sway in whatever inherited it.
    const QString path = qEnvironmentVariable("SWAYSOCK");
    QLocalSocket socket;
    if (!path.isEmpty()) {
        socket.connectToServer(path);
    }
    return socket.waitForConnected(1000) ? path : QString();
}

QCoro::Task<SetResult> SwayDesktop::setPicture(Picture picture, Screen screen)
{
    const QFuture<SetResult> shown = onWorkerThread(
        [picture, screen, socket = m_socket] { return show(picture, screen, socket); });
    co_return co_await shown;
}

} // namespace desktop
