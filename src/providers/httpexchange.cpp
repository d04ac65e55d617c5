#include "providers/httpexchange.h"

#include <QCoroFuture>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPromise>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace providers {

namespace {

/// A request and the promise of its result. Whoever drops a call unanswered has thereby answered
/// it, so that no path can forget the caller.
class Call
{
public:
    Call(HttpRequest request, HttpExchange::Reader reader)
        : m_request(std::move(request)), m_reader(reader)
    {
        m_promise.start();
    }
    Call(const Call &) = delete;
    Call &operator=(const Call &) = delete;
    ~Call() { fail(u"The request was cancelled."_s); }

    const HttpRequest &request() const { return m_request; }
    QFuture<ImageResult> result() const { return m_promise.future(); }

    void answer(QByteArray body) { finish(m_reader(std::move(body))); }
    void fail(const QString &description)
    {
        finish(tl::unexpected(ProviderError::networkError(description)));
    }

private:
    void finish(ImageResult result)
    {
        if (!std::exchange(m_finished, true)) {
            m_promise.addResult(std::move(result));
            m_promise.finish();
        }
    }

    HttpRequest m_request;
    HttpExchange::Reader m_reader;
    QPromise<ImageResult> m_promise;
    bool m_finished = false;
};

/// A body that is sent once. Qt sends a POST again by itself if the connection closes before an
/// answer came, and every picture costs money; but it does not without rewinding the body.
class OneTimeBody : public QIODevice
{
public:
    OneTimeBody(QByteArray bytes, QObject *parent) : QIODevice(parent), m_bytes(std::move(bytes))
    {
        open(ReadOnly | Unbuffered);
    }

    qint64 size() const override { return m_bytes.size(); }
    /// Qt also wants to rewind when a 307 or 308 tells it to go elsewhere, although it does not go.
    bool reset() override { return m_redirected; }
    void setRedirected() { m_redirected = true; }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        const qint64 size = std::min<qint64>(maxSize, m_bytes.size() - m_offset);
        std::memcpy(data, m_bytes.constData() + m_offset, static_cast<size_t>(size));
        m_offset += size;
        return size > 0 ? size : -1;
    }
    qint64 writeData(const char * /*data*/, qint64 /*maxSize*/) override { return -1; }

private:
    QByteArray m_bytes;
    qsizetype m_offset = 0;
    bool m_redirected = false;
};

QString timedOut()
{
    return u"The request timed out."_s;
}

/// 0 if none came.
int statusOf(const QNetworkReply &reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

/// Whether a body came, whatever its status says. Qt reports a 4xx or 5xx status as an error of
/// its own; every other error means that the answer is not there or not whole.
bool hasAnswer(const QNetworkReply &reply)
{
    const int error = reply.error();
    if (error == QNetworkReply::NoError) {
        return statusOf(reply) > 0;
    }
    return statusOf(reply) >= 400
        && (error == QNetworkReply::ProxyAuthenticationRequiredError
            || error == QNetworkReply::ProtocolInvalidOperationError || (error > 200 && error < 300)
            || (error > 400 && error < 500));
}

/// Only for replies without an answer: the text of an HTTP status would show the URL.
QString failureText(const QNetworkReply &reply)
{
    switch (reply.error()) {
    case QNetworkReply::OperationCanceledError: // What Qt says when its transfer time-out is over.
        return timedOut();
    case QNetworkReply::ContentReSendError: // The one-time body at work.
        return u"Connection closed"_s;
    case QNetworkReply::UnknownContentError: // A compressed body that is broken, or a bomb.
        return u"The answer could not be decompressed."_s;
    default:
        return reply.errorString();
    }
}

/// One reply on its way. A child of the reply, so that it ends with it and its call with itself.
class Transfer : public QObject
{
public:
    Transfer(QNetworkReply *reply, std::shared_ptr<Call> call, const HttpLimits &limits)
        : QObject(reply), m_reply(reply), m_call(std::move(call)), m_maximumSize(limits.bodySize)
    {
        connect(reply, &QNetworkReply::readyRead, this, &Transfer::drain);
        connect(reply, &QNetworkReply::finished, this, &Transfer::finish);
        // Before it connects, Qt forgets about it. Before it sends, Qt looks for more to read where
        // it has nothing to read with: it crashes if a proxy has refused meanwhile.
        connect(reply, &QNetworkReply::requestSent, this,
            [reply] { reply->setReadBufferSize(readAhead); });
        // QTimer::singleShot would stay behind until it is due, long after the transfer.
        connect(&m_timeLeft, &QTimer::timeout, this, [this] { giveUp(timedOut()); });
        m_timeLeft.setSingleShot(true);
        m_timeLeft.start(limits.duration);
    }

private:
    void drain()
    {
        if (m_body.isNull()) {
            reserveForWholeBody();
        }
        while (m_reply->bytesAvailable() > 0 && readBlock()) { }
    }

    void reserveForWholeBody()
    {
        m_body.reserve(std::clamp<qint64>(announcedSize(), 0, m_maximumSize) + smallestBlock);
    }

    void giveUp(const QString &description)
    {
        m_call->fail(description);
        m_reply->manager()->deleteLater();
    }

    /// False once nothing more is to be read.
    bool readBlock()
    {
        const qsizetype size = m_body.size();
        if (size >= m_maximumSize) {
            giveUp(u"The answer is too large."_s);
            return false;
        }
        // Of a compressed answer Qt only says that there is something.
        const qint64 block = std::min<qint64>(
            std::max(m_reply->bytesAvailable(), smallestBlock), m_maximumSize - size);
        m_body.resize(size + block);
        const qint64 count = m_reply->read(m_body.data() + size, block);
        m_body.resize(size + std::max<qint64>(count, 0));
        return count > 0;
    }

    void finish()
    {
        if (!hasAnswer(*m_reply)) {
            m_call->fail(failureText(*m_reply));
            return;
        }
        drain();
        if (isCutShort()) {
            m_call->fail(u"Connection closed"_s);
        } else {
            m_call->answer(std::move(m_body));
        }
    }

    /// Qt reports one error only, and for a 4xx or 5xx answer that is its status.
    bool isCutShort() const
    {
        return !m_reply->hasRawHeader("Content-Encoding") && m_body.size() < announcedSize();
    }

    qint64 announcedSize() const
    {
        return m_reply->header(QNetworkRequest::ContentLengthHeader).toLongLong();
    }

    /// What Qt may take from the network before it is read here: without a bound that is whatever
    /// a service can send while this thread has no turn.
    static constexpr qint64 readAhead = qint64(1) << 20;

    /// Also what is to spare behind a body of the announced size, where the JSON reader wants some
    /// bytes for itself.
    static constexpr qint64 smallestBlock = qint64(16) * 1024;

    QNetworkReply *m_reply;
    std::shared_ptr<Call> m_call;
    qsizetype m_maximumSize;
    QTimer m_timeLeft;
    QByteArray m_body;
};

QNetworkRequest networkRequest(const HttpRequest &request, const HttpLimits &limits)
{
    QNetworkRequest result(QUrl(request.url, QUrl::StrictMode));
    result.setHeader(QNetworkRequest::ContentTypeHeader, "application/json"_ba);
    for (const auto &[name, value] : request.headers) {
        // Null would leave the header out, and an empty key is a key.
        result.setRawHeader(name, value.isNull() ? ""_ba : value);
    }
    result.setTransferTimeout(static_cast<int>(limits.silence.count()));
    // Qt would follow with all headers, the key among them, to wherever it is sent.
    result.setAttribute(
        QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    result.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    return result;
}

bool isUsable(const QUrl &url)
{
    return url.isValid() && (url.scheme() == "https"_L1 || url.scheme() == "http"_L1)
        && !url.host().isEmpty() && url.userInfo().isEmpty();
}

bool hasControlCharacter(const QByteArray &value)
{
    return std::any_of(
        value.begin(), value.end(), [](char c) { return (c >= 0 && c < ' ') || c == '\x7f'; });
}

/// Why @p request is not sent at all; absent if nothing speaks against it.
std::optional<ProviderError> objection(const HttpRequest &request)
{
    if (!isUsable(QUrl(request.url, QUrl::StrictMode))) {
        return ProviderError::invalidResponse(u"Invalid URL"_s);
    }
    // A line break would end the header and let the rest of the key speak for itself.
    if (std::any_of(request.headers.begin(), request.headers.end(),
            [](const auto &header) { return hasControlCharacter(header.second); })) {
        return ProviderError::networkError(
            u"The API key contains a line break or another control character."_s);
    }
    return {};
}

} // namespace

/// The exchange's end on its own thread.
class HttpExchange::Worker : public QObject
{
public:
    explicit Worker(const HttpLimits &limits) : m_limits(limits) { }

    /// Each call has a network manager to itself, and so a connection that no other call has used:
    /// one that the service is just closing would fail, as the body cannot be sent again. Nor can
    /// any cookie, credential or cached answer pass from one call to the next.
    void send(const std::shared_ptr<Call> &call)
    {
        auto *network = new QNetworkAccessManager(this);
        auto *body = new OneTimeBody(call->request().body(), network);
        QNetworkReply *reply = network->post(networkRequest(call->request(), m_limits), body);
        connect(reply, &QNetworkReply::metaDataChanged, body, [reply, body] {
            const int status = statusOf(*reply);
            if (status == 307 || status == 308) {
                body->setRedirected();
            }
        });
        connect(reply, &QNetworkReply::finished, network, &QObject::deleteLater);
        new Transfer(reply, call, m_limits);
    }

private:
    HttpLimits m_limits;
};

HttpExchange::HttpExchange(std::chrono::milliseconds silence)
    : HttpExchange(HttpLimits{.silence = silence})
{
}

HttpExchange::HttpExchange(const HttpLimits &limits) : m_limits(limits) { }

HttpExchange::~HttpExchange()
{
    m_thread.quit();
    m_thread.wait();
}

HttpExchange::Worker *HttpExchange::worker()
{
    std::call_once(m_started, [this] {
        m_worker = new Worker(m_limits);
        m_worker->moveToThread(&m_thread);
        QObject::connect(&m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
        m_thread.setObjectName(u"HttpExchange"_s);
        // The JSON reader goes down with the nesting of an answer, on whatever limits the user has.
        m_thread.setStackSize(8U << 20);
        m_thread.start();
    });
    return m_worker;
}

QFuture<ImageResult> HttpExchange::start(HttpRequest request, Reader reader)
{
    auto call = std::make_shared<Call>(std::move(request), reader);
    QFuture<ImageResult> result = call->result();
    QMetaObject::invokeMethod(
        worker(), [worker = worker(), call = std::move(call)] { worker->send(call); },
        Qt::QueuedConnection);
    return result;
}

QCoro::Task<ImageResult> HttpExchange::post(HttpRequest request, Reader reader)
{
    if (const auto error = objection(request)) {
        co_return tl::unexpected(*error);
    }
    co_return co_await start(std::move(request), reader);
}

} // namespace providers
