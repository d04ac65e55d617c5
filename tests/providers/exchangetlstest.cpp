#include "exchangecalls.h"
#include "testlibs/authority.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace calls;
using providers::HttpExchange;
using testlibs::HttpAnswer;
using testlibs::HttpServer;
using testlibs::ServerCertificate;
using testlibs::TrustedAuthority;

namespace {

/// Hears what is said to it, and answers with these bytes; none is silence.
class DeafServer : public QTcpServer
{
public:
    explicit DeafServer(const QByteArray &answer, bool closes = false)
    {
        connect(this, &QTcpServer::pendingConnectionAvailable, this, [this, answer, closes] {
            QTcpSocket *socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket, answer, closes] {
                m_heard += socket->readAll();
                socket->write(answer);
                if (closes) {
                    socket->disconnectFromHost();
                }
            });
        });
        listen(QHostAddress::LocalHost);
    }

    QByteArray heard() const { return m_heard; }

private:
    QByteArray m_heard;
};

} // namespace

/// Whom the exchange trusts.
class ExchangeTlsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aTrustedCertificateForTheNameIsEnough_data()
    {
        QTest::addColumn<ServerCertificate>("certificate");
        QTest::newRow("valid now") << ServerCertificate();
        QTest::newRow("of many names")
            << ServerCertificate{.subject = "DNS:a.example,IP:127.0.0.1,DNS:b.example"_ba};
    }

    void aTrustedCertificateForTheNameIsEnough()
    {
        QFETCH(ServerCertificate, certificate);
        const TrustedAuthority authority;
        HttpServer server(authority.listener(certificate));
        server.enqueue("answer"_ba);
        HttpExchange exchange;
        QCOMPARE(answerOf(exchange, request(server.secureUrl())), u"answer"_s);
        QCOMPARE(server.requests().first().header("x-key"_ba), QList{"canary-key"_ba});
    }

    void theLargestRealAnswerArrivesWhole()
    {
        const TrustedAuthority authority;
        HttpServer server(authority.listener());
        const QByteArray body = QByteArray(35000000, 'x') + "end"_ba;
        server.enqueue(body);
        HttpExchange exchange(60s);
        QVERIFY(answerOf(exchange, request(server.secureUrl())) == QString::fromLatin1(body));
    }

    void anyOtherCertificateIsRefused_data()
    {
        QTest::addColumn<ServerCertificate>("certificate");
        QTest::addColumn<QString>("reason");
        QTest::newRow("self-signed") << ServerCertificate{.isSelfSigned = true}
                                     << u"The certificate is self-signed, and untrusted"_s;
        QTest::newRow("expired") << ServerCertificate{.validFrom = -48h, .validTo = -1h}
                                 << u"The certificate has expired"_s;
        QTest::newRow("not yet valid") << ServerCertificate{.validFrom = 1h, .validTo = 48h}
                                       << u"The certificate is not yet valid"_s;
        const QString otherName
            = u"The host name did not match any of the valid hosts for this certificate"_s;
        QTest::newRow("for another name")
            << ServerCertificate{.subject = "DNS:service.example"_ba} << otherName;
        QTest::newRow("for another address")
            << ServerCertificate{.subject = "IP:127.0.0.2"_ba} << otherName;
        QTest::newRow("for an address written as a name")
            << ServerCertificate{.subject = "DNS:*.0.0.1"_ba} << otherName;
        QTest::newRow("for a mail address")
            << ServerCertificate{.subject = "email:me@127.0.0.1"_ba} << otherName;
    }

    void anyOtherCertificateIsRefused()
    {
        QFETCH(ServerCertificate, certificate);
        QFETCH(QString, reason);
        const TrustedAuthority authority;
        HttpServer server(authority.listener(certificate));
        server.enqueue("answer"_ba);
        HttpExchange exchange;
        QCOMPARE(answerOf(exchange, request(server.secureUrl())),
            u"Network error: SSL handshake failed: "_s + reason);
        QVERIFY(server.requests().isEmpty());
    }

    void anAuthorityThatNobodyTrustsIsRefused()
    {
        HttpServer server(TrustedAuthority().listener());
        server.enqueue("answer"_ba);
        HttpExchange exchange;
        const QString answer = answerOf(exchange, request(server.secureUrl()));
        QVERIFY2(
            answer.startsWith("Network error: SSL handshake failed: The issuer certificate"_L1),
            qPrintable(answer));
        QVERIFY(server.requests().isEmpty());
    }

    void whereNoTlsIsSpokenNothingIsSaid_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("closes");
        QTest::addColumn<QString>("expected");
        const QString handshake = u"Network error: SSL handshake failed: "_s;
        QTest::newRow("plain HTTP")
            << "HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\nanswer"_ba << false << handshake;
        QTest::newRow("an alert") << "\x15\x03\x03\x00\x02\x02\x28"_ba << false << handshake;
        QTest::newRow("silence") << ""_ba << false << timedOut;
        QTest::newRow("half a handshake") << "\x16\x03\x03\x10\x00\x02"_ba << false << timedOut;
        QTest::newRow("an end") << ""_ba << true << connectionClosed;
    }

    void whereNoTlsIsSpokenNothingIsSaid()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, closes);
        QFETCH(QString, expected);
        DeafServer server(bytes, closes);
        HttpExchange exchange(1500ms);
        const QString answer
            = answerOf(exchange, request(u"https://127.0.0.1:%1/"_s.arg(server.serverPort())));
        QVERIFY2(answer.startsWith(expected), qPrintable(answer));
        QVERIFY(!server.heard().isEmpty());
        QVERIFY(!server.heard().contains("canary-key"));
        QVERIFY(!server.heard().contains("POST"));
    }

    void anAnswerCutWithinTlsIsANetworkError_data()
    {
        QTest::addColumn<HttpAnswer>("answer");
        const QByteArray body(100000, 'x');
        QTest::newRow("closed") << HttpAnswer{
            .body = body, .ending = HttpAnswer::Ending::CutInBody};
        QTest::newRow("reset") << HttpAnswer{.ending = HttpAnswer::Ending::Reset,
            .wire = "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhalf"_ba};
        QTest::newRow("closed without an answer")
            << HttpAnswer{.ending = HttpAnswer::Ending::Close};
    }

    void anAnswerCutWithinTlsIsANetworkError()
    {
        QFETCH(HttpAnswer, answer);
        const TrustedAuthority authority;
        HttpServer server(authority.listener());
        server.enqueue(answer);
        HttpExchange exchange;
        QCOMPARE(answerOf(exchange, request(server.secureUrl())), connectionClosed);
        QCOMPARE(server.requests().size(), 1);
    }

    void aRedirectDoesNotLeadOutOfTls_data()
    {
        QTest::addColumn<int>("status");
        for (const int status : {301, 302, 303, 307, 308}) {
            QTest::addRow("%d", status) << status;
        }
    }

    void aRedirectDoesNotLeadOutOfTls()
    {
        QFETCH(int, status);
        const TrustedAuthority authority;
        HttpServer plain;
        HttpServer server(authority.listener());
        server.enqueue({.status = status,
            .body = "moved"_ba,
            .headers = {{"Location"_ba, plain.url().toLatin1()}}});
        HttpExchange exchange;
        QCOMPARE(answerOf(exchange, request(server.secureUrl())), u"moved"_s);
        QCOMPARE(plain.connections(), 0);
    }
};

QTEST_GUILESS_MAIN(ExchangeTlsTest)
#include "exchangetlstest.moc"
