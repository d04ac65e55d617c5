#include "providers/grokprovider.h"
#include "cannedanswers.h"
#include "providers/httpexchange.h"
#include "testlibs/httpserver.h"

#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace canned;
using providers::GrokProvider;

namespace {

const QString noImage = u"Invalid response: No image in response"_s;
const QString undecodable = u"Invalid response: Failed to decode base64 image"_s;
const QString unreadable = u"Invalid response: Failed to parse response"_s;

GrokProvider providerAt(const QString &baseUrl)
{
    providers::Service service = providers::services().grok;
    service.baseUrl = baseUrl;
    return {std::make_shared<providers::HttpExchange>(), service};
}

} // namespace

class GrokProviderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTheServicesIdentity()
    {
        const GrokProvider provider = providerAt(u"http://127.0.0.1:1"_s);
        QCOMPARE(provider.name(), u"Grok"_s);
        QCOMPARE(provider.id(), u"grok"_s);
        QCOMPARE(provider.models(), providers::services().grok.models);
    }

    void sendsOneRequest()
    {
        testlibs::HttpServer server;
        server.enqueue(data("[" + image() + "]"));
        const GrokProvider provider = providerAt(server.url());
        const auto result
            = QCoro::waitFor(provider.generate(u"a hill"_s, u"canary-key"_s, u"any {model}"_s));
        QCOMPARE(outcome(result), u"Man.jpg"_s);

        QCOMPARE(server.requests().size(), 1);
        const testlibs::ReceivedRequest &request = server.requests().first();
        QCOMPARE(request.method, "POST"_ba);
        QCOMPARE(request.path, "/v1/images/generations"_ba);
        QCOMPARE(request.header("Authorization"_ba), QList{"Bearer canary-key"_ba});
        QCOMPARE(request.header("Content-Type"_ba), QList{"application/json"_ba});
        QCOMPARE(request.header("x-goog-api-key"_ba), QList<QByteArray>());
        QCOMPARE(request.body, GrokProvider::requestBody(u"a hill"_s, u"any {model}"_s));
    }

    void theBodyHoldsFiveKeys()
    {
        const QByteArray expected
            = "{'model': 'grok-imagine-image', 'prompt': 'a hill', "
              "'response_format': 'b64_json', 'n': 1, 'aspect_ratio': '16:9'}"_json;
        QCOMPARE(QJsonDocument::fromJson(
                     GrokProvider::requestBody(u"a hill"_s, u"grok-imagine-image"_s)),
            QJsonDocument::fromJson(expected));
    }

    void anUnusableUrlSendsNothing()
    {
        const GrokProvider provider = providerAt(u"http://not a host"_s);
        const auto result = QCoro::waitFor(provider.generate(u"p"_s, u"canary-key"_s, u"m"_s));
        QCOMPARE(outcome(result), u"Invalid response: Invalid URL"_s);
    }

    void readsAnswers_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("expected");

        QTest::newRow("plain base64 is decoded whole") << data("[" + image() + "]") << u"Man.jpg"_s;
        QTest::newRow("with everything around it")
            << "{'data':[{'b64_json':'TWFu','mime_type':'image/jpeg','revised_prompt':''}],"
               "'usage':{'cost_in_usd_ticks':200000000}}"_json
            << u"Man.jpg"_s;
        QTest::newRow("data URL of a PNG is still jpg")
            << data("[" + image("data:image/png;base64,TWFu"_ba) + "]") << u"Man.jpg"_s;
        QTest::newRow("base64 anywhere before the first comma")
            << data("[" + image("xbase64x,TWFu"_ba) + "]") << u"Man.jpg"_s;
        QTest::newRow("data URL without an image")
            << data("[" + image("data:image/png;base64,"_ba) + "]") << u".jpg"_s;
        QTest::newRow("the image may be empty") << data("[" + image(""_ba) + "]") << u".jpg"_s;
        QTest::newRow("escaped slashes")
            << data("[{'b64_json':'data:image\\/png;base64,\\/\\/\\/\\/'}]"_json)
            << u"\u00ff\u00ff\u00ff.jpg"_s;
        QTest::newRow("only the first of two elements counts")
            << data("[" + image() + ",{'b64_json':'AAAA'}]"_json) << u"Man.jpg"_s;

        QTest::newRow("a comma without base64 before it")
            << data("[" + image("data:image/png,TWFu"_ba) + "]") << undecodable;
        QTest::newRow("base64 in capitals before the comma")
            << data("[" + image("data:image/png;BASE64,TWFu"_ba) + "]") << undecodable;
        QTest::newRow("base64 only behind the first comma")
            << data("[" + image("a,base64,TWFu"_ba) + "]") << undecodable;
        QTest::newRow("only the first comma is considered")
            << data("[" + image("data:;base64,TWFu,TWFu"_ba) + "]") << undecodable;
        QTest::newRow("undecodable base64") << data("[" + image("TWF"_ba) + "]") << undecodable;
        QTest::newRow("undecodable base64 in a data URL")
            << data("[" + image("data:image/png;base64,TW u"_ba) + "]") << undecodable;

        QTest::newRow("data is empty, as of a moderated request")
            << "{'data':[],'block_reason':'policy'}"_json << noImage;
        QTest::newRow("b64_json null") << data("[{'b64_json':null}]"_json) << noImage;
        QTest::newRow("b64_json missing, though a later element has one")
            << data("[{'url':'x'},"_json + image() + "]") << noImage;
        QTest::newRow("b64_json is a number") << data("[{'b64_json':1}]"_json) << noImage;
        QTest::newRow("b64_json is an array") << data("[{'b64_json':['TWFu']}]"_json) << noImage;
        QTest::newRow("data is missing") << "{'created':1}"_json << noImage;
        QTest::newRow("data is null") << data("null"_ba) << noImage;
        QTest::newRow("data is an object") << data(image()) << noImage;
        QTest::newRow("data holds a text behind the image")
            << data("[" + image() + ",'x']"_json) << noImage;
        QTest::newRow("data holds null before the image")
            << data("[null," + image() + "]") << noImage;

        QTest::newRow("error as a text: bad key")
            << "{'code':'Client specified an invalid argument','error':'Incorrect API key provided: xa***ey.'}"_json
            << noImage;
        QTest::newRow("error as a text: content")
            << "{'code':'x','error':'Content violates usage guidelines.'}"_json << noImage;
        QTest::newRow("error as a text: credits")
            << "{'code':'x','error':'Your team has either used all available credits or reached its monthly spending limit.'}"_json
            << noImage;
        QTest::newRow("error as a text beside an image")
            << "{'error':'odd','data':["_json + image() + "]}" << u"Man.jpg"_s;
        QTest::newRow("error with a message")
            << "{'error':{'message':'no'}}"_json << u"API error: no"_s;
        QTest::newRow("error with a message beside an image") << "{'data':["_json + image()
                + "],'error':{'message':'no'}}"_json << u"API error: no"_s;

        QTest::newRow("status 422 is plain text")
            << "Failed to deserialize the JSON body into the target type: missing field `prompt`"_ba
            << unreadable;
        QTest::newRow("array") << "[" + data("[" + image() + "]") + "]" << unreadable;
        QTest::newRow("HTML") << "<html>Just a moment...</html>"_ba << unreadable;
        QTest::newRow("empty body") << ""_ba << unreadable;
    }

    void readsAnswers()
    {
        QFETCH(QByteArray, body);
        QTEST(outcome(GrokProvider::readAnswer(body)), "expected");
    }
};

QTEST_GUILESS_MAIN(GrokProviderTest)
#include "grokprovidertest.moc"
