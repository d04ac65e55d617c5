#pragma once

#include "imageservice/httpmessage.h"

#include <optional>

namespace imageservice {

/// Takes requests out of the bytes of a connection, however they are cut. Bodies need a length;
/// what is malformed or too large is refused, and then nothing more is read.
class RequestReader
{
public:
    static constexpr qsizetype MaximumHead = 65'536;
    static constexpr qsizetype MaximumBody = 67'108'864;

    void feed(const QByteArray &bytes);

    /// The next complete request, once.
    std::optional<HttpRequest> next();
    /// The answer to what cannot be read; the connection is of no use after it.
    std::optional<HttpResponse> refusal() const { return m_refusal; }
    /// Whether the client holds its body back until it is told to go on; true once for each
    /// request.
    bool takeContinueWish();

private:
    void readHead();
    bool readRequestLine(const QByteArray &line);
    bool readHeader(const QByteArray &line);
    void readLength();
    void refuse(int status, const QByteArray &message);

    QByteArray m_bytes;
    HttpRequest m_request;
    bool m_hasHead = false;
    bool m_wantsContinue = false;
    qsizetype m_length = 0;
    std::optional<HttpResponse> m_refusal;
};

} // namespace imageservice
