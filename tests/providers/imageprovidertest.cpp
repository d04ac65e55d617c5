#include "callers.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpServer>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace canned;
using providers::HttpExchange;
using providers::ImageResult;
using testlibs::HttpAnswer;
using testlibs::HttpServer;
using Ending = HttpAnswer::Ending;

namespace {

QCoro::Task<> note(QCoro::Task<ImageResult> call, QStringList &outcomes)
{
    const ImageResult result = co_await call;
    outcomes += outcome(result);
}

} // namespace

/// What all providers and the upscaler have in common.
class ImageProviderTest : public QObject
{
    Q_OBJECT

    static void addCallersTimes(const QList<int> &statuses)
    {
        QTest::addColumn<Caller>("caller");
        QTest::addColumn<int>("status");
        for (const Caller &caller : callers) {
            for (const int status : statuses) {
                QTest::addRow("%s, %d", caller.name, status) << caller << status;
            }
        }
    }

private Q_SLOTS:
    void anImageIsAnImageWhateverTheStatus_data()
    {
        addCallersTimes({200, 201, 202, 302, 400, 401, 403, 404, 407, 429, 500, 502, 503, 504});
    }

    void anImageIsAnImageWhateverTheStatus()
    {
        QFETCH(Caller, caller);
        QFETCH(int, status);
        HttpServer server;
        QCOMPARE(
            outcomeOf(caller, server, {.status = status, .body = caller.answer}), caller.image);
    }

    void anErrorObjectIsAnErrorWhateverTheStatus_data()
    {
        addCallersTimes({200, 400, 401, 402, 403, 404, 409, 422, 429, 500, 503, 504, 529});
    }

    void anErrorObjectIsAnErrorWhateverTheStatus()
    {
        QFETCH(Caller, caller);
        QFETCH(int, status);
        HttpServer server;
        QCOMPARE(outcomeOf(caller, server,
                     {.status = status, .body = "{'error':{'code':1,'message':'<b>no</b>'}}"_json}),
            caller.errorPrefix + u"<b>no</b>"_s);
    }

    void whatIsNoJsonIsUnreadableWhateverTheStatus_data()
    {
        addCallersTimes({200, 204, 301, 403, 422, 500, 502, 503, 504, 524});
    }

    void whatIsNoJsonIsUnreadableWhateverTheStatus()
    {
        QFETCH(Caller, caller);
        QFETCH(int, status);
        const QByteArray html = "<html><head><title>Just a moment...</title></head></html>"_ba;
        for (const QByteArray &body : {html, ""_ba, "[" + caller.answer + "]"}) {
            if (status != 204 || body.isEmpty()) {
                HttpServer server;
                QCOMPARE(
                    outcomeOf(caller, server, {.status = status, .body = body}), caller.unreadable);
            }
        }
    }

    void anErrorTextIsNoError_data() { addCallersTimes({200, 400, 403, 429}); }

    void anErrorTextIsNoError()
    {
        QFETCH(Caller, caller);
        QFETCH(int, status);
        HttpServer server;
        QCOMPARE(outcomeOf(caller, server,
                     {.status = status, .body = "{'code':'x','error':'Incorrect API key'}"_json}),
            caller.noImage);
    }

    void failuresOfTheConnectionAreNetworkErrors_data()
    {
        QTest::addColumn<Caller>("caller");
        QTest::addColumn<HttpAnswer>("answer");
        QTest::addColumn<QString>("description");
        for (const Caller &caller : callers) {
            const auto add = [&](const char *name, Ending ending, const QString &description) {
                QTest::addRow("%s, %s", caller.name, name)
                    << caller << HttpAnswer{.body = caller.answer, .ending = ending} << description;
            };
            add("cut in mid-body", Ending::CutInBody, u"Connection closed"_s);
            add("closed without an answer", Ending::Close, u"Connection closed"_s);
            add("reset without an answer", Ending::Reset, u"Connection closed"_s);
            add("silence", Ending::Silence, u"The request timed out."_s);
            add("silence in mid-body", Ending::StallInBody, u"The request timed out."_s);
        }
    }

    void failuresOfTheConnectionAreNetworkErrors()
    {
        QFETCH(Caller, caller);
        QFETCH(HttpAnswer, answer);
        QFETCH(QString, description);
        HttpServer server;
        QCOMPARE(outcomeOf(caller, server, answer), u"Network error: "_s + description);
        QCOMPARE(server.requests().size(), 1);
    }

    void aRefusedConnectionIsANetworkError_data() { addCallersTimes({0}); }

    void aRefusedConnectionIsANetworkError()
    {
        QFETCH(Caller, caller);
        QTcpServer closed;
        closed.listen(QHostAddress::LocalHost);
        const QString url = u"http://127.0.0.1:%1"_s.arg(closed.serverPort());
        closed.close();
        const auto exchange = std::make_shared<HttpExchange>();
        const auto result = QCoro::waitFor(caller.call(exchange, url, u"p"_s, u"canary-key"_s));
        QCOMPARE(outcome(result), u"Network error: Connection refused"_s);
    }

    void oneExchangeServesSeveralCallsAtOnce_data() { addCallersTimes({200}); }

    void oneExchangeServesSeveralCallsAtOnce()
    {
        QFETCH(Caller, caller);
        HttpServer server;
        const auto exchange = std::make_shared<HttpExchange>();
        QStringList outcomes;
        for (int i = 0; i < 10; ++i) {
            server.enqueue({.body = caller.answer, .held = true});
            note(caller.call(exchange, server.url(), u"p"_s, u"canary-key"_s), outcomes);
        }
        QTRY_COMPARE(server.requests().size(), 10);
        QVERIFY(outcomes.isEmpty());
        server.release();
        QTRY_COMPARE(outcomes, QStringList(10, caller.image));
    }

    void aCallIsAnsweredThoughItsExchangeIsGone_data() { addCallersTimes({200}); }

    void aCallIsAnsweredThoughItsExchangeIsGone()
    {
        QFETCH(Caller, caller);
        HttpServer server;
        server.enqueue({.body = caller.answer, .held = true});
        QStringList outcomes;
        note(caller.call(std::make_shared<HttpExchange>(), server.url(), u"p"_s, u"canary-key"_s),
            outcomes);
        QTRY_COMPARE(outcomes, QStringList{u"Network error: The request was cancelled."_s});
    }

    void promptsTravelUnchanged_data()
    {
        QTest::addColumn<Caller>("caller");
        QTest::addColumn<QString>("prompt");
        for (const Caller &caller : callers.first(3)) {
            const auto add = [&](const char *name, const QString &prompt) {
                QTest::addRow("%s, %s", caller.name, name) << caller << prompt;
            };
            add("empty", u""_s);
            add("blanks around", u"  a hill \n"_s);
            add("quotes and backslashes", u"\"a\" \\ 'b' \\n / </script>"_s);
            add("line breaks and tabulators", u"a\r\nb\tc\u2028d"_s);
            add("control characters", u"a\u0000b\u0001\u001f\u007f"_s);
            add("emoji", u"\U0001F304 \U0001F468\u200D\U0001F469\u200D\U0001F467"_s);
            add("right to left", u"\u05d4\u05e8\u05d9\u05dd \u202e\u0627\u0644"_s);
            add("combining marks", u"e\u0301 \u00e9"_s);
            add("lone surrogates", u"a"_s + QChar(0xd83c) + u"b"_s + QChar(0xdf04));
            add("100,000 characters", QString(100000, u'\u00e4'));
        }
    }

    void promptsTravelUnchanged()
    {
        QFETCH(Caller, caller);
        QFETCH(QString, prompt);
        HttpServer server;
        server.enqueue(caller.answer);
        const auto exchange = std::make_shared<HttpExchange>();
        QCOMPARE(
            outcome(QCoro::waitFor(caller.call(exchange, server.url(), prompt, u"canary-key"_s))),
            caller.image);
        QJsonParseError error;
        const QJsonDocument body = QJsonDocument::fromJson(server.requests().first().body, &error);
        QCOMPARE(error.error, QJsonParseError::NoError);
        const QJsonValue sent = body.object().contains(u"prompt"_s)
            ? body[u"prompt"_s]
            : body[u"contents"_s][0][u"parts"_s][0][u"text"_s];
        QCOMPARE(sent.toString(), prompt);
    }
};

QTEST_GUILESS_MAIN(ImageProviderTest)
#include "imageprovidertest.moc"
