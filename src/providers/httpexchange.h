#pragma once

#include "providers/imageprovider.h"

#include <QByteArray>
#include <QCoroTask>
#include <QFuture>
#include <QList>
#include <QString>
#include <QThread>

#include <chrono>
#include <functional>
#include <mutex>
#include <utility>

namespace providers {

/// A POST as a service wants it, apart from what every POST has in common.
struct HttpRequest
{
    QString url;
    QList<std::pair<QByteArray, QByteArray>> headers;
    std::function<QByteArray()> body; ///< Called once, on the exchange's thread.
};

/// When an exchange is given up, besides failing.
struct HttpLimits
{
    /// Nothing sent and nothing received for so long.
    std::chrono::milliseconds silence = std::chrono::seconds(120);
    /// The whole exchange: ends an answer that trickles in for ever.
    std::chrono::milliseconds duration = std::chrono::hours(1);
    /// Real answers reach 35 MB. A hostile one of this size makes the JSON reader take five times
    /// as much besides, and the program stays below 400 MB.
    qsizetype bodySize = qsizetype(48) << 20;
};

/// The one HTTP call of the program: a JSON POST to an image service.
///
/// The exchange, the making of the body and the reading of the answer run on a thread of its own,
/// which starts with the first request. Status and headers of an answer are not judged and
/// redirects are not followed: whatever body came is the answer. Every call completes exactly once,
/// with a network error if the exchange is destroyed meanwhile.
class HttpExchange
{
public:
    /// Turns the body of an answer into its image; runs on the exchange's thread.
    using Reader = ImageResult (*)(QByteArray body);

    explicit HttpExchange(std::chrono::milliseconds silence = HttpLimits().silence);
    explicit HttpExchange(const HttpLimits &limits);
    HttpExchange(const HttpExchange &) = delete;
    HttpExchange &operator=(const HttpExchange &) = delete;
    ~HttpExchange();

    /// Resumes on the caller's thread, which needs an event loop. Sends nothing if the URL or a
    /// header cannot be sent as it stands.
    QCoro::Task<ImageResult> post(HttpRequest request, Reader reader);

private:
    class Worker;

    Worker *worker();
    QFuture<ImageResult> start(HttpRequest request, Reader reader);

    HttpLimits m_limits;
    QThread m_thread;
    std::once_flag m_started;
    Worker *m_worker = nullptr; ///< Lives on m_thread and is deleted there.
};

} // namespace providers
