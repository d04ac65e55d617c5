#include "imageservice/httpconnection.h"

#include <QTcpSocket>
#include <QTimer>

#include <sys/socket.h>

namespace imageservice {

HttpConnection::HttpConnection(QTcpSocket *socket, const RequestHandler &handler, QObject *parent)
    : QObject(parent), m_socket(socket), m_handler(handler)
{
    socket->setParent(this);
    // While an answer is under way the client's next bytes wait in the network, not in here.
    socket->setReadBufferSize(RequestReader::MaximumHead);
    connect(socket, &QTcpSocket::readyRead, this, &HttpConnection::read);
    connect(socket, &QTcpSocket::disconnected, this, &QObject::deleteLater);
    connect(&m_answer, &QFutureWatcher<HttpResponse>::finished, this, [this] {
        HttpResponse response = m_answer.result();
        if (m_closesAfterwards) {
            response.headers.emplaceBack("Connection", "close");
        }
        QTimer::singleShot(response.delay, this, [this, response] { send(response); });
    });
    read();
}

void HttpConnection::read()
{
    while (m_isRefused && m_socket->bytesAvailable() > 0) {
        // Closing with bytes unread would take the refusal back before the client has seen it.
        m_socket->readAll();
    }
    while (!m_isBusy && m_socket->bytesAvailable() > 0) {
        m_reader.feed(m_socket->readAll());
        if (m_reader.takeContinueWish()) {
            m_socket->write("HTTP/1.1 100 Continue\r\n\r\n");
        }
        proceed();
    }
}

void HttpConnection::proceed()
{
    if (const auto request = m_reader.next()) {
        handle(*request);
    } else if (auto refusal = m_reader.refusal()) {
        m_isBusy = true;
        m_isRefused = true;
        refusal->headers.emplaceBack("Connection", "close");
        m_socket->write(refusal->head() + refusal->body);
    }
}

void HttpConnection::handle(const HttpRequest &request)
{
    m_isBusy = true;
    m_closesAfterwards = request.isLast();
    m_answer.setFuture(m_handler(request));
}

void HttpConnection::send(const HttpResponse &response)
{
    switch (response.delivery) {
    case Delivery::Whole:
        m_socket->write(response.head());
        m_socket->write(response.body);
        return finish();
    case Delivery::Cut:
        m_socket->write(response.head());
        m_socket->write(response.body.first(response.body.size() / 2));
        return m_socket->disconnectFromHost();
    case Delivery::Reset:
        return reset();
    case Delivery::Silent:
        return;
    }
}

void HttpConnection::finish()
{
    if (m_closesAfterwards) {
        return m_socket->disconnectFromHost();
    }
    m_isBusy = false;
    proceed();
    read();
}

void HttpConnection::reset()
{
    // Without a lingering time, closing sends a reset instead of an orderly end.
    const linger none{1, 0};
    ::setsockopt(
        static_cast<int>(m_socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &none, sizeof none);
    m_socket->abort();
}

} // namespace imageservice
