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
        Close, ///< The connection is closed without an answer.
        Reset, ///< The connection is reset without an answer.
        Silence, ///< Nothing at all; the connection stays open.
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
    /// Takes connections from @p listener, such as a QSslServer; listens with it itself.
    explicit HttpServer(std::unique_ptr<QTcpServer> listener);
    ~HttpServer() override;

    quint16 port() const;
    /// Scheme http and authority, without a trailing slash.
    QString url() const;

    void enqueue(const HttpAnswer &answer) { m_answers += answer; }
    void enqueue(const QByteArray &body) { enqueue(HttpAnswer{.body = body}); }
    /// Plays all answers that are held at present, in the order of their requests.
    void release();

    const QList<ReceivedRequest> &requests() const { return m_requests; }
    void forgetRequests() { m_requests.clear(); }
    /// Accepted so far, with or without a request.
    int connections() const { return m_connections; }
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
};

} // namespace testlibs
