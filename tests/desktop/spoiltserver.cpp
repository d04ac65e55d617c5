#include "spoiltserver.h"

#include <QCoreApplication>
#include <QtEndian>

#include <memory>
#include <optional>

#include <sys/socket.h>

namespace {

QString socketOf(const QByteArray &displayNumber)
{
    return QStringLiteral("/tmp/.X11-unix/X") + QString::fromLatin1(displayNumber);
}

qsizetype shortAt(const QByteArray &bytes, qsizetype offset)
{
    return qFromUnaligned<quint16>(bytes.constData() + offset);
}

/// How long what opens a connection is, as far as @p bytes tell.
std::optional<qsizetype> lengthOfOpening(const QByteArray &bytes)
{
    constexpr qsizetype fixed = 12;
    const auto padded = [](qsizetype length) { return (length + 3) / 4 * 4; };
    if (bytes.size() < fixed) {
        return {};
    }
    return fixed + padded(shortAt(bytes, 6)) + padded(shortAt(bytes, 8));
}

/// How long the first request in @p bytes is, as far as they tell. It is said in units of four
/// bytes, and behind a zero where it is large.
std::optional<qsizetype> lengthOfRequest(const QByteArray &bytes)
{
    constexpr qsizetype header = 8;
    if (bytes.size() >= 4 && shortAt(bytes, 2) > 0) {
        return 4 * shortAt(bytes, 2);
    }
    if (bytes.size() >= header) {
        return 4 * qsizetype(qFromUnaligned<quint32>(bytes.constData() + 4));
    }
    return {};
}

void waitForEnd(QLocalSocket *connection)
{
    if (connection->state() != QLocalSocket::UnconnectedState
        && !connection->waitForDisconnected()) {
        qFatal("A connection does not end.");
    }
}

} // namespace

SpoiltServer::SpoiltServer(Fault fault, int request) : m_fault(fault), m_request(request)
{
    m_inThread.moveToThread(&m_thread);
    m_thread.start();
    QMetaObject::invokeMethod(
        &m_inThread, [this] { open(); }, Qt::BlockingQueuedConnection);
}

SpoiltServer::~SpoiltServer()
{
    hasSpoilt();
    qputenv("DISPLAY", m_display);
    QMetaObject::invokeMethod(
        &m_inThread, [this] { delete m_door; }, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

void SpoiltServer::open()
{
    m_door = new QLocalServer;
    // Programs try this kind of place first, and nothing is left of it.
    m_door->setSocketOptions(QLocalServer::AbstractNamespaceOption);
    const QByteArray number = QByteArray::number(QCoreApplication::applicationPid());
    if (!m_door->listen(socketOf(number))) {
        qFatal("Nobody can be let in to the X server.");
    }
    QObject::connect(m_door, &QLocalServer::newConnection, m_door,
        [this] { serve(m_door->nextPendingConnection()); });
    qputenv("DISPLAY", ':' + number);
}

bool SpoiltServer::hasSpoilt()
{
    QMetaObject::invokeMethod(
        &m_inThread,
        [this] {
            for (qsizetype i = 0; i < m_clients.size(); ++i) {
                waitForEnd(m_clients[i]);
                waitForEnd(m_servers[i]);
            }
        },
        Qt::BlockingQueuedConnection);
    return m_passed >= m_request;
}

void SpoiltServer::serve(QLocalSocket *client)
{
    auto *server = new QLocalSocket(m_door);
    m_clients << client;
    m_servers << server;
    server->connectToServer(socketOf(m_display.mid(m_display.indexOf(':') + 1)));
    if (!server->waitForConnected()) {
        qFatal("There is no X server.");
    }
    QObject::connect(
        server, &QLocalSocket::readyRead, client, [=] { client->write(server->readAll()); });
    QObject::connect(
        server, &QLocalSocket::disconnected, client, &QLocalSocket::disconnectFromServer);
    QObject::connect(client, &QLocalSocket::disconnected, server, [server] {
        // What was asked for until now the server still does, and then ends the connection.
        server->flush();
        ::shutdown(int(server->socketDescriptor()), SHUT_WR);
    });
    const auto received = std::make_shared<QByteArray>();
    const auto isOpen = std::make_shared<bool>(false);
    const auto read = [=, this] {
        *received += client->readAll();
        for (auto length = *isOpen ? lengthOfRequest(*received) : lengthOfOpening(*received);
             length && *length <= received->size(); length = lengthOfRequest(*received)) {
            *isOpen = true;
            pass(received->first(*length), client, server);
            received->remove(0, *length);
        }
    };
    QObject::connect(client, &QLocalSocket::readyRead, client, read);
    read();
}

void SpoiltServer::pass(QByteArray request, QLocalSocket *client, QLocalSocket *server)
{
    ++m_passed;
    const bool isFaulty = m_passed == m_request;
    if (isFaulty && m_fault == Fault::Refused) {
        request[0] = 0; // No request has this number.
    }
    if ((isFaulty && m_fault == Fault::ConnectionEnds)
        || (m_passed >= m_request && m_fault == Fault::ServerEnds)) {
        client->abort();
        return;
    }
    if (server->state() == QLocalSocket::ConnectedState) {
        server->write(request);
    }
}
