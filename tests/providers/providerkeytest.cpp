#include "callers.h"
#include "testlibs/authority.h"

#include <QTcpServer>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace canned;
using providers::HttpExchange;
using testlibs::HttpAnswer;
using testlibs::HttpServer;

/// Where the key goes, with all providers and the upscaler: to their service, as it is, and nowhere
/// else.
class ProviderKeyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theKeyIsNotCarriedElsewhere_data()
    {
        QTest::addColumn<Caller>("caller");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("location");
        QTest::addColumn<bool>("leavesTls");
        for (const Caller &caller : callers) {
            for (const int status : {301, 302, 303, 307, 308}) {
                const auto add = [&](const char *where, const QString &location, bool leavesTls) {
                    QTest::addRow("%s, %d, %s", caller.name, status, where)
                        << caller << status << location << leavesTls;
                };
                add("other host", u"http://localhost:%1/"_s, false);
                add("other port", u"http://127.0.0.1:%1/"_s, false);
                add("http", u"http://127.0.0.1:%1/"_s, true);
                add("user@host", u"http://user@127.0.0.1:%1/"_s, false);
                add("chain", u"/next"_s, false);
            }
        }
    }

    void theKeyIsNotCarriedElsewhere()
    {
        QFETCH(Caller, caller);
        QFETCH(int, status);
        QFETCH(QString, location);
        QFETCH(bool, leavesTls);
        HttpServer elsewhere;
        const testlibs::TrustedAuthority authority;
        HttpServer server(leavesTls ? authority.listener() : std::make_unique<QTcpServer>());
        const auto moved = [&](const QString &to) {
            const QString full = to.contains(u"%1"_s) ? to.arg(elsewhere.port()) : to;
            return HttpAnswer{.status = status,
                .body = "Moved"_ba,
                .headers = {{"Location"_ba, full.toLatin1()}}};
        };
        server.enqueue(moved(location));
        server.enqueue(moved(u"http://127.0.0.1:%1/"_s)); // The end of the chain.
        const auto exchange = std::make_shared<HttpExchange>();
        const QString url = leavesTls ? server.secureUrl() : server.url();
        QCOMPARE(outcome(QCoro::waitFor(caller.call(exchange, url, u"a hill"_s, u"canary-key"_s))),
            caller.unreadable);
        QCOMPARE(server.requests().size(), 1);
        QCOMPARE(elsewhere.connections(), 0);
    }

    void theKeyIsSentAsGiven_data()
    {
        QTest::addColumn<Caller>("caller");
        QTest::addColumn<QString>("key");
        for (const Caller &caller : callers) {
            const auto add = [&](const char *name, const QString &key) {
                QTest::addRow("%s, %s", caller.name, name) << caller << key;
            };
            add("plain", u"canary-key"_s);
            add("empty", u""_s);
            add("null", QString());
            add("blanks around and inside", u" canary key "_s);
            add("quotes and colons", u"\"canary\": 'key', x"_s);
            add("beyond ASCII", u"sch\u00fcssel-\u05d0-\U0001F511"_s);
            add("very long", QString(5000, u'k'));
        }
    }

    void theKeyIsSentAsGiven()
    {
        QFETCH(Caller, caller);
        QFETCH(QString, key);
        HttpServer server;
        QCOMPARE(outcomeOf(caller, server, {.body = caller.answer}, key), caller.image);
        const testlibs::ReceivedRequest &request = server.requests().first();
        QCOMPARE(request.header(caller.keyHeader), QList{caller.keyPrefix + key.toUtf8()});
        QVERIFY(key.isEmpty() || !request.path.contains(key.toUtf8()));
        QVERIFY(key.isEmpty() || !request.body.contains(key.toUtf8()));
    }

    void aKeyCannotBreakOutOfItsHeader_data()
    {
        QTest::addColumn<Caller>("caller");
        QTest::addColumn<QString>("key");
        for (const Caller &caller : callers) {
            const auto add = [&](const char *name, const QString &key) {
                QTest::addRow("%s, %s", caller.name, name) << caller << key;
            };
            add("another header", u"canary-key\r\nHost: evil.example"_s);
            add("another request", u"canary-key\r\n\r\nGET / HTTP/1.1"_s);
            add("line feed at the end", u"canary-key\n"_s);
            add("carriage return", u"canary-key\r"_s);
            add("NUL", u"canary-key\u0000x"_s);
            add("delete", u"canary-key\u007f"_s);
        }
    }

    void aKeyCannotBreakOutOfItsHeader()
    {
        QFETCH(Caller, caller);
        QFETCH(QString, key);
        HttpServer server;
        QCOMPARE(outcomeOf(caller, server, {}, key),
            u"Network error: The API key contains a line break or another control character."_s);
        QCOMPARE(server.connections(), 0);
    }
};

QTEST_GUILESS_MAIN(ProviderKeyTest)
#include "providerkeytest.moc"
