#include "exchangecalls.h"

#include <QTcpServer>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace calls;
using providers::HttpExchange;
using testlibs::HttpAnswer;
using testlibs::HttpServer;
using Ending = HttpAnswer::Ending;

namespace {

quint16 closedPort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

} // namespace

/// What people read when the network or a service fails.
class ExchangeFailuresTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void failuresOfTheConnectionAreNetworkErrors_data()
    {
        QTest::addColumn<HttpAnswer>("answer");
        QTest::addColumn<QString>("expected");
        const QByteArray body(100000, 'x');
        QTest::newRow("cut in mid-body")
            << HttpAnswer{.body = body, .ending = Ending::CutInBody} << connectionClosed;
        QTest::newRow("cut in the body of an error")
            << HttpAnswer{.status = 500, .body = body, .ending = Ending::CutInBody}
            << connectionClosed;
        QTest::newRow("cut between chunks")
            << HttpAnswer{.body = body, .ending = Ending::CutInBody, .chunked = true}
            << connectionClosed;
        QTest::newRow("cut in the body of a redirect")
            << HttpAnswer{.status = 302, .body = body, .ending = Ending::CutInBody}
            << connectionClosed;
        QTest::newRow("closed without an answer")
            << HttpAnswer{.ending = Ending::Close} << connectionClosed;
        QTest::newRow("reset without an answer")
            << HttpAnswer{.ending = Ending::Reset} << connectionClosed;
        QTest::newRow("silence") << HttpAnswer{.ending = Ending::Silence} << timedOut;
        QTest::newRow("silence in mid-body")
            << HttpAnswer{.body = body, .ending = Ending::StallInBody} << timedOut;
        QTest::newRow("silence in the body of an error")
            << HttpAnswer{.status = 429, .body = body, .ending = Ending::StallInBody} << timedOut;
    }

    void failuresOfTheConnectionAreNetworkErrors()
    {
        QFETCH(HttpAnswer, answer);
        QFETCH(QString, expected);
        HttpServer server;
        server.enqueue(answer);
        HttpExchange exchange(500ms);
        QCOMPARE(answerOf(exchange, request(server.url())), expected);
        // A second picture would cost money.
        QCOMPARE(server.requests().size(), 1);
    }

    void aRefusedConnectionIsANetworkError()
    {
        HttpExchange exchange;
        const QString url = u"http://127.0.0.1:%1/"_s.arg(closedPort());
        QCOMPARE(answerOf(exchange, request(url)), u"Network error: Connection refused"_s);
    }

    void aBrokenAnswerIsANetworkError_data()
    {
        QTest::addColumn<HttpAnswer>("answer");
        QTest::addColumn<QString>("expected");
        const QByteArray status = "HTTP/1.1 200 OK\r\n"_ba;
        const QByteArray head = status + "Content-Length: 1000\r\n\r\n"_ba;
        const QByteArray chunk
            = status + "Transfer-Encoding: chunked\r\n\r\n3e8\r\n"_ba + QByteArray(500, 'x');
        const auto add = [](const char *what, const QByteArray &wire) {
            QTest::addRow("closed %s", what)
                << HttpAnswer{.ending = Ending::Close, .wire = wire} << connectionClosed;
            QTest::addRow("reset %s", what)
                << HttpAnswer{.ending = Ending::Reset, .wire = wire} << connectionClosed;
            QTest::addRow("silence %s", what)
                << HttpAnswer{.ending = Ending::Silence, .wire = wire} << timedOut;
        };
        add("in the status line", "HTTP/1.1 2"_ba);
        add("after the status line", status);
        add("in a header", status + "Content-Le"_ba);
        add("after a header", status + "Content-Length: 9\r\n"_ba);
        add("after the headers", head);
        add("in the body", head + QByteArray(500, 'x'));
        add("in a chunk", chunk);
        add("after a chunk", chunk + QByteArray(500, 'x') + "\r\n"_ba);
    }

    void aBrokenAnswerIsANetworkError()
    {
        QFETCH(HttpAnswer, answer);
        QFETCH(QString, expected);
        HttpServer server;
        server.enqueue(answer);
        HttpExchange exchange(500ms);
        QCOMPARE(answerOf(exchange, request(server.url())), expected);
        QCOMPARE(server.requests().size(), 1);
    }

    void whatIsNoHttpIsANetworkError_data()
    {
        QTest::addColumn<QByteArray>("wire");
        QTest::newRow("mail") << "220 mail.example ESMTP\r\n"_ba;
        QTest::newRow("a page without a head") << "<html>Hello</html>\r\n\r\n"_ba;
        QTest::newRow("bytes") << QByteArray(100000, '\xff');
        QTest::newRow("another version") << "HTTP/9 200 OK\r\n\r\nanswer"_ba;
        QTest::newRow("TLS") << "\x15\x03\x03\x00\x02\x02\x28"_ba;
    }

    void whatIsNoHttpIsANetworkError()
    {
        QFETCH(QByteArray, wire);
        HttpServer server;
        server.enqueue({.ending = Ending::Close, .wire = wire});
        HttpExchange exchange(500ms);
        QCOMPARE(answerOf(exchange, request(server.url())), connectionClosed);
    }

    void aServerMayComeBack()
    {
        HttpExchange exchange(500ms);
        quint16 port = 0;
        {
            HttpServer server;
            port = server.port();
            server.enqueue({.body = "half"_ba, .ending = Ending::CutInBody});
            QCOMPARE(answerOf(exchange, request(server.url())), connectionClosed);
        }
        const QString url = u"http://127.0.0.1:%1/"_s.arg(port);
        QCOMPARE(answerOf(exchange, request(url)), u"Network error: Connection refused"_s);
        HttpServer server(port);
        server.enqueue("answer"_ba);
        QCOMPARE(answerOf(exchange, request(url)), u"answer"_s);
    }
};

QTEST_GUILESS_MAIN(ExchangeFailuresTest)
#include "exchangefailurestest.moc"
