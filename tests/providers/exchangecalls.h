#pragma once

#include "providers/httpexchange.h"
#include "testlibs/httpserver.h"

#include <QThread>

#include <atomic>

/// Calls to the exchange, and one line for what came of them.
namespace calls {

using namespace Qt::StringLiterals;

inline const QString cancelled = u"Network error: The request was cancelled."_s;
inline const QString timedOut = u"Network error: The request timed out."_s;
inline const QString connectionClosed = u"Network error: Connection closed"_s;
inline const QString tooLarge = u"Network error: The answer is too large."_s;
inline const QString notInflated = u"Network error: The answer could not be decompressed."_s;

inline std::atomic<QThread *> bodyThread = nullptr;
inline std::atomic<QThread *> readerThread = nullptr;

/// The body itself is the image: what is tested here is the way, not the reading.
inline providers::ImageResult asImage(QByteArray body)
{
    readerThread = QThread::currentThread();
    return providers::GeneratedImage{std::move(body), u"raw"_s};
}

inline providers::HttpRequest request(const QString &url, const QByteArray &body = "{}"_ba)
{
    return {.url = url, .headers = {{"x-key"_ba, "canary-key"_ba}}, .body = [body] {
                bodyThread = QThread::currentThread();
                return body;
            }};
}

inline QString outcome(const providers::ImageResult &result)
{
    return result ? QString::fromLatin1(result->bytes) : result.error().errorDescription();
}

/// Posts and waits; the caller's event loop turns meanwhile.
inline QString answerOf(
    providers::HttpExchange &exchange, const providers::HttpRequest &httpRequest)
{
    return outcome(QCoro::waitFor(exchange.post(httpRequest, asImage)));
}

/// Waits in the background and notes what came.
inline QCoro::Task<> note(QCoro::Task<providers::ImageResult> call, QStringList &outcomes)
{
    const providers::ImageResult result = co_await call;
    outcomes += outcome(result);
}

} // namespace calls
