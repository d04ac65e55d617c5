#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>

#include <chrono>
#include <memory>
#include <utility>

class QTcpServer;
class QTcpSocket;

namespace testlibs {

using HttpHeaders = QList<std::pair<QByteArray, QByteArray>>;

/// A request as it came over the wire.
struct ReceivedRequest
{
    QByteArray method;
    QByteArray path; ///< With the query, still percent-encoded.
    HttpHeaders headers; ///< In the order and spelling in which they came.
    QByteArray body;

    /// All values of the headers of that name, in any spelling.
    QList<QByteArray> header(const QByteArray &name) const;
};

/// What the server does about one request.
struct HttpAnswer
{
    enum class Ending {
        Complete,
        CutInBody, ///< Half of the body, then the connection is closed.
        StallInBody, ///< Half of the body, then nothing more.
        Close, ///< Only what `wire` says, then the connection is closed.
        Reset, ///< Only what `wire` says, then the connection is reset.
        Silence, ///< Only what `wire` says, then nothing; the connection stays open.
        Endless, ///< What `wire` says, then the body again and again, as fast as it is taken.
    };

    /// What becomes of the connection after a complete answer.
    enum class Connection { KeptOpen, Closed, ClosedUnannounced };

    int status = 200;
    QByteArray body = {};
    HttpHeaders headers = {}; ///< Besides Content-Length or Transfer-Encoding.
    Ending ending = Ending::Complete;
    QList<int> interimStatuses = {}; ///< Such as 100, sent before the answer proper.
    bool chunked = false; ///< The body comes in chunks, its length not announced.
    Connection connection = Connection::KeptOpen;
    std::chrono::milliseconds pause{}; ///< Between the bytes of the body; none sends it at once.
    bool held = false; ///< Waits for HttpServer::release().
    QByteArray wire = {}; ///< Sent as it stands where the ending leaves out head and body.
};

/// A scripted HTTP server on a free loopback port: it records every request and answers the first
/// one with the first answer of its queue, and so on. Beyond the queue it answers status 404.
///
/// Runs in the thread that made it, which therefore needs a turning event loop.
class HttpServer : public QObject
{
    Q_OBJECT

public:
    HttpServer();
    /// Listens on @p port, which an earlier server may have had.
    explicit HttpServer(quint16 port);
    /// Takes connections from @p listener, such as a QSslServer; listens with it itself.
    explicit HttpServer(std::unique_ptr<QTcpServer> listener, quint16 port = 0);
    ~HttpServer() override;

    quint16 port() const;
    /// Scheme http and authority, without a trailing slash.
    QString url() const;
    /// The same with scheme https, for a listener that speaks TLS.
    QString secureUrl() const;

    void enqueue(const HttpAnswer &answer) { m_answers += answer; }
    void enqueue(const QByteArray &body) { enqueue(HttpAnswer{.body = body}); }
    /// Plays all answers that are held at present, in the order of their requests.
    void release();

    const QList<ReceivedRequest> &requests() const { return m_requests; }
    void forgetRequests() { m_requests.clear(); }
    /// Accepted so far, with or without a request.
    int connections() const { return m_connections; }
    /// Bytes that the network has taken from the server so far.
    qint64 bytesSent() const { return m_bytesSent; }
    /// Still open on the server's side.
    qsizetype openConnections() const;

Q_SIGNALS:
    void requested();
    void disconnected();

private:
    struct HeldAnswer;

    void accept();
    void read(QTcpSocket *socket, QByteArray &received);

    std::unique_ptr<QTcpServer> m_listener;
    QList<HttpAnswer> m_answers;
    QList<HeldAnswer> m_held;
    QList<ReceivedRequest> m_requests;
    int m_connections = 0;
    qint64 m_bytesSent = 0;
};

} // namespace testlibs
