#include "providers/upscaler.h"
#include "cannedanswers.h"
#include "providers/httpexchange.h"
#include "testlibs/httpserver.h"

#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace canned;
using providers::Upscaler;

namespace {

const QString noImage = u"Invalid response: No image in upscale response"_s;
const QString unreadable = u"Invalid response: Failed to parse upscale response"_s;

Upscaler upscalerAt(const QString &baseUrl)
{
    return {std::make_shared<providers::HttpExchange>(), baseUrl};
}

} // namespace

class UpscalerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sendsOneRequest()
    {
        testlibs::HttpServer server;
        server.enqueue(candidates("[" + inlineData() + "]"));
        const Upscaler upscaler = upscalerAt(server.url());
        const auto result = QCoro::waitFor(upscaler.upscale("Man"_ba, u"jpg"_s, u"canary-key"_s));
        QCOMPARE(outcome(result), u"Man.png"_s);

        QCOMPARE(server.requests().size(), 1);
        const testlibs::ReceivedRequest &request = server.requests().first();
        QCOMPARE(request.method, "POST"_ba);
        QCOMPARE(request.path, "/v1beta/models/gemini-3-pro-image-preview:generateContent"_ba);
        QCOMPARE(request.header("x-goog-api-key"_ba), QList{"canary-key"_ba});
        QCOMPARE(request.header("Content-Type"_ba), QList{"application/json"_ba});
        QCOMPARE(request.header("Authorization"_ba), QList<QByteArray>());
        QCOMPARE(request.body, Upscaler::requestBody("Man"_ba, u"jpg"_s));
    }

    void theBodyHoldsTheImageAndFixedValues_data()
    {
        QTest::addColumn<QString>("ext");
        QTest::addColumn<QByteArray>("mimeType");
        QTest::newRow("png") << u"png"_s << "image/png"_ba;
        QTest::newRow("jpg") << u"jpg"_s << "image/jpeg"_ba;
        QTest::newRow("png in capitals is sent as JPEG") << u"PNG"_s << "image/jpeg"_ba;
        QTest::newRow("png with a full stop") << u".png"_s << "image/jpeg"_ba;
        QTest::newRow("any other") << u"webp"_s << "image/jpeg"_ba;
        QTest::newRow("empty") << u""_s << "image/jpeg"_ba;
    }

    void theBodyHoldsTheImageAndFixedValues()
    {
        QFETCH(QString, ext);
        QFETCH(QByteArray, mimeType);
        const QByteArray expected = "{ "
                                    "'contents': [{'parts': [ "
                                    "{'text': 'Upscale this image to 4K resolution while "
                                    "preserving all details. Do not change the content.'}, "
                                    "{'inlineData': {'mimeType': '"_json
            + mimeType
            + "', 'data': 'TWFu'}}]}], "
              "'generationConfig': { "
              "'responseModalities': ['IMAGE'], 'imageConfig': {'imageSize': '4K'}}}"_json;
        const QJsonDocument body = QJsonDocument::fromJson(Upscaler::requestBody("Man"_ba, ext));
        QVERIFY(body.isObject());
        QCOMPARE(body, QJsonDocument::fromJson(expected));
    }

    void theImageTravelsUnchanged_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("no bytes") << ""_ba;
        QTest::newRow("one byte") << "\0"_ba;
        QTest::newRow("two bytes") << "\xff\x00"_ba;
        QTest::newRow("not what the extension says") << "\x89PNG\r\n\x1a\n"_ba;
        QTest::newRow("five million bytes") << QByteArray(5000001, '\xa5');
    }

    void theImageTravelsUnchanged()
    {
        QFETCH(QByteArray, bytes);
        testlibs::HttpServer server;
        server.enqueue(candidates("[" + inlineData() + "]"));
        const Upscaler upscaler = upscalerAt(server.url());
        QCOMPARE(outcome(QCoro::waitFor(upscaler.upscale(bytes, u"png"_s, u"canary-key"_s))),
            u"Man.png"_s);
        const QJsonDocument body = QJsonDocument::fromJson(server.requests().first().body);
        const QByteArray text = body[u"contents"_s][0][u"parts"_s][1][u"inlineData"_s][u"data"_s]
                                    .toString()
                                    .toLatin1();
        QVERIFY(text == bytes.toBase64());
    }

    void anUnusableUrlSendsNothing()
    {
        const Upscaler upscaler = upscalerAt(u"http://not a host"_s);
        const auto result = QCoro::waitFor(upscaler.upscale("Man"_ba, u"png"_s, u"canary-key"_s));
        QCOMPARE(outcome(result), u"Invalid response: Invalid URL"_s);
    }

    void readsAnswers_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("expected");

        QTest::newRow("PNG") << candidates("[" + inlineData() + "]") << u"Man.png"_s;
        QTest::newRow("JPEG, whatever was sent")
            << candidates("[" + inlineData("image/jpeg"_ba) + "]") << u"Man.jpg"_s;
        QTest::newRow("png in capitals is jpg")
            << candidates("[" + inlineData("image/PNG"_ba) + "]") << u"Man.jpg"_s;
        QTest::newRow("a text part before the image")
            << candidates("[{'text':'Here it is.'},"_json + inlineData() + "]") << u"Man.png"_s;

        QTest::newRow("error with a message")
            << "{'error':{'code':503,'message':'The model is overloaded.','status':'UNAVAILABLE'}}"_json
            << u"API error: Upscale failed: The model is overloaded."_s;
        QTest::newRow("error with an empty message")
            << "{'error':{'message':''}}"_json << u"API error: Upscale failed: "_s;
        QTest::newRow("error and image")
            << "{'error':{'message':'m'},'candidates':[{'content':{'parts':["_json + inlineData()
                + "]}}]}"
            << u"API error: Upscale failed: m"_s;
        QTest::newRow("error as a text") << "{'error':'m'}"_json << noImage;

        QTest::newRow("no candidates")
            << "{'promptFeedback':{'blockReason':'PROHIBITED_CONTENT'}}"_json << noImage;
        QTest::newRow("candidates is empty") << "{'candidates':[]}"_json << noImage;
        QTest::newRow("candidate without content")
            << "{'candidates':[{'finishReason':'IMAGE_SAFETY'}]}"_json << noImage;
        QTest::newRow("content without parts")
            << "{'candidates':[{'content':{'role':'model'}}]}"_json << noImage;
        QTest::newRow("parts is empty") << candidates("[]"_ba) << noImage;
        QTest::newRow("text only") << candidates("[{'text':'I can not.'}]"_json) << noImage;
        QTest::newRow("inlineData null is chosen")
            << candidates("[{'inlineData':null},"_json + inlineData() + "]") << noImage;
        QTest::newRow("mimeType missing")
            << candidates("[{'inlineData':{'data':'TWFu'}}]"_json) << noImage;
        QTest::newRow("data missing")
            << candidates("[{'inlineData':{'mimeType':'image/png'}}]"_json) << noImage;
        QTest::newRow("data is a number")
            << candidates("[{'inlineData':{'mimeType':'image/png','data':7}}]"_json) << noImage;
        QTest::newRow("a second candidate is never used")
            << "{'candidates':[{},{'content':{'parts':["_json + inlineData() + "]}}]}" << noImage;
        QTest::newRow("undecodable base64")
            << candidates("[{'inlineData':{'mimeType':'image/png','data':'TW=u'}}]"_json)
            << noImage;

        QTest::newRow("array") << "[]"_ba << unreadable;
        QTest::newRow("HTML") << "<html>502</html>"_ba << unreadable;
        QTest::newRow("empty body") << ""_ba << unreadable;
    }

    void readsAnswers()
    {
        QFETCH(QByteArray, body);
        QTEST(outcome(Upscaler::readAnswer(body)), "expected");
    }
};

QTEST_GUILESS_MAIN(UpscalerTest)
#include "upscalertest.moc"
