#pragma once

#include "imageservice/httpmessage.h"

#include <QFuture>
#include <QTcpServer>

#include <functional>

namespace imageservice {

/// Starts to answer a request; called on the server's thread, fulfilled on any.
using RequestHandler = std::function<QFuture<HttpResponse>(const HttpRequest &)>;

/// HTTP/1.1 on 127.0.0.1 and nowhere else. Connections are kept open for further requests; each
/// connection has one request under way, the server as many as there are connections.
class HttpServer : public QObject
{
    Q_OBJECT

public:
    explicit HttpServer(RequestHandler handler, QObject *parent = nullptr);

    /// @p port 0 takes any free one. False with errorString() where that port is not to be had.
    [[nodiscard]] bool listen(quint16 port);
    quint16 port() const { return m_server.serverPort(); }
    QString errorString() const { return m_server.errorString(); }

private:
    void accept();

    RequestHandler m_handler;
    QTcpServer m_server;
};

} // namespace imageservice
