#include "exchangecalls.h"
#include "testlibs/ownnamespace.h"

#include <QCoreApplication>
#include <QTest>

#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace calls;
using providers::HttpExchange;
using testlibs::HttpAnswer;
using testlibs::HttpServer;
using Ending = HttpAnswer::Ending;

namespace {

/// Switches the only network there is, the loopback interface, on or off.
bool switchNetwork(bool on)
{
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request{};
    qstrncpy(request.ifr_name, "lo", IFNAMSIZ);
    bool switched = ::ioctl(socket, SIOCGIFFLAGS, &request) == 0;
    const int flags = request.ifr_flags;
    request.ifr_flags = short(on ? flags | IFF_UP : flags & ~IFF_UP);
    switched = switched && ::ioctl(socket, SIOCSIFFLAGS, &request) == 0;
    ::close(socket);
    return switched;
}

} // namespace

/// What people read without a network, in a network that only this process is in; and that the
/// exchange goes on when it is back.
class ExchangeNetworkTest : public QObject
{
    Q_OBJECT

public:
    explicit ExchangeNetworkTest(const QString &refusal) : m_refusal(refusal) { }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_refusal.isEmpty(), qPrintable(m_refusal)); }

    void init() { QVERIFY(switchNetwork(true)); }

    void aNameThatNobodyKnowsIsANetworkError_data()
    {
        QTest::addColumn<QString>("url");
        QTest::newRow("TLS") << u"https://service.invalid/"_s;
        QTest::newRow("plain") << u"http://service.invalid/"_s;
    }

    void aNameThatNobodyKnowsIsANetworkError()
    {
        QFETCH(QString, url);
        HttpExchange exchange;
        QCOMPARE(
            answerOf(exchange, request(url)), u"Network error: Host service.invalid not found"_s);
    }

    void aPlaceWithoutAWayIsANetworkError()
    {
        HttpExchange exchange;
        QCOMPARE(answerOf(exchange, request(u"https://192.0.2.1/"_s)),
            u"Network error: Network unreachable"_s);
    }

    void theNetworkMayGoAndComeBack_data()
    {
        QTest::addColumn<HttpAnswer>("answer");
        const QByteArray body(1000, 'x');
        QTest::newRow("before the answer") << HttpAnswer{.ending = Ending::Silence};
        QTest::newRow("in the headers")
            << HttpAnswer{.ending = Ending::Silence, .wire = "HTTP/1.1 200 OK\r\nContent"_ba};
        QTest::newRow("in the body") << HttpAnswer{.body = body, .ending = Ending::StallInBody};
    }

    void theNetworkMayGoAndComeBack()
    {
        QFETCH(HttpAnswer, answer);
        HttpServer server;
        server.enqueue(answer);
        server.enqueue("answer"_ba);
        HttpExchange exchange(500ms);
        QStringList outcomes;
        note(exchange.post(request(server.url()), asImage), outcomes);
        QTRY_COMPARE(server.requests().size(), 1);
        QVERIFY(switchNetwork(false));
        QTRY_COMPARE(outcomes, QStringList{timedOut});
        QCOMPARE(answerOf(exchange, request(server.url())), timedOut);
        QCOMPARE(answerOf(exchange, request(u"https://service.invalid/"_s)),
            u"Network error: Host service.invalid not found"_s);
        QVERIFY(switchNetwork(true));
        QCOMPARE(answerOf(exchange, request(server.url())), u"answer"_s);
        QCOMPARE(server.requests().size(), 2);
    }

private:
    QString m_refusal;
};

int main(int argc, char **argv)
{
    const QString refusal = testlibs::enterOwnNamespace(CLONE_NEWNET);
    const QCoreApplication application(argc, argv);
    ExchangeNetworkTest test(refusal);
    return QTest::qExec(&test, argc, argv);
}

#include "exchangenetworktest.moc"
