#include "cannedanswers.h"
#include "providers/geminiprovider.h"
#include "providers/grokprovider.h"
#include "testlibs/scarcememory.h"

#include <QTest>

using namespace Qt::StringLiterals;
using canned::operator""_json;
using testlibs::Endings;
using testlibs::Refusal;

/// Answers that are read while memory is refused, each request in turn. Reading may end by an
/// exception or say that there is no picture, but brings no picture that is wrong.
class ScarceAnswerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anAnswerIsReadRightOrNotAtAll_data();
    void anAnswerIsReadRightOrNotAtAll();
};

using ReadAnswer = providers::ImageResult (*)(QByteArray);

void ScarceAnswerTest::anAnswerIsReadRightOrNotAtAll_data()
{
    QTest::addColumn<ReadAnswer>("readAnswer");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<Refusal>("refusal");
    const QByteArray inCandidates = canned::candidates("[" + canned::inlineData() + "]");
    const QByteArray inData = canned::data("[" + canned::image() + "]");
    const QByteArray error = "{'error':{'message':'No \\u00e4pples.'}}"_json;
    for (const Refusal refusal : {Refusal::One, Refusal::AllFromThereOn}) {
        const char *which = refusal == Refusal::One ? "one request" : "all from one on";
        const auto row = [&](const char *name, ReadAnswer readAnswer, const QByteArray &answer) {
            QTest::addRow("%s, %s", name, which) << readAnswer << answer << refusal;
        };
        row("an image of Gemini's", providers::GeminiProvider::readAnswer, inCandidates);
        row("an error of Gemini's", providers::GeminiProvider::readAnswer, error);
        row("an image of Grok's", providers::GrokProvider::readAnswer, inData);
    }
}

void ScarceAnswerTest::anAnswerIsReadRightOrNotAtAll()
{
    QFETCH(const ReadAnswer, readAnswer);
    QFETCH(const QByteArray, answer);
    QFETCH(const Refusal, refusal);
    const providers::ImageResult expected
        = readAnswer(QByteArray(answer.constData(), answer.size()));
    const Endings endings = testlibs::refuseEachRequest(refusal, [&] {
        const providers::ImageResult result
            = readAnswer(QByteArray(answer.constData(), answer.size()));
        return result == expected || (!result && !result.error().errorDescription().isEmpty());
    });
    qInfo("%d requests refused: %d times answered, %d times bad_alloc, %d times aborted.",
        endings.count(), endings.right, endings.thrown, endings.aborted);
    QVERIFY(endings.count() > 3);
    QCOMPARE(endings.wrong, 0);
    QCOMPARE(endings.crashed, 0);
}

QTEST_GUILESS_MAIN(ScarceAnswerTest)
#include "scarceanswertest.moc"
