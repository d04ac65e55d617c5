#include "cannedanswers.h"
#include "exchangecalls.h"
#include "providers/geminiprovider.h"
#include "testlibs/authority.h"
#include "testlibs/belongings.h"

#include <QElapsedTimer>
#include <QSemaphore>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace calls;
using providers::HttpExchange;
using providers::HttpLimits;
using providers::ImageResult;
using testlibs::HttpAnswer;
using testlibs::HttpServer;
using Ending = HttpAnswer::Ending;

namespace {

constexpr qint64 megabyte = qint64(1) << 20;
// A body at its bound, held twice, and what is read of it; with the program's own memory that stays
// below 400 MB.
constexpr qint64 mostMemory = 320 * megabyte;

/// Whether memory is used as it is without a sanitizer, which keeps what is freed for a while.
#ifdef __SANITIZE_ADDRESS__
constexpr bool memoryCounts = false;
#else
constexpr bool memoryCounts = true;
#endif

/// Beats in the caller's event loop, and knows how long that stood still at most.
class Heart
{
public:
    Heart()
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer,
            [this] { m_longest = std::max(m_longest, m_sinceBeat.restart()); });
        m_sinceBeat.start();
        m_timer.start(5ms);
    }

    std::chrono::milliseconds longestPause() const
    {
        return std::chrono::milliseconds(std::max(m_longest, m_sinceBeat.elapsed()));
    }

private:
    QTimer m_timer;
    QElapsedTimer m_sinceBeat;
    qint64 m_longest = 0;
};

HttpAnswer endless(const QByteArray &start, const QByteArray &rest)
{
    return {.body = rest, .ending = Ending::Endless, .wire = "HTTP/1.1 200 OK\r\n" + start};
}

QByteArray json(const QByteArray &start, const QByteArray &part)
{
    const qsizetype size = HttpLimits().bodySize - start.size();
    return start + part.repeated(size / part.size());
}

QSemaphore &allowsReading()
{
    static QSemaphore semaphore;
    return semaphore;
}

ImageResult slowlyAsImage(QByteArray body)
{
    ImageResult image = asImage(std::move(body));
    allowsReading().acquire();
    return image;
}

} // namespace

/// Where an answer ends that has no end, or a bad one.
class HostileAnswersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void silenceIsCountedAfreshWithEachByte()
    {
        HttpServer server;
        server.enqueue({.body = "1234567"_ba, .pause = 500ms});
        HttpExchange exchange(2s);
        QCOMPARE(answerOf(exchange, request(server.url())), u"1234567"_s);
    }

    void anAnswerThatTricklesForEverIsGivenUp()
    {
        HttpServer server;
        server.enqueue({.body = QByteArray(1000000, 'x'), .pause = 1ms});
        HttpExchange exchange(HttpLimits{.duration = 200ms});
        QCOMPARE(answerOf(exchange, request(server.url())), timedOut);
    }

    void aBodyBeyondTheBoundIsRefused_data()
    {
        QTest::addColumn<HttpAnswer>("answer");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<QString>("refusal");
        const QByteArray fitting(1000000, 'x');
        const QByteArray larger(1000001, 'x');
        const QByteArray bomb = qCompress(QByteArray(32000000, 'x')).mid(4);
        const testlibs::HttpHeaders deflated{{"Content-Encoding"_ba, "deflate"_ba}};
        QTest::newRow("just fitting") << HttpAnswer{.body = fitting} << true << u""_s;
        QTest::newRow("one byte more") << HttpAnswer{.body = larger} << false << tooLarge;
        QTest::newRow("just fitting, in chunks")
            << HttpAnswer{.body = fitting, .chunked = true} << true << u""_s;
        QTest::newRow("one byte more, in chunks")
            << HttpAnswer{.body = larger, .chunked = true} << false << tooLarge;
        QTest::newRow("an error of one byte more")
            << HttpAnswer{.status = 500, .body = larger} << false << tooLarge;
        QTest::newRow("just fitting, compressed")
            << HttpAnswer{.body = qCompress(fitting).mid(4), .headers = deflated} << true << u""_s;
        QTest::newRow("one byte more, compressed") << HttpAnswer{.body = qCompress(larger).mid(4),
            .headers = deflated} << false << tooLarge;
        QTest::newRow("small only while compressed")
            << HttpAnswer{.body = bomb, .headers = deflated} << false << notInflated;
    }

    void aBodyBeyondTheBoundIsRefused()
    {
        QFETCH(HttpAnswer, answer);
        QFETCH(bool, accepted);
        HttpServer server;
        server.enqueue(answer);
        HttpExchange exchange(HttpLimits{.bodySize = 1000000});
        const ImageResult result = QCoro::waitFor(exchange.post(request(server.url()), asImage));
        QCOMPARE(result.has_value(), accepted);
        if (!accepted) {
            QTEST(outcome(result), "refusal");
        }
    }

    void anAnswerWithoutEndIsGivenUp_data()
    {
        QTest::addColumn<HttpAnswer>("answer");
        QTest::addColumn<QString>("expected");
        const QByteArray filler(65536, 'a');
        QTest::newRow("headers") << endless(""_ba, "X-Filler: a\r\n"_ba.repeated(5000)) << timedOut;
        QTest::newRow("one header") << endless("X-Filler: "_ba, filler) << timedOut;
        QTest::newRow("the status line")
            << HttpAnswer{.body = filler, .ending = Ending::Endless, .wire = "HTTP/1.1 200 "_ba}
            << timedOut;
        QTest::newRow("interim answers") << HttpAnswer{
            .body = "HTTP/1.1 100 Continue\r\n\r\n"_ba.repeated(2000),
            .ending = Ending::Endless} << timedOut;
        QTest::newRow("a body") << endless("\r\n"_ba, filler) << tooLarge;
        QTest::newRow("a body of 4 GiB")
            << endless("Content-Length: 4294967296\r\n\r\n"_ba, filler) << tooLarge;
        QTest::newRow("a body of more bytes than can be counted")
            << endless("Content-Length: 99999999999999999999\r\n\r\n"_ba, filler) << tooLarge;
        QTest::newRow("a body of less than nothing")
            << endless("Content-Length: -1\r\n\r\n"_ba, filler) << tooLarge;
        const QByteArray chunked = "Transfer-Encoding: chunked\r\n\r\n"_ba;
        QTest::newRow("chunks") << endless(chunked, "10000\r\n" + filler + "\r\n") << tooLarge;
        QTest::newRow("small chunks")
            << endless(chunked, "400\r\n" + QByteArray(1024, 'a') + "\r\n") << tooLarge;
        QTest::newRow("one chunk") << endless(chunked + "7fffffffffffffff\r\n", filler) << tooLarge;
        QTest::newRow("the size of a chunk")
            << endless(chunked, "1"_ba.repeated(60000)) << timedOut;
        // A block of 65,535 bytes that is stored as it is, with the next block to follow.
        const QByteArray block = "\0\xff\xff\0\0"_ba + QByteArray(65535, 'a');
        QTest::newRow("a compressed body")
            << endless("Content-Encoding: deflate\r\n\r\n\x78\x01"_ba, block) << tooLarge;
    }

    void anAnswerWithoutEndIsGivenUp()
    {
        QFETCH(HttpAnswer, answer);
        QFETCH(QString, expected);
        // As the services speak: Qt reads headers without end from a plain connection even after
        // the request has been given up.
        const testlibs::TrustedAuthority authority;
        HttpServer server(authority.listener());
        server.enqueue(answer);
        server.enqueue("next"_ba);
        HttpExchange exchange(1s);
        const testlibs::PeakMemory memory;
        const Heart heart;
        QCOMPARE(answerOf(exchange, request(server.secureUrl())), expected);
        QVERIFY(heart.longestPause() < 10s);
        QCOMPARE_LT(memory.growth().value() * int(memoryCounts), mostMemory);
        QTRY_COMPARE(server.openConnections(), 0);
        QCOMPARE(answerOf(exchange, request(server.secureUrl())), u"next"_s);
    }

    void whatFollowsTheLastChunkIsIgnored()
    {
        HttpServer server;
        server.enqueue(endless("Transfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n"_ba,
            "X-Filler: a\r\n"_ba.repeated(5000)));
        HttpExchange exchange(1s);
        QCOMPARE(answerOf(exchange, request(server.url())), u"abc"_s);
    }

    void aBombIsNotInflated_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("expected");
        QTest::newRow("a thousand times as large")
            << QByteArray(64 * megabyte, '\0') << notInflated;
        QByteArray lessSuspicious;
        for (int i = 0; lessSuspicious.size() < 52 * megabyte; ++i) {
            lessSuspicious += QByteArray(200, 'a') + QByteArray::number(i * 2654435761U, 16);
        }
        QTest::newRow("twenty times as large") << lessSuspicious << tooLarge;
    }

    void aBombIsNotInflated()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, expected);
        HttpServer server;
        server.enqueue({.body = qCompress(std::exchange(bytes, {}), 1).mid(4),
            .headers = {{"Content-Encoding"_ba, "deflate"_ba}}});
        HttpExchange exchange(10s);
        const testlibs::PeakMemory memory;
        QCOMPARE(answerOf(exchange, request(server.url())), expected);
        QCOMPARE_LT(memory.growth().value() * int(memoryCounts), mostMemory);
    }

    void nothingIsTakenFromTheNetworkThatIsNotRead()
    {
        HttpServer server;
        HttpAnswer stream = endless("\r\n"_ba, QByteArray(65536, 'a'));
        stream.held = true;
        server.enqueue(stream);
        server.enqueue("slow"_ba);
        HttpExchange exchange(60s);
        QStringList outcomes;
        readerThread = nullptr;
        note(exchange.post(request(server.url()), asImage), outcomes);
        QTRY_COMPARE(server.requests().size(), 1);
        note(exchange.post(request(server.url()), slowlyAsImage), outcomes);
        QTRY_VERIFY(readerThread != nullptr);
        server.release();
        // The exchange is busy with the other answer. Of the stream only what buffers on the way
        // hold may leave the server, which then gets rid of no more.
        qint64 taken = -1;
        const auto moreIsTaken = [&] { return server.bytesSent() != taken; };
        while (taken < 100 * megabyte && QTest::qWaitFor(moreIsTaken, 500)) {
            taken = server.bytesSent();
        }
        allowsReading().release();
        QTRY_COMPARE_WITH_TIMEOUT(outcomes, QStringList({u"slow"_s, tooLarge}), 60000);
        QCOMPARE_LT(taken, 32 * megabyte);
    }

    void theReaderKeepsWithinTheBound_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("expected");
        const QString unreadable = u"Invalid response: Failed to parse response"_s;
        QTest::newRow("nesting") << json("{\"candidates\":"_ba, "["_ba) << unreadable;
        QTest::newRow("numbers") << json("{\"candidates\":[0"_ba, ",0"_ba) << unreadable;
        QTest::newRow("quotes") << json("{"_ba, "\"\":\"\","_ba) << unreadable;
    }

    void theReaderKeepsWithinTheBound()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, expected);
        HttpServer server;
        server.enqueue({.body = std::exchange(body, {}), .chunked = true});
        providers::Service service = providers::services().gemini;
        service.baseUrl = server.url();
        const providers::GeminiProvider provider(std::make_shared<HttpExchange>(10s), service);
        const testlibs::PeakMemory memory;
        const Heart heart;
        QCOMPARE(
            canned::outcome(QCoro::waitFor(provider.generate(u"p"_s, u"canary-key"_s, u"m"_s))),
            expected);
        QVERIFY(heart.longestPause() < 10s);
        QCOMPARE_LT(memory.growth().value() * int(memoryCounts), mostMemory);
    }
};

QTEST_GUILESS_MAIN(HostileAnswersTest)
#include "hostileanswerstest.moc"
