#include "providers/geminiprovider.h"
#include "cannedanswers.h"
#include "providers/httpexchange.h"
#include "testlibs/httpserver.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace canned;
using providers::GeminiProvider;

namespace {

const QString noImage = u"Invalid response: No image in response"_s;
const QString unreadable = u"Invalid response: Failed to parse response"_s;

GeminiProvider providerAt(const QString &baseUrl)
{
    providers::Service service = providers::services().gemini;
    service.baseUrl = baseUrl;
    return {std::make_shared<providers::HttpExchange>(), service};
}

} // namespace

class GeminiProviderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTheServicesIdentity()
    {
        const GeminiProvider provider = providerAt(u"http://127.0.0.1:1"_s);
        QCOMPARE(provider.name(), u"Gemini"_s);
        QCOMPARE(provider.id(), u"gemini"_s);
        QCOMPARE(provider.models(), providers::services().gemini.models);
    }

    void sendsOneRequest_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QByteArray>("path");
        QTest::newRow("default model")
            << u"gemini-2.5-flash-image"_s
            << "/v1beta/models/gemini-2.5-flash-image:generateContent"_ba;
        QTest::newRow("other model")
            << u"gemini-3-pro-image-preview"_s
            << "/v1beta/models/gemini-3-pro-image-preview:generateContent"_ba;
        QTest::newRow("unknown model")
            << u"x.y_z~1"_s << "/v1beta/models/x.y_z~1:generateContent"_ba;
        QTest::newRow("no model") << u""_s << "/v1beta/models/:generateContent"_ba;
        QTest::newRow("the model is not encoded")
            << u"a/b%2Fc?d=e"_s << "/v1beta/models/a/b%2Fc?d=e:generateContent"_ba;
    }

    void sendsOneRequest()
    {
        QFETCH(QString, model);
        testlibs::HttpServer server;
        server.enqueue(candidates("[" + inlineData() + "]"));
        const GeminiProvider provider = providerAt(server.url());
        const auto result = QCoro::waitFor(provider.generate(u"a hill"_s, u"canary-key"_s, model));
        QCOMPARE(outcome(result), u"Man.png"_s);

        QCOMPARE(server.requests().size(), 1);
        const testlibs::ReceivedRequest &request = server.requests().first();
        QCOMPARE(request.method, "POST"_ba);
        QTEST(request.path, "path");
        QCOMPARE(request.header("x-goog-api-key"_ba), QList{"canary-key"_ba});
        QCOMPARE(request.header("Content-Type"_ba), QList{"application/json"_ba});
        QCOMPARE(request.header("Authorization"_ba), QList<QByteArray>());
        QCOMPARE(request.body, GeminiProvider::requestBody(u"a hill"_s));
    }

    void theBodyHoldsThePromptAndFixedValues()
    {
        const QByteArray expected
            = "{ "
              "'contents': [{'parts': [{'text': 'a hill'}]}], "
              "'generationConfig': { "
              "'responseModalities': ['IMAGE'], "
              "'imageConfig': {'imageSize': '4K', 'aspectRatio': '16:9'}}}"_json;
        QCOMPARE(QJsonDocument::fromJson(GeminiProvider::requestBody(u"a hill"_s)),
            QJsonDocument::fromJson(expected));
    }

    void anUnusableUrlSendsNothing_data()
    {
        QTest::addColumn<QString>("model");
        QTest::newRow("blank") << u"a b"_s;
        QTest::newRow("line break") << u"a\nb"_s;
        QTest::newRow("brace") << u"a{b}"_s;
        QTest::newRow("broken percent encoding") << u"a%zz"_s;
        QTest::newRow("backslash") << u"a\\b"_s;
    }

    void anUnusableUrlSendsNothing()
    {
        QFETCH(QString, model);
        testlibs::HttpServer server;
        const GeminiProvider provider = providerAt(server.url());
        const auto result = QCoro::waitFor(provider.generate(u"p"_s, u"canary-key"_s, model));
        QCOMPARE(outcome(result), u"Invalid response: Invalid URL"_s);
        QCOMPARE(server.connections(), 0);
    }

    void readsAnswers_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("expected");

        QTest::newRow("an image alone") << candidates("[" + inlineData() + "]") << u"Man.png"_s;
        QTest::newRow("a text part before the image")
            << candidates("[{'text':'Here is your picture.'},"_json + inlineData() + "]")
            << u"Man.png"_s;
        QTest::newRow("a text part behind the image")
            << candidates("[" + inlineData() + ",{'text':'There.'}]"_json) << u"Man.png"_s;
        QTest::newRow("image/jpeg is jpg")
            << candidates("[" + inlineData("image/jpeg"_ba) + "]") << u"Man.jpg"_s;
        QTest::newRow("png in capitals is jpg")
            << candidates("[" + inlineData("image/PNG"_ba) + "]") << u"Man.jpg"_s;
        QTest::newRow("only the first of two images counts") << candidates(
            "[" + inlineData() + ",{'inlineData':{'mimeType':'image/jpeg','data':'AAAA'}}]"_json)
                                                             << u"Man.png"_s;
        QTest::newRow("the image may be empty")
            << candidates("[{'inlineData':{'mimeType':'image/png','data':''}}]"_json) << u".png"_s;
        QTest::newRow("the first of two candidates") << "{'candidates':[{'content':{'parts':["_json
                + inlineData() + "]}},{}]}" << u"Man.png"_s;

        QTest::newRow("inlineData null is chosen, a later image is not tried")
            << candidates("[{'inlineData':null},"_json + inlineData() + "]") << noImage;
        QTest::newRow("inlineData without data is chosen")
            << candidates("[{'inlineData':{'mimeType':'image/png'}},"_json + inlineData() + "]")
            << noImage;
        QTest::newRow("inlineData without mimeType")
            << candidates("[{'inlineData':{'data':'TWFu'}}]"_json) << noImage;
        QTest::newRow("inlineData is text")
            << candidates("[{'inlineData':'TWFu'}]"_json) << noImage;
        QTest::newRow("inlineData is an array")
            << candidates("[{'inlineData':[{'mimeType':'image/png','data':'TWFu'}]}]"_json)
            << noImage;
        QTest::newRow("data null")
            << candidates("[{'inlineData':{'mimeType':'image/png','data':null}}]"_json) << noImage;
        QTest::newRow("data is a number")
            << candidates("[{'inlineData':{'mimeType':'image/png','data':1}}]"_json) << noImage;
        QTest::newRow("mimeType is a number")
            << candidates("[{'inlineData':{'mimeType':1,'data':'TWFu'}}]"_json) << noImage;
        QTest::newRow("undecodable base64")
            << candidates("[{'inlineData':{'mimeType':'image/png','data':'TWF'}}]"_json) << noImage;
        QTest::newRow("base64 with a line break")
            << candidates("[{'inlineData':{'mimeType':'image/png','data':'TWFu\\n'}}]"_json)
            << noImage;
        QTest::newRow("data URL") << candidates(
            "[{'inlineData':{'mimeType':'image/png','data':'data:image/png;base64,TWFu'}}]"_json)
                                  << noImage;
        QTest::newRow("text only") << candidates("[{'text':'I can not.'}]"_json) << noImage;
        QTest::newRow("parts is empty") << candidates("[]"_ba) << noImage;
        QTest::newRow("parts is an object") << candidates(inlineData()) << noImage;
        QTest::newRow("parts holds a number before the image")
            << candidates("[1," + inlineData() + "]") << noImage;
        QTest::newRow("parts holds null behind the image")
            << candidates("[" + inlineData() + ",null]") << noImage;
        QTest::newRow("content without parts")
            << "{'candidates':[{'content':{'role':'model'},'finishReason':'STOP'}]}"_json
            << noImage;
        QTest::newRow("content is an array")
            << "{'candidates':[{'content':[{'parts':["_json + inlineData() + "]}]}]}" << noImage;
        for (const auto &reason : {"NO_IMAGE"_ba, "IMAGE_SAFETY"_ba, "IMAGE_PROHIBITED_CONTENT"_ba,
                 "IMAGE_RECITATION"_ba, "IMAGE_OTHER"_ba, "SAFETY"_ba}) {
            QTest::addRow("blocked: %s", reason.constData())
                << "{'candidates':[{'finishReason':'"_json + reason
                    + "','finishMessage':'Unable to show.','index':0}]}"_json
                << noImage;
        }
        QTest::newRow("blocked prompt, no candidates")
            << "{'promptFeedback':{'blockReason':'PROHIBITED_CONTENT'},'usageMetadata':{}}"_json
            << noImage;
        QTest::newRow("candidates is empty") << "{'candidates':[]}"_json << noImage;
        QTest::newRow("candidates is an object") << "{'candidates':{'content':1}}"_json << noImage;
        QTest::newRow("candidates is null") << "{'candidates':null}"_json << noImage;
        QTest::newRow("candidates holds a text behind the image")
            << "{'candidates':[{'content':{'parts':["_json + inlineData() + "]}},'x']}"_json
            << noImage;
        QTest::newRow("a second candidate is never used")
            << "{'candidates':[{'finishReason':'SAFETY'},{'content':{'parts':["_json + inlineData()
                + "]}}]}"
            << noImage;
        QTest::newRow("an image in the form of another service")
            << data("[" + image() + "]") << noImage;
        QTest::newRow("an empty object") << "{}"_ba << noImage;

        QTest::newRow("error with a message")
            << "{'error':{'code':400,'message':'API key not valid. Please pass a valid API key.',"
               "'status':'INVALID_ARGUMENT','details':[{'reason':'API_KEY_INVALID'}]}}"_json
            << u"API error: API key not valid. Please pass a valid API key."_s;
        QTest::newRow("error with line breaks in its message")
            << "{'error':{'code':429,'message':'Quota. \\n* limit: 0\\nPlease retry.','status':'X'}}"_json
            << u"API error: Quota. \n* limit: 0\nPlease retry."_s;
        QTest::newRow("error and image")
            << "{'error':{'message':'m'},'candidates':[{'content':{'parts':["_json + inlineData()
                + "]}}]}"
            << u"API error: m"_s;
        QTest::newRow("error as a text") << "{'error':'m'}"_json << noImage;
        QTest::newRow("error without a message") << "{'error':{'code':500}}"_json << noImage;

        QTest::newRow("array") << "[" + candidates("[" + inlineData() + "]") + "]" << unreadable;
        QTest::newRow("HTML") << "<html><head><title>502 Bad Gateway</title></head></html>"_ba
                              << unreadable;
        QTest::newRow("empty body") << ""_ba << unreadable;
    }

    void readsAnswers()
    {
        QFETCH(QByteArray, body);
        QTEST(outcome(GeminiProvider::readAnswer(body)), "expected");
    }
};

QTEST_GUILESS_MAIN(GeminiProviderTest)
#include "geminiprovidertest.moc"
