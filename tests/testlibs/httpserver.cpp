#include "testlibs/httpserver.h"

#include <QPointer>
#include <QSslSocket>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <sys/socket.h>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace testlibs {

struct HttpServer::HeldAnswer
{
    QPointer<QTcpSocket> socket;
    HttpAnswer answer;
};

namespace {

constexpr qsizetype chunkSize = qsizetype(64) * 1024;

ReceivedRequest parseHead(const QByteArray &head)
{
    ReceivedRequest request;
    QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> words = lines.takeFirst().trimmed().split(' ');
    request.method = words.value(0);
    request.path = words.value(1);
    for (const QByteArray &line : lines) {
        const qsizetype colon = line.indexOf(':');
        // One blank belongs to the separator and the line break to HTTP; the rest is the value's.
        QByteArray value = line.mid(colon + 1);
        value.chop(value.endsWith('\r') ? 1 : 0);
        request.headers.append({line.left(colon), value.startsWith(' ') ? value.mid(1) : value});
    }
    return request;
}

/// Takes the first request off @p received, once it is there to its last byte.
std::optional<ReceivedRequest> takeRequest(QByteArray &received)
{
    const qsizetype headSize = received.indexOf("\r\n\r\n");
    if (headSize < 0) {
        return {};
    }
    ReceivedRequest request = parseHead(received.left(headSize));
    const qsizetype bodyStart = headSize + 4;
    const qsizetype bodySize = request.header("Content-Length"_ba).value(0).toLongLong();
    if (received.size() < bodyStart + bodySize) {
        return {};
    }
    request.body = received.mid(bodyStart, bodySize);
    received.remove(0, bodyStart + bodySize);
    return request;
}

QByteArray statusLine(int status)
{
    return "HTTP/1.1 "_ba + QByteArray::number(status) + " Status\r\n"_ba;
}

QByteArray headOf(const HttpAnswer &answer)
{
    QByteArray head;
    for (const int status : answer.interimStatuses) {
        head += statusLine(status) + "\r\n"_ba;
    }
    head += statusLine(answer.status);
    head
        += answer.connection == HttpAnswer::Connection::Closed ? "Connection: close\r\n"_ba : ""_ba;
    for (const auto &[name, value] : answer.headers) {
        head += name + ": "_ba + value + "\r\n"_ba;
    }
    head += answer.chunked ? "Transfer-Encoding: chunked"_ba
                           : "Content-Length: "_ba + QByteArray::number(answer.body.size());
    return head + "\r\n\r\n"_ba;
}

void writeBody(QTcpSocket &socket, const HttpAnswer &answer)
{
    const bool isWhole = answer.ending == HttpAnswer::Ending::Complete;
    const QByteArray body = isWhole ? answer.body : answer.body.left(answer.body.size() / 2);
    if (!answer.chunked) {
        socket.write(body);
        return;
    }
    for (qsizetype offset = 0; offset < body.size(); offset += chunkSize) {
        const QByteArray chunk = body.mid(offset, chunkSize);
        socket.write(QByteArray::number(chunk.size(), 16) + "\r\n"_ba + chunk + "\r\n"_ba);
    }
    if (isWhole) {
        socket.write("0\r\n\r\n");
    }
}

void end(QTcpSocket &socket, const HttpAnswer &answer)
{
    const bool isKept = answer.ending == HttpAnswer::Ending::Complete
        && answer.connection == HttpAnswer::Connection::KeptOpen;
    if (!isKept && answer.ending != HttpAnswer::Ending::StallInBody) {
        socket.disconnectFromHost();
    }
}

void trickle(QTcpSocket &socket, const HttpAnswer &answer)
{
    auto *timer = new QTimer(&socket);
    QObject::connect(
        timer, &QTimer::timeout, &socket, [timer, &socket, answer, rest = answer.body]() mutable {
            socket.write(rest.left(1));
            rest.remove(0, 1);
            if (rest.isEmpty()) {
                timer->deleteLater();
                timer->stop();
                end(socket, answer);
            }
        });
    timer->start(answer.pause);
}

void repeat(QTcpSocket &socket, const QByteArray &bytes)
{
    auto *tls = qobject_cast<QSslSocket *>(&socket);
    const auto writeMore = [&socket, tls, bytes] {
        while (socket.state() == QTcpSocket::ConnectedState
            && socket.bytesToWrite() + (tls ? tls->encryptedBytesToWrite() : 0) < chunkSize) {
            socket.write(bytes);
        }
    };
    // What is encrypted counts as written, and waits behind it for the network.
    if (tls) {
        QObject::connect(tls, &QSslSocket::encryptedBytesWritten, tls, writeMore);
    } else {
        QObject::connect(&socket, &QTcpSocket::bytesWritten, &socket, writeMore);
    }
    writeMore();
}

void reset(QTcpSocket &socket)
{
    socket.flush();
    const linger atOnce{.l_onoff = 1, .l_linger = 0};
    setsockopt(int(socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    socket.abort();
}

void play(QTcpSocket &socket, const HttpAnswer &answer)
{
    switch (answer.ending) {
    case HttpAnswer::Ending::Silence:
        socket.write(answer.wire);
        return;
    case HttpAnswer::Ending::Reset:
        socket.write(answer.wire);
        reset(socket);
        return;
    case HttpAnswer::Ending::Close:
        socket.write(answer.wire);
        socket.disconnectFromHost();
        return;
    case HttpAnswer::Ending::Endless:
        socket.write(answer.wire);
        repeat(socket, answer.body);
        return;
    case HttpAnswer::Ending::Complete:
    case HttpAnswer::Ending::CutInBody:
    case HttpAnswer::Ending::StallInBody:
        socket.write(headOf(answer));
        if (answer.pause.count() > 0) {
            trickle(socket, answer);
        } else {
            writeBody(socket, answer);
            end(socket, answer);
        }
    }
}

} // namespace

QList<QByteArray> ReceivedRequest::header(const QByteArray &name) const
{
    QList<QByteArray> values;
    for (const auto &[headerName, value] : headers) {
        if (headerName.compare(name, Qt::CaseInsensitive) == 0) {
            values += value;
        }
    }
    return values;
}

HttpServer::HttpServer() : HttpServer(std::make_unique<QTcpServer>()) { }

HttpServer::HttpServer(quint16 port) : HttpServer(std::make_unique<QTcpServer>(), port) { }

HttpServer::HttpServer(std::unique_ptr<QTcpServer> listener, quint16 port)
    : m_listener(std::move(listener))
{
    connect(m_listener.get(), &QTcpServer::pendingConnectionAvailable, this, &HttpServer::accept);
    if (!m_listener->listen(QHostAddress::LocalHost, port)) {
        qFatal("No free loopback port");
    }
}

HttpServer::~HttpServer() = default;

quint16 HttpServer::port() const
{
    return m_listener->serverPort();
}

QString HttpServer::url() const
{
    return u"http://127.0.0.1:%1"_s.arg(port());
}

QString HttpServer::secureUrl() const
{
    return u"https://127.0.0.1:%1"_s.arg(port());
}

void HttpServer::release()
{
    for (const HeldAnswer &held : std::exchange(m_held, {})) {
        if (held.socket) {
            play(*held.socket, held.answer);
        }
    }
}

qsizetype HttpServer::openConnections() const
{
    const auto sockets = m_listener->findChildren<QTcpSocket *>();
    return std::count_if(sockets.begin(), sockets.end(),
        [](const QTcpSocket *socket) { return socket->state() == QTcpSocket::ConnectedState; });
}

void HttpServer::accept()
{
    while (QTcpSocket *socket = m_listener->nextPendingConnection()) {
        ++m_connections;
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::disconnected, this, &HttpServer::disconnected);
        connect(socket, &QTcpSocket::bytesWritten, this, [this](qint64 n) { m_bytesSent += n; });
        auto received = std::make_shared<QByteArray>();
        connect(socket, &QTcpSocket::readyRead, this,
            [this, socket, received] { read(socket, *received); });
        read(socket, *received);
    }
}

void HttpServer::read(QTcpSocket *socket, QByteArray &received)
{
    received += socket->readAll();
    while (const auto request = takeRequest(received)) {
        m_requests += *request;
        const HttpAnswer answer
            = m_answers.isEmpty() ? HttpAnswer{.status = 404} : m_answers.takeFirst();
        if (answer.held) {
            m_held += HeldAnswer{socket, answer};
        } else {
            play(*socket, answer);
        }
        Q_EMIT requested();
    }
}

} // namespace testlibs
