#pragma once

#include "imageservice/httpserver.h"
#include "imageservice/requestreader.h"

#include <QFutureWatcher>

class QTcpSocket;

namespace imageservice {

/// One connection of a client, which it owns; deletes itself when the connection ends.
class HttpConnection : public QObject
{
    Q_OBJECT

public:
    HttpConnection(QTcpSocket *socket, const RequestHandler &handler, QObject *parent);

private:
    void read();
    void proceed();
    void handle(const HttpRequest &request);
    void send(const HttpResponse &response);
    void finish();
    void reset();

    QTcpSocket *m_socket;
    const RequestHandler &m_handler;
    RequestReader m_reader;
    QFutureWatcher<HttpResponse> m_answer;
    bool m_isBusy = false;
    bool m_closesAfterwards = false;
    bool m_isRefused = false;
};

} // namespace imageservice
