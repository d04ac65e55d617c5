#include "providers/openaiprovider.h"
#include "cannedanswers.h"
#include "providers/httpexchange.h"
#include "testlibs/httpserver.h"

#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace canned;
using providers::OpenAIProvider;

namespace {

const QString noImage = u"Invalid response: No image in response"_s;
const QString unreadable = u"Invalid response: Failed to parse response"_s;

OpenAIProvider providerAt(const QString &baseUrl)
{
    providers::Service service = providers::services().openai;
    service.baseUrl = baseUrl;
    return {std::make_shared<providers::HttpExchange>(), service};
}

} // namespace

class OpenAIProviderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTheServicesIdentity()
    {
        const OpenAIProvider provider = providerAt(u"http://127.0.0.1:1"_s);
        QCOMPARE(provider.name(), u"OpenAI"_s);
        QCOMPARE(provider.id(), u"openai"_s);
        QCOMPARE(provider.models(), providers::services().openai.models);
    }

    void sendsOneRequest()
    {
        testlibs::HttpServer server;
        server.enqueue(data("[" + image() + "]"));
        const OpenAIProvider provider = providerAt(server.url());
        const auto result
            = QCoro::waitFor(provider.generate(u"a hill"_s, u"canary-key"_s, u"gpt-image-1"_s));
        QCOMPARE(outcome(result), u"Man.png"_s);

        QCOMPARE(server.requests().size(), 1);
        const testlibs::ReceivedRequest &request = server.requests().first();
        QCOMPARE(request.method, "POST"_ba);
        QCOMPARE(request.path, "/v1/images/generations"_ba);
        QCOMPARE(request.header("Authorization"_ba), QList{"Bearer canary-key"_ba});
        QCOMPARE(request.header("Content-Type"_ba), QList{"application/json"_ba});
        QCOMPARE(request.header("x-goog-api-key"_ba), QList<QByteArray>());
        QCOMPARE(request.body, OpenAIProvider::requestBody(u"a hill"_s, u"gpt-image-1"_s));
    }

    void theBodyHoldsSevenKeysWhicheverTheModel_data()
    {
        QTest::addColumn<QString>("model");
        for (const providers::ModelOption &model : providers::services().openai.models) {
            QTest::newRow(qPrintable(model.id)) << model.id;
        }
        QTest::newRow("another") << u"dream-9"_s;
    }

    void theBodyHoldsSevenKeysWhicheverTheModel()
    {
        QFETCH(QString, model);
        const QByteArray expected = "{'model': '"_json + model.toUtf8()
            + "', 'prompt': 'a hill', "
              "'size': '1536x1024', 'quality': 'high', 'output_format': 'png', "
              "'background': 'opaque', 'moderation': 'low'}"_json;
        QCOMPARE(QJsonDocument::fromJson(OpenAIProvider::requestBody(u"a hill"_s, model)),
            QJsonDocument::fromJson(expected));
    }

    void anUnusableUrlSendsNothing()
    {
        const OpenAIProvider provider = providerAt(u"http://not a host"_s);
        const auto result = QCoro::waitFor(provider.generate(u"p"_s, u"canary-key"_s, u"m"_s));
        QCOMPARE(outcome(result), u"Invalid response: Invalid URL"_s);
    }

    void readsAnswers_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("expected");

        QTest::newRow("an image alone") << data("[" + image() + "]") << u"Man.png"_s;
        QTest::newRow("with everything around it")
            << "{'created':1760000000,'background':'opaque','output_format':'jpeg','quality':'high'"
               ","
               "'size':'1536x1024','data':[{'b64_json':'TWFu'}],'usage':{'input_tokens':12,"
               "'input_tokens_details':{'text_tokens':12,'image_tokens':0}}}"_json
            << u"Man.png"_s;
        QTest::newRow("the image may be empty") << data("[" + image(""_ba) + "]") << u".png"_s;
        QTest::newRow("only the first of two elements counts")
            << data("[" + image() + ",{'b64_json':'AAAA'}]"_json) << u"Man.png"_s;

        QTest::newRow("no data URL prefix is stripped")
            << data("[" + image("data:image/png;base64,TWFu"_ba) + "]") << noImage;
        QTest::newRow("undecodable base64") << data("[" + image("TWF"_ba) + "]") << noImage;
        QTest::newRow("data is empty") << data("[]"_ba) << noImage;
        QTest::newRow("b64_json missing") << data("[{'url':'x'}]"_json) << noImage;
        QTest::newRow("b64_json missing, though a later element has one")
            << data("[{}," + image() + "]") << noImage;
        QTest::newRow("b64_json null") << data("[{'b64_json':null}]"_json) << noImage;
        QTest::newRow("b64_json is a number") << data("[{'b64_json':1}]"_json) << noImage;
        QTest::newRow("data is missing") << "{'created':1}"_json << noImage;
        QTest::newRow("data is an object") << data(image()) << noImage;
        QTest::newRow("data holds a number behind the image")
            << data("[" + image() + ",1]") << noImage;

        QTest::newRow("error: key")
            << "{'error':{'message':'Incorrect API key provided: sk-ab***yz.',"
               "'type':'invalid_request_error','param':null,'code':'invalid_api_key'}}"_json
            << u"API error: Incorrect API key provided: sk-ab***yz."_s;
        QTest::newRow("error: moderation")
            << "{'error':{'message':'Your request was rejected by the safety system.','param':null,"
               "'moderation_details':{'moderation_stage':'output','categories':['sexual']}}}"_json
            << u"API error: Your request was rejected by the safety system."_s;
        QTest::newRow("error: organisation")
            << "{'error':{'message':'Your organization must be verified to use the model `gpt-image-1`.','code':null}}"_json
            << u"API error: Your organization must be verified to use the model `gpt-image-1`."_s;
        QTest::newRow("error beside an image")
            << "{'error':{'message':'no'},'data':["_json + image() + "]}" << u"API error: no"_s;
        QTest::newRow("error as a text") << "{'error':'no'}"_json << noImage;
        QTest::newRow("error without a message") << "{'error':{'code':'x'}}"_json << noImage;

        QTest::newRow("array") << "[" + data("[" + image() + "]") + "]" << unreadable;
        QTest::newRow("HTML") << "<html><title>504 Gateway Time-out</title></html>"_ba
                              << unreadable;
        QTest::newRow("empty body") << ""_ba << unreadable;
    }

    void readsAnswers()
    {
        QFETCH(QByteArray, body);
        QTEST(outcome(OpenAIProvider::readAnswer(body)), "expected");
    }
};

QTEST_GUILESS_MAIN(OpenAIProviderTest)
#include "openaiprovidertest.moc"
