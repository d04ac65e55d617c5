#include "runningservice.h"

#include <QJsonDocument>
#include <QTcpSocket>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString Gemini = u"/v1beta/models/gemini-2.5-flash-image:generateContent"_s;
const QString GeminiPro = u"/v1beta/models/gemini-3-pro-image-preview:generateContent"_s;
const QString Images = u"/v1/images/generations"_s;

const QByteArray GeminiBody
    = R"({"contents":[{"parts":[{"text":"a sea"}]}],"generationConfig":{"responseModalities":["IMAGE"],)"
      R"("imageConfig":{"imageSize":"4K","aspectRatio":"16:9"}}})";
const QByteArray GrokBody
    = R"({"model":"grok-imagine-image","prompt":"a sea","response_format":"b64_json","n":1,"aspect_ratio":"16:9"})";
const QByteArray OpenAIBody
    = R"({"model":"gpt-image-1","prompt":"a sea","size":"1536x1024","quality":"high","output_format":"png",)"
      R"("background":"opaque","moderation":"low"})";

const QNetworkReply::RawHeaderPair GeminiKey{"x-goog-api-key", "canary-key"};
const QNetworkReply::RawHeaderPair BearerKey{"Authorization", "Bearer canary-key"};

bool isPng(const QByteArray &bytes)
{
    return bytes.startsWith("\x89PNG");
}

bool isJpeg(const QByteArray &bytes)
{
    return bytes.startsWith("\xFF\xD8\xFF");
}

} // namespace

class WireFormatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void geminiDrawsFourKInPng();
    void theNewerGeminiModelAnswersInJpeg();
    void grokDrawsSixteenToNineInJpeg();
    void openAIDrawsTheSizeItIsAskedFor();
    void modelsDrawDifferently();
    void geminiSizes_data();
    void geminiSizes();
    void badRequestsGetTheServicesOwnError_data();
    void badRequestsGetTheServicesOwnError();
    void grokNamesAMissingFieldInPlainText();
    void aKeyIsNeeded_data();
    void aKeyIsNeeded();
    void whatIsNotServedIsNotFound_data();
    void whatIsNotServedIsNotFound();
    void whatIsNoHttpIsRefused();
    void aRefusedBodyDoesNotHideTheRefusal();
    void severalRequestsAreAnsweredAtOnce();
    void aConnectionServesSeveralRequests();

private:
    RunningService m_service;
};

void WireFormatTest::geminiDrawsFourKInPng()
{
    const Answer answer = m_service.ask("POST", Gemini, GeminiBody, {GeminiKey});
    QCOMPARE(answer.status, 200);
    const QJsonObject object = answer.object();
    QCOMPARE(object[u"modelVersion"], u"gemini-2.5-flash-image"_s);
    QCOMPARE(object[u"candidates"][0][u"content"][u"parts"][0][u"inlineData"][u"mimeType"],
        u"image/png"_s);
    QVERIFY(!object.contains(u"error"));
    const QByteArray image = geminiImage(object);
    QVERIFY(isPng(image));
    QCOMPARE(QImage::fromData(image).size(), QSize(3840, 2160));
}

void WireFormatTest::theNewerGeminiModelAnswersInJpeg()
{
    const Answer answer = m_service.ask("POST", GeminiPro, GeminiBody, {GeminiKey});
    const QJsonObject object = answer.object();
    QCOMPARE(object[u"candidates"][0][u"content"][u"parts"][0][u"inlineData"][u"mimeType"],
        u"image/jpeg"_s);
    QVERIFY(isJpeg(geminiImage(object)));
    QCOMPARE(QImage::fromData(geminiImage(object)).size(), QSize(3840, 2160));
}

void WireFormatTest::grokDrawsSixteenToNineInJpeg()
{
    const Answer answer = m_service.ask("POST", Images, GrokBody, {BearerKey});
    QCOMPARE(answer.status, 200);
    const QByteArray image = listedImage(answer.object());
    QVERIFY(isJpeg(image));
    QCOMPARE(QImage::fromData(image).size(), QSize(1920, 1080));
    QCOMPARE(answer.object()[u"data"][0][u"mime_type"], u"image/jpeg"_s);
}

void WireFormatTest::openAIDrawsTheSizeItIsAskedFor()
{
    const Answer answer = m_service.ask("POST", Images, OpenAIBody, {BearerKey});
    QCOMPARE(answer.status, 200);
    const QByteArray image = listedImage(answer.object());
    QVERIFY(isPng(image));
    QCOMPARE(QImage::fromData(image).size(), QSize(1536, 1024));
    QCOMPARE(answer.object()[u"size"], u"1536x1024"_s);
}

void WireFormatTest::modelsDrawDifferently()
{
    const auto drawn = [this](const QByteArray &model) {
        const QByteArray body = R"({"prompt":"a sea","size":"64x64","model":")" + model + R"("})";
        return listedImage(m_service.ask("POST", Images, body, {BearerKey}).object());
    };
    QCOMPARE(drawn("gpt-image-1"), drawn("gpt-image-1"));
    QVERIFY(drawn("gpt-image-1") != drawn("gpt-image-1.5"));
}

void WireFormatTest::geminiSizes_data()
{
    QTest::addColumn<QByteArray>("config");
    QTest::addColumn<QSize>("size");
    QTest::newRow("none") << QByteArray("{}") << QSize(1024, 1024);
    QTest::newRow("1K") << QByteArray(R"({"imageSize":"1K","aspectRatio":"16:9"})")
                        << QSize(1024, 576);
    QTest::newRow("2K") << QByteArray(R"({"imageSize":"2K","aspectRatio":"4:3"})")
                        << QSize(2048, 1536);
    QTest::newRow("upright") << QByteArray(R"({"aspectRatio":"9:16"})") << QSize(576, 1024);
}

void WireFormatTest::geminiSizes()
{
    QFETCH(QByteArray, config);
    QFETCH(QSize, size);
    const QByteArray body
        = R"({"contents":[{"parts":[{"text":"a sea"}]}],"generationConfig":{"imageConfig":)"
        + config + "}}";
    const Answer answer = m_service.ask("POST", Gemini, body, {GeminiKey});
    QCOMPARE(QImage::fromData(geminiImage(answer.object())).size(), size);
}

void WireFormatTest::badRequestsGetTheServicesOwnError_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("Gemini: no body") << Gemini << QByteArray();
    QTest::newRow("Gemini: no JSON") << Gemini << QByteArray("{");
    QTest::newRow("Gemini: an array") << Gemini << QByteArray("[]");
    QTest::newRow("Gemini: no contents") << Gemini << QByteArray(R"({"prompt":"a sea"})");
    QTest::newRow("Gemini: unknown size") << Gemini << QByteArray(GeminiBody).replace("4K", "8K");
    QTest::newRow("Gemini: unknown ratio")
        << Gemini << QByteArray(GeminiBody).replace("16:9", "wide");
    QTest::newRow("Gemini: endless ratio")
        << Gemini << QByteArray(GeminiBody).replace("16:9", "16:0");
    QTest::newRow("OpenAI: no body") << Images << QByteArray();
    QTest::newRow("OpenAI: no prompt") << Images << QByteArray(R"({"model":"gpt-image-1"})");
    QTest::newRow("OpenAI: odd size")
        << Images << QByteArray(OpenAIBody).replace("1536x1024", "big");
    QTest::newRow("OpenAI: too large") << Images << QByteArray(OpenAIBody).replace("1536", "99999");
    QTest::newRow("OpenAI: negative") << Images << QByteArray(OpenAIBody).replace("1536", "-1536");
}

void WireFormatTest::badRequestsGetTheServicesOwnError()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, body);
    const Answer answer = m_service.ask("POST", path, body, {GeminiKey, BearerKey});
    QCOMPARE(answer.status, 400);
    QVERIFY(!answer.object()[u"error"][u"message"].toString().isEmpty());
}

void WireFormatTest::grokNamesAMissingFieldInPlainText()
{
    const Answer answer
        = m_service.ask("POST", Images, R"({"model":"grok-imagine-image"})", {BearerKey});
    QCOMPARE(answer.status, 422);
    QVERIFY(QJsonDocument::fromJson(answer.body).isNull());
    QVERIFY(answer.body.contains("prompt"));
}

void WireFormatTest::aKeyIsNeeded_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QNetworkReply::RawHeaderPair>("header");
    QTest::addColumn<int>("status");
    using Header = QNetworkReply::RawHeaderPair;
    QTest::newRow("Gemini: none") << Gemini << GeminiBody << Header("X-None", "x") << 403;
    QTest::newRow("Gemini: empty") << Gemini << GeminiBody << Header("x-goog-api-key", "") << 403;
    QTest::newRow("Gemini: in the other header") << Gemini << GeminiBody << BearerKey << 403;
    QTest::newRow("Grok: none") << Images << GrokBody << Header("X-None", "x") << 401;
    QTest::newRow("OpenAI: none") << Images << OpenAIBody << Header("X-None", "x") << 401;
    QTest::newRow("OpenAI: not a bearer")
        << Images << OpenAIBody << Header("Authorization", "Basic a") << 401;
}

void WireFormatTest::aKeyIsNeeded()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, body);
    QFETCH(QNetworkReply::RawHeaderPair, header);
    QFETCH(int, status);
    const Answer answer = m_service.ask("POST", path, body, {header});
    QCOMPARE(answer.status, status);
    QVERIFY(answer.object().contains(u"error"));
}

void WireFormatTest::whatIsNotServedIsNotFound_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QString>("path");
    QTest::newRow("root") << QByteArray("GET") << u"/"_s;
    QTest::newRow("unknown path") << QByteArray("POST") << u"/v2/images"_s;
    QTest::newRow("known path, other method") << QByteArray("GET") << Images;
    QTest::newRow("Gemini with PUT") << QByteArray("PUT") << Gemini;
    QTest::newRow("Gemini, another verb")
        << QByteArray("POST") << u"/v1beta/models/gemini-2.5-flash-image:countTokens"_s;
    QTest::newRow("longer path") << QByteArray("POST") << Images + u"/x"_s;
}

void WireFormatTest::whatIsNotServedIsNotFound()
{
    QFETCH(QByteArray, method);
    QFETCH(QString, path);
    const Answer answer = m_service.ask(method, path, OpenAIBody, {GeminiKey, BearerKey});
    QCOMPARE(answer.status, 404);
    QCOMPARE(answer.object()[u"error"][u"code"], 404);
}

void WireFormatTest::whatIsNoHttpIsRefused()
{
    QTcpSocket socket;
    socket.connectToHost(u"127.0.0.1"_s, static_cast<quint16>(QUrl(m_service.url({})).port()));
    socket.write("hello\r\n\r\n");
    QTRY_VERIFY(socket.bytesAvailable() > 0);
    QVERIFY(socket.readAll().startsWith("HTTP/1.1 400 "));
}

void WireFormatTest::aRefusedBodyDoesNotHideTheRefusal()
{
    QTcpSocket socket;
    socket.connectToHost(u"127.0.0.1"_s, static_cast<quint16>(QUrl(m_service.url({})).port()));
    socket.write(
        "POST / HTTP/1.1\r\nContent-Length: 99999999999\r\n\r\n" + QByteArray(4'000'000, 'x'));
    QTRY_VERIFY(socket.bytesAvailable() > 0 && socket.bytesToWrite() == 0);
    QVERIFY(socket.readAll().startsWith("HTTP/1.1 413 "));
}

void WireFormatTest::severalRequestsAreAnsweredAtOnce()
{
    QNetworkReply *slow = m_service.sendToGemini("slow-600000");
    const Answer quick = m_service.askGemini("canary-key");
    QCOMPARE(quick.status, 200);
    QVERIFY(!slow->isFinished());
    slow->abort();
    delete slow;
}

void WireFormatTest::aConnectionServesSeveralRequests()
{
    QTcpSocket socket;
    socket.connectToHost(u"127.0.0.1"_s, static_cast<quint16>(QUrl(m_service.url({})).port()));
    QByteArray received;
    connect(&socket, &QTcpSocket::readyRead, this, [&] { received += socket.readAll(); });
    socket.write("GET /1 HTTP/1.1\r\n\r\nGET /2 HTTP/1.1\r\n\r\n");
    QTRY_VERIFY(received.contains("GET /1") && received.contains("GET /2"));
    socket.write("GET /3 HTTP/1.1\r\nConnection: close\r\n\r\n");
    QTRY_VERIFY(received.contains("GET /3"));
    QVERIFY(received.indexOf("GET /1") < received.indexOf("GET /2"));
    QTRY_COMPARE(socket.state(), QAbstractSocket::UnconnectedState);
}

QTEST_GUILESS_MAIN(WireFormatTest)
#include "wireformattest.moc"
