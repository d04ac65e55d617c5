#include "imageservice/httpserver.h"

#include "imageservice/httpconnection.h"

namespace imageservice {

HttpServer::HttpServer(RequestHandler handler, QObject *parent)
    : QObject(parent), m_handler(std::move(handler))
{
    connect(&m_server, &QTcpServer::newConnection, this, &HttpServer::accept);
}

bool HttpServer::listen(quint16 port)
{
    return m_server.listen(QHostAddress::LocalHost, port);
}

void HttpServer::accept()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        new HttpConnection(socket, m_handler, this);
    }
}

} // namespace imageservice
