#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>

#include <chrono>

namespace imageservice {

using HttpHeaders = QList<QPair<QByteArray, QByteArray>>;

/// One complete request. Header names are as sent.
struct HttpRequest
{
    QByteArray method;
    QByteArray target; ///< Path and query, still percent-encoded.
    QByteArray version;
    HttpHeaders headers;
    QByteArray body = {};

    /// The first header of that name in any spelling; null where there is none.
    QByteArray header(QByteArrayView name) const;
    /// Whether the client wants no further request on this connection.
    bool isLast() const;
};

/// How an answer reaches the client, for services on a bad day.
enum class Delivery {
    Whole,
    Cut, ///< The connection closes in the middle of the body.
    Reset, ///< The connection breaks before the first byte.
    Silent, ///< Nothing ever comes.
};

struct HttpResponse
{
    int status = 200;
    QByteArray contentType = QByteArrayLiteral("application/json; charset=utf-8");
    QByteArray body = {};
    HttpHeaders headers = {}; ///< Besides the type and length of the body.
    Delivery delivery = Delivery::Whole;
    std::chrono::milliseconds delay{0};

    /// Status line and headers, up to the empty line.
    QByteArray head() const;
};

} // namespace imageservice
