#include "exchangecalls.h"
#include "testlibs/belongings.h"

#include <QPointer>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace calls;
using providers::HttpExchange;
using providers::ImageResult;
using testlibs::HttpAnswer;
using testlibs::HttpServer;
using Ending = HttpAnswer::Ending;

namespace {

/// One that is deleted while it waits.
class Receiver : public QObject
{
public:
    QCoro::Task<> ask(HttpExchange &exchange, QString url, int &resumed)
    {
        const QPointer<Receiver> self = this;
        co_await exchange.post(request(url), asImage);
        ++resumed;
        if (self) {
            qFatal("The receiver should be gone");
        }
    }
};

qsizetype threads()
{
    return testlibs::Belongings::now().threads;
}

} // namespace

/// What the exchange starts, and that it and every call come to an end.
class ExchangeLifetimeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_threadsAtStart = threads(); }

    void hasNoThreadBeforeTheFirstRequestAndNoneAfterItsEnd()
    {
        // The last threads of other tests may still be on their way out.
        QTRY_COMPARE(threads(), m_threadsAtStart);
        {
            HttpExchange exchange;
            QCOMPARE(answerOf(exchange, request(u"no URL"_s)), u"Invalid response: Invalid URL"_s);
            QCOMPARE(threads(), m_threadsAtStart);
            HttpServer server;
            server.enqueue("answer"_ba);
            QCOMPARE(answerOf(exchange, request(server.url())), u"answer"_s);
            QCOMPARE_GT(threads(), m_threadsAtStart);
        }
        QTRY_COMPARE(threads(), m_threadsAtStart);
    }

    void keepsOnlyItsOwnThreadBetweenCalls()
    {
        QTRY_COMPARE(threads(), m_threadsAtStart);
        HttpServer server;
        server.enqueue("answer"_ba);
        HttpExchange exchange;
        QCOMPARE(answerOf(exchange, request(server.url())), u"answer"_s);
        QTRY_COMPARE(threads(), m_threadsAtStart + 1);
    }

    void concurrentCallsGetTheirOwnAnswers()
    {
        constexpr int calls = 20;
        HttpServer server;
        HttpExchange exchange;
        QStringList outcomes;
        for (int i = 0; i < calls; ++i) {
            note(exchange.post(request(server.url(), QByteArray::number(i)), asImage), outcomes);
        }
        // Each answer is the request's own body.
        int answered = 0;
        QStringList expected;
        connect(&server, &HttpServer::requested, this, [&] { ++answered; });
        for (int i = 0; i < calls; ++i) {
            server.enqueue({.body = QByteArray::number(i), .held = true});
        }
        // Qt opens no more than six connections to a host at a time.
        while (outcomes.size() < calls) {
            QTRY_VERIFY(answered > 0 || outcomes.size() == calls);
            answered = 0;
            server.release();
            QCoreApplication::processEvents();
        }
        for (int i = 0; i < calls; ++i) {
            expected += QString::number(i);
        }
        outcomes.sort();
        expected.sort();
        QCOMPARE(outcomes, expected);
        QCOMPARE(server.requests().size(), calls);
    }

    void callsInARowBearAServerThatClosesUnannounced()
    {
        HttpServer server;
        HttpExchange exchange;
        for (int i = 0; i < 100; ++i) {
            server.enqueue(
                {.body = "answer"_ba, .connection = HttpAnswer::Connection::ClosedUnannounced});
            QCOMPARE(answerOf(exchange, request(server.url())), u"answer"_s);
        }
        QCOMPARE(server.connections(), 100);
    }

    void everyCallIsAnsweredWhenTheExchangeIsDestroyed_data()
    {
        QTest::addColumn<HttpAnswer>("answer");
        QTest::newRow("waiting for the answer") << HttpAnswer{.ending = Ending::Silence};
        QTest::newRow("in mid-body")
            << HttpAnswer{.body = QByteArray(1000, 'x'), .ending = Ending::StallInBody};
    }

    void everyCallIsAnsweredWhenTheExchangeIsDestroyed()
    {
        QFETCH(HttpAnswer, answer);
        HttpServer server;
        server.enqueue(answer);
        server.enqueue(answer);
        QStringList outcomes;
        {
            HttpExchange exchange;
            note(exchange.post(request(server.url()), asImage), outcomes);
            note(exchange.post(request(server.url()), asImage), outcomes);
            QTRY_COMPARE(server.requests().size(), 2);
        }
        QTRY_COMPARE(outcomes, QStringList({cancelled, cancelled}));
        QTRY_COMPARE(server.openConnections(), 0);
    }

    void everyCallIsAnsweredWhenTheExchangeIsDestroyedAtOnce()
    {
        HttpServer server;
        QStringList outcomes;
        for (qsizetype i = 1; i <= 50; ++i) {
            {
                HttpExchange exchange;
                note(exchange.post(request(server.url()), asImage), outcomes);
                note(exchange.post(request(server.url()), asImage), outcomes);
            }
            QTRY_COMPARE(outcomes.size(), 2 * i);
        }
        outcomes.removeDuplicates();
        QCOMPARE(outcomes, QStringList({cancelled}));
    }

    void anAnswerThatCameBeforeTheEndIsKept()
    {
        HttpServer server;
        server.enqueue("answer"_ba);
        QStringList outcomes;
        {
            HttpExchange exchange;
            readerThread = nullptr;
            note(exchange.post(request(server.url()), asImage), outcomes);
            // Turns the server's part of the loop until the answer has been read.
            QTRY_VERIFY(readerThread != nullptr);
        }
        QTRY_COMPARE(outcomes, QStringList({u"answer"_s}));
    }

    void nothingHappensToAReceiverThatIsGone()
    {
        HttpServer server;
        server.enqueue({.body = "answer"_ba, .held = true});
        server.enqueue("next"_ba);
        HttpExchange exchange;
        int resumed = 0;
        auto receiver = std::make_unique<Receiver>();
        receiver->ask(exchange, server.url(), resumed);
        QTRY_COMPARE(server.requests().size(), 1);
        receiver.reset();
        server.release();
        QTRY_COMPARE(resumed, 1);
        QCOMPARE(answerOf(exchange, request(server.url())), u"next"_s);
    }

    void aCallThatNobodyAwaitsDoesNoHarm()
    {
        HttpServer server;
        server.enqueue("answer"_ba);
        server.enqueue("next"_ba);
        HttpExchange exchange;
        exchange.post(request(server.url()), asImage);
        QTRY_COMPARE(server.requests().size(), 1);
        QCOMPARE(answerOf(exchange, request(server.url())), u"next"_s);
    }

    void manyCallsLeaveNothingBehind()
    {
        HttpServer server;
        HttpExchange exchange(2s);
        server.enqueue("first"_ba);
        QCOMPARE(answerOf(exchange, request(server.url())), u"first"_s);
        QTRY_COMPARE(server.openConnections(), 0);
        const auto before = testlibs::Belongings::now();
        for (int i = 0; i < 200; ++i) {
            server.enqueue(
                {.body = "x"_ba, .ending = i % 2 == 0 ? Ending::Complete : Ending::Close});
            answerOf(exchange, request(server.url()));
        }
        QTRY_COMPARE(server.openConnections(), 0);
        // The first connection may still have been there before.
        QTRY_COMPARE_LE(testlibs::Belongings::now().files, before.files);
        QTRY_COMPARE_LE(threads(), before.threads);
    }

private:
    qsizetype m_threadsAtStart = 0;
};

QTEST_GUILESS_MAIN(ExchangeLifetimeTest)
#include "exchangelifetimetest.moc"