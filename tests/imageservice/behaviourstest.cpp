#include "runningservice.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using imageservice::behaviourFor;

namespace {

using AskFor = Answer (RunningService::*)(const QByteArray &);

bool isGood(const QByteArray &image)
{
    return !QImage::fromData(image).isNull();
}

QJsonValue firstPart(const QJsonObject &answer)
{
    return answer[u"candidates"][0][u"content"][u"parts"][0];
}

} // namespace

Q_DECLARE_METATYPE(AskFor)

/// What each key of the table brings over the wire.
class BehavioursTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anyOtherKeyBringsAPicture_data();
    void anyOtherKeyBringsAPicture();
    void theKeyChoosesTheFormat();
    void wordsMayComeBeforeThePicture();
    void aDataUrlHoldsThePicture();
    void thePictureIsMissingInManyWays_data();
    void thePictureIsMissingInManyWays();
    void nullMayStandBeforeAPicture();
    void onlyTheSecondCandidateMayHoldThePicture();
    void badBase64IsNoBase64();
    void goodBase64MayHoldNoPicture();
    void errorsHaveTheShapeOfTheirService_data();
    void errorsHaveTheShapeOfTheirService();
    void grokAnswers422InPlainText();
    void aRateLimitComesWithItsHeaders();
    void aBlockedPromptIsAnsweredAsEachServiceDoes();
    void anErrorMayComeWithStatus200();
    void aPictureMayComeWithStatus500();
    void anErrorMayComeBesideAPicture();
    void theAnswerMayBeAnArray();
    void theAnswerMayBeAPageOrNothing();
    void aBigAnswerHas35MegabytesAndAPicture_data();
    void aBigAnswerHas35MegabytesAndAPicture();
    void aSlowAnswerTakesItsTime();
    void slowAloneMeansThreeSeconds();
    void silenceLasts();
    void aCutConnectionHasAStatusAndNoWholeBody();
    void aResetConnectionHasNoStatus();
    void everyKeyOfTheHelpIsKnown();

private:
    RunningService m_service;
};

void BehavioursTest::anyOtherKeyBringsAPicture_data()
{
    QTest::addColumn<QByteArray>("key");
    for (const char *key : {"canary-key", "OK-PNG", "fail", "fail-418", "upscale-fail", "slow-"}) {
        QTest::newRow(key) << QByteArray(key);
    }
}

void BehavioursTest::anyOtherKeyBringsAPicture()
{
    QFETCH(QByteArray, key);
    QVERIFY(isGood(geminiImage(m_service.askGemini(key).object())));
    QVERIFY(isGood(listedImage(m_service.askGrok(key).object())));
    QVERIFY(isGood(listedImage(m_service.askOpenAI(key).object())));
}

void BehavioursTest::theKeyChoosesTheFormat()
{
    QVERIFY(geminiImage(m_service.askGemini("ok-jpeg").object()).startsWith("\xFF\xD8"));
    QVERIFY(geminiImage(m_service.askGemini("ok-png").object()).startsWith("\x89PNG"));
    QVERIFY(listedImage(m_service.askGrok("ok-png").object()).startsWith("\x89PNG"));
    QVERIFY(listedImage(m_service.askOpenAI("ok-jpeg").object()).startsWith("\xFF\xD8"));
}

void BehavioursTest::wordsMayComeBeforeThePicture()
{
    const QJsonObject answer = m_service.askGemini("text-then-image").object();
    QVERIFY(firstPart(answer)[u"text"].isString());
    QVERIFY(firstPart(answer)[u"inlineData"].isUndefined());
    QVERIFY(isGood(geminiImage(answer)));
    const QJsonObject grok = m_service.askGrok("text-then-image").object();
    QCOMPARE(grok[u"data"][0][u"revised_prompt"], u"a sea"_s);
    QVERIFY(isGood(listedImage(grok)));
}

void BehavioursTest::aDataUrlHoldsThePicture()
{
    const QString text = m_service.askGrok("data-url").object()[u"data"][0][u"b64_json"].toString();
    QVERIFY(text.startsWith(u"data:image/jpeg;base64,/9j/"));
    QVERIFY(isGood(QByteArray::fromBase64(text.section(u',', 1).toLatin1())));
}

void BehavioursTest::thePictureIsMissingInManyWays_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("gemini");
    QTest::addColumn<QByteArray>("grok");
    QTest::newRow("empty") << QByteArray("empty-data") << QByteArray(R"("data":"")")
                           << QByteArray(R"("data":[])");
    QTest::newRow("null") << QByteArray("null-b64") << QByteArray(R"("data":null)")
                          << QByteArray(R"("b64_json":null)");
    QTest::newRow("no candidates")
        << QByteArray("no-candidates") << QByteArray("promptFeedback") << QByteArray("usage");
    QTest::newRow("no content") << QByteArray("no-content") << QByteArray("NO_IMAGE")
                                << QByteArray(R"("data":[{}])");
    QTest::newRow("text") << QByteArray("text-only") << QByteArray(R"("text":)")
                          << QByteArray("revised_prompt");
}

void BehavioursTest::thePictureIsMissingInManyWays()
{
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, gemini);
    QFETCH(QByteArray, grok);
    const Answer fromGemini = m_service.askGemini(key);
    QCOMPARE(fromGemini.status, 200);
    QVERIFY2(fromGemini.body.contains(gemini), fromGemini.body);
    QVERIFY(geminiImage(fromGemini.object()).isEmpty());
    for (const Answer &answer : {m_service.askGrok(key), m_service.askOpenAI(key)}) {
        QCOMPARE(answer.status, 200);
        QVERIFY2(answer.body.contains(grok), answer.body);
        QVERIFY(listedImage(answer.object()).isEmpty());
    }
}

void BehavioursTest::nullMayStandBeforeAPicture()
{
    const QJsonObject answer = m_service.askGemini("inline-null").object();
    QVERIFY(firstPart(answer)[u"inlineData"].isNull());
    QVERIFY(isGood(geminiImage(answer)));
    const QJsonObject grok = m_service.askGrok("inline-null").object();
    QVERIFY(grok[u"data"][0][u"b64_json"].isNull());
    QVERIFY(grok[u"data"][1][u"b64_json"].isString());
}

void BehavioursTest::onlyTheSecondCandidateMayHoldThePicture()
{
    const QJsonObject answer = m_service.askGemini("second-candidate").object();
    QVERIFY(geminiImage(answer).isNull());
    QVERIFY(answer[u"candidates"][1][u"content"][u"parts"][0][u"inlineData"][u"data"].isString());
    const QJsonObject openai = m_service.askOpenAI("second-candidate").object();
    QVERIFY(openai[u"data"][0][u"b64_json"].isUndefined());
    QVERIFY(openai[u"data"][1][u"b64_json"].isString());
}

void BehavioursTest::badBase64IsNoBase64()
{
    const QJsonObject answer = m_service.askGrok("bad-base64").object();
    const QByteArray text = answer[u"data"][0][u"b64_json"].toString().toLatin1();
    QVERIFY(text.size() > 100);
    QVERIFY(!QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors));
}

void BehavioursTest::goodBase64MayHoldNoPicture()
{
    const QByteArray bytes = geminiImage(m_service.askGemini("not-an-image").object());
    QVERIFY(!bytes.isEmpty());
    QVERIFY(!isGood(bytes));
}

void BehavioursTest::errorsHaveTheShapeOfTheirService_data()
{
    QTest::addColumn<int>("status");
    for (const int status : {400, 401, 403, 404, 429, 500, 503, 504}) {
        QTest::addRow("fail-%d", status) << status;
    }
}

void BehavioursTest::errorsHaveTheShapeOfTheirService()
{
    QFETCH(int, status);
    const QByteArray key = "fail-" + QByteArray::number(status);
    const Answer gemini = m_service.askGemini(key);
    QCOMPARE(gemini.status, status);
    QCOMPARE(gemini.object()[u"error"][u"code"], status);
    QVERIFY(!gemini.object()[u"error"][u"message"].toString().isEmpty());
    QVERIFY(!gemini.object()[u"error"][u"status"].toString().isEmpty());
    const Answer grok = m_service.askGrok(key);
    QCOMPARE(grok.status, status);
    QVERIFY(!grok.object()[u"error"].toString().isEmpty());
    QVERIFY(grok.object()[u"code"].isString());
    const Answer openai = m_service.askOpenAI(key);
    QCOMPARE(openai.status, status);
    QVERIFY(!openai.object()[u"error"][u"message"].toString().isEmpty());
    QVERIFY(!openai.object()[u"error"][u"type"].toString().isEmpty());
}

void BehavioursTest::grokAnswers422InPlainText()
{
    const Answer answer = m_service.askGrok("fail-422");
    QCOMPARE(answer.status, 422);
    QVERIFY(QJsonDocument::fromJson(answer.body).isNull());
    QCOMPARE(m_service.askOpenAI("fail-422").status, 422);
}

void BehavioursTest::aRateLimitComesWithItsHeaders()
{
    const Answer answer = m_service.askOpenAI("fail-429");
    QVERIFY(answer.headers.contains(QNetworkReply::RawHeaderPair("Retry-After", "12")));
    QVERIFY(
        m_service.askGemini("fail-429").object()[u"error"][u"message"].toString().contains(u'\n'));
}

void BehavioursTest::aBlockedPromptIsAnsweredAsEachServiceDoes()
{
    const Answer gemini = m_service.askGemini("blocked");
    QCOMPARE(gemini.status, 200);
    QCOMPARE(gemini.object()[u"promptFeedback"][u"blockReason"], u"PROHIBITED_CONTENT"_s);
    const Answer grok = m_service.askGrok("blocked");
    QCOMPARE(grok.status, 200);
    QVERIFY(grok.object()[u"data"].toArray().isEmpty());
    const Answer openai = m_service.askOpenAI("blocked");
    QCOMPARE(openai.status, 400);
    QCOMPARE(openai.object()[u"error"][u"code"], u"moderation_blocked"_s);
}

void BehavioursTest::anErrorMayComeWithStatus200()
{
    const Answer answer = m_service.askOpenAI("200-with-error");
    QCOMPARE(answer.status, 200);
    QVERIFY(answer.object()[u"error"][u"message"].isString());
}

void BehavioursTest::aPictureMayComeWithStatus500()
{
    const Answer answer = m_service.askGemini("500-with-image");
    QCOMPARE(answer.status, 500);
    QVERIFY(isGood(geminiImage(answer.object())));
}

void BehavioursTest::anErrorMayComeBesideAPicture()
{
    const QJsonObject object = m_service.askGrok("error-and-image").object();
    QVERIFY(object[u"error"][u"message"].isString());
    QVERIFY(isGood(listedImage(object)));
    const QJsonObject text = m_service.askGemini("error-string").object();
    QVERIFY(text[u"error"].isString());
    QVERIFY(isGood(geminiImage(text)));
}

void BehavioursTest::theAnswerMayBeAnArray()
{
    const QJsonDocument document = QJsonDocument::fromJson(m_service.askGemini("json-array").body);
    QVERIFY(document.isArray());
    QVERIFY(isGood(geminiImage(document[0].toObject())));
}

void BehavioursTest::theAnswerMayBeAPageOrNothing()
{
    const Answer page = m_service.askGemini("html");
    QCOMPARE(page.status, 502);
    QVERIFY(page.body.startsWith("<html>"));
    const Answer nothing = m_service.askGrok("empty");
    QCOMPARE(nothing.status, 200);
    QCOMPARE(nothing.body, "");
}

void BehavioursTest::aBigAnswerHas35MegabytesAndAPicture_data()
{
    QTest::addColumn<AskFor>("ask");
    QTest::newRow("Gemini") << &RunningService::askGemini;
    QTest::newRow("Grok") << &RunningService::askGrok;
    QTest::newRow("OpenAI") << &RunningService::askOpenAI;
}

void BehavioursTest::aBigAnswerHas35MegabytesAndAPicture()
{
    QFETCH(AskFor, ask);
    const Answer answer = (m_service.*ask)("big");
    QVERIFY(answer.body.size() >= 36'700'160);
    QVERIFY(answer.body.size() < 37'000'000);
    const QJsonObject object = answer.object();
    QVERIFY(isGood(geminiImage(object)) || isGood(listedImage(object)));
}

void BehavioursTest::aSlowAnswerTakesItsTime()
{
    QElapsedTimer timer;
    timer.start();
    const Answer answer = m_service.askGemini("slow-700");
    QVERIFY(timer.elapsed() >= 700);
    QVERIFY(isGood(geminiImage(answer.object())));
}

void BehavioursTest::slowAloneMeansThreeSeconds()
{
    QCOMPARE(behaviourFor("slow", false).delay, std::chrono::seconds(3));
    QCOMPARE(behaviourFor("slow-250", false).delay, std::chrono::milliseconds(250));
    QCOMPARE(behaviourFor("slow-never", false).delay, std::chrono::milliseconds(0));
}

void BehavioursTest::silenceLasts()
{
    const std::unique_ptr<QNetworkReply> silent(m_service.sendToGemini("silent"));
    QSignalSpy finished(silent.get(), &QNetworkReply::finished);
    QVERIFY(!finished.wait(300));
    // The service still works for others meanwhile.
    QCOMPARE(m_service.askGrok("html").status, 502);
    QVERIFY(!silent->isFinished());
}

void BehavioursTest::aCutConnectionHasAStatusAndNoWholeBody()
{
    const Answer answer = m_service.askGemini("cut");
    QCOMPARE(answer.status, 200);
    QCOMPARE(answer.error, QNetworkReply::RemoteHostClosedError);
    QVERIFY(answer.object().isEmpty());
}

void BehavioursTest::aResetConnectionHasNoStatus()
{
    const Answer answer = m_service.askGemini("reset");
    QCOMPARE(answer.status, 0);
    QVERIFY(answer.error != QNetworkReply::NoError);
    QVERIFY(answer.body.isEmpty());
}

void BehavioursTest::everyKeyOfTheHelpIsKnown()
{
    const auto lines = imageservice::behavioursHelp().split(u'\n', Qt::SkipEmptyParts);
    QVERIFY(lines.size() > 30);
    for (const QString &line : lines) {
        const QString key = line.simplified().section(u' ', 0, 0);
        QCOMPARE(QString(behaviourFor(key.toLatin1(), true).key), key);
    }
}

QTEST_GUILESS_MAIN(BehavioursTest)
#include "behaviourstest.moc"
