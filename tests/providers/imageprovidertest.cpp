#include "cannedanswers.h"
#include "providers/geminiprovider.h"
#include "providers/grokprovider.h"
#include "providers/httpexchange.h"
#include "providers/openaiprovider.h"
#include "providers/upscaler.h"
#include "testlibs/authority.h"
#include "testlibs/httpserver.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpServer>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace canned;
using providers::HttpExchange;
using providers::ImageResult;
using testlibs::HttpAnswer;
using testlibs::HttpServer;
using Ending = HttpAnswer::Ending;
using Exchange = std::shared_ptr<HttpExchange>;

namespace {

/// One of the four calls that go through the exchange, and what it expects of its service.
struct Caller
{
    const char *name;
    QCoro::Task<ImageResult> (*call)(const Exchange &exchange, const QString &baseUrl,
        const QString &prompt, const QString &key);
    QByteArray answer; ///< Holds the image "Man".
    QString image;
    QByteArray keyHeader;
    QByteArray keyPrefix;
    QString unreadable;
    QString noImage;
    QString errorPrefix;
};

/// The provider is gone when the call goes on its way; only the exchange has to stay.
template <typename Provider>
QCoro::Task<ImageResult> generate(const Exchange &exchange, providers::Service service,
    const QString &baseUrl, const QString &prompt, const QString &key)
{
    service.baseUrl = baseUrl;
    const Provider provider(exchange, service);
    return provider.generate(prompt, key, service.models.first().id);
}

QCoro::Task<ImageResult> viaGemini(
    const Exchange &exchange, const QString &baseUrl, const QString &prompt, const QString &key)
{
    return generate<providers::GeminiProvider>(
        exchange, providers::services().gemini, baseUrl, prompt, key);
}

QCoro::Task<ImageResult> viaGrok(
    const Exchange &exchange, const QString &baseUrl, const QString &prompt, const QString &key)
{
    return generate<providers::GrokProvider>(
        exchange, providers::services().grok, baseUrl, prompt, key);
}

QCoro::Task<ImageResult> viaOpenAI(
    const Exchange &exchange, const QString &baseUrl, const QString &prompt, const QString &key)
{
    return generate<providers::OpenAIProvider>(
        exchange, providers::services().openai, baseUrl, prompt, key);
}

QCoro::Task<ImageResult> viaUpscaler(const Exchange &exchange, const QString &baseUrl,
    const QString & /*prompt*/, const QString &key)
{
    const providers::Upscaler upscaler(exchange, baseUrl);
    return upscaler.upscale("bytes"_ba, u"png"_s, key);
}

const QString unreadable = u"Invalid response: Failed to parse response"_s;
const QString noImage = u"Invalid response: No image in response"_s;
const QList<Caller> callers{
    {"Gemini", viaGemini, candidates("[" + inlineData() + "]"), u"Man.png"_s, "x-goog-api-key"_ba,
        ""_ba, unreadable, noImage, u"API error: "_s},
    {"Grok", viaGrok, data("[" + image() + "]"), u"Man.jpg"_s, "Authorization"_ba, "Bearer "_ba,
        unreadable, noImage, u"API error: "_s},
    {"OpenAI", viaOpenAI, data("[" + image() + "]"), u"Man.png"_s, "Authorization"_ba, "Bearer "_ba,
        unreadable, noImage, u"API error: "_s},
    {"upscaler", viaUpscaler, candidates("[" + inlineData() + "]"), u"Man.png"_s,
        "x-goog-api-key"_ba, ""_ba, u"Invalid response: Failed to parse upscale response"_s,
        u"Invalid response: No image in upscale response"_s, u"API error: Upscale failed: "_s},
};

/// Plays @p answer to one call.
QString outcomeOf(const Caller &caller, HttpServer &server, const HttpAnswer &answer,
    const QString &key = u"canary-key"_s)
{
    server.enqueue(answer);
    auto exchange = std::make_shared<HttpExchange>(500ms);
    return outcome(QCoro::waitFor(caller.call(exchange, server.url(), u"a hill"_s, key)));
}

QCoro::Task<> note(QCoro::Task<ImageResult> call, QStringList &outcomes)
{
    const ImageResult result = co_await call;
    outcomes += outcome(result);
}

} // namespace

Q_DECLARE_METATYPE(Caller)

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
