#include "anotherreader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace canned;

namespace {

QString randomText(QRandomGenerator &random)
{
    static const QString letters = u"aZ09 \"\\/\n\t\u0001\u007f\u00e4\u20ac\u05d0,:{}[]"_s;
    QString text;
    for (int length = random.bounded(12); length > 0; --length) {
        text += letters.at(random.bounded(letters.size()));
    }
    return random.bounded(4) == 0 ? text + u"\U0001F304"_s : text;
}

QJsonValue randomValue(QRandomGenerator &random, int levels)
{
    switch (random.bounded(levels > 0 ? 7 : 5)) {
    case 0:
        return QJsonValue::Null;
    case 1:
        return random.bounded(2) == 0;
    case 2:
        return random.bounded(2) == 0 ? double(random.bounded(1000)) : random.generateDouble();
    case 3:
        return randomText(random);
    case 4:
        return u"TWFu"_s;
    case 5: {
        QJsonArray array;
        for (int size = random.bounded(4); size > 0; --size) {
            array += randomValue(random, levels - 1);
        }
        return array;
    }
    default: {
        static const QStringList keys{
            u"error"_s, u"message"_s, u"data"_s, u"b64_json"_s, u"other"_s, u""_s};
        QJsonObject object;
        for (int size = random.bounded(4); size > 0; --size) {
            object[keys.at(random.bounded(keys.size()))] = randomValue(random, levels - 1);
        }
        return object;
    }
    }
}

QJsonObject randomAnswer(QRandomGenerator &random)
{
    QJsonObject answer;
    if (random.bounded(4) == 0) {
        answer[u"error"_s] = random.bounded(2) == 0
            ? QJsonObject{{u"message"_s, randomText(random)}, {u"x"_s, randomValue(random, 2)}}
            : randomValue(random, 2);
    }
    if (random.bounded(4) != 0) {
        QJsonArray data{QJsonObject{
            {u"b64_json"_s, random.bounded(8) == 0 ? randomValue(random, 1) : u"TWFu"_s}}};
        while (random.bounded(3) == 0) {
            data += randomValue(random, 2);
        }
        answer[u"data"_s] = data;
    }
    answer[randomText(random)] = randomValue(random, 4);
    return answer;
}

} // namespace

/// What an answer means: an image, an error or neither.
class AnswerReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theLastOfEqualKeysCounts_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("expected");
        QTest::newRow("an image after none")
            << R"({"data":[],"data":[{"b64_json":"TWFu"}]})"_ba << u"Man.jpg"_s;
        QTest::newRow("none after an image")
            << R"({"data":[{"b64_json":"TWFu"}],"data":[]})"_ba << noImage;
        QTest::newRow("no array after an image")
            << R"({"data":[{"b64_json":"TWFu"}],"data":1})"_ba << noImage;
        QTest::newRow("text after null")
            << R"({"data":[{"b64_json":null,"b64_json":"TWFu"}]})"_ba << u"Man.jpg"_s;
        QTest::newRow("null after text")
            << R"({"data":[{"b64_json":"TWFu","b64_json":null}]})"_ba << noImage;
        QTest::newRow("null after an error")
            << R"({"error":{"message":"m"},"error":null,"data":[{"b64_json":"TWFu"}]})"_ba
            << u"Man.jpg"_s;
        QTest::newRow("an error after null")
            << R"({"error":null,"error":{"message":"m"}})"_ba << u"API error: m"_s;
        QTest::newRow("two messages")
            << R"({"error":{"message":"first","message":"second"}})"_ba << u"API error: second"_s;
        QTest::newRow("a number after a message")
            << R"({"error":{"message":"m","message":1}})"_ba << noImage;
        QTest::newRow("the same key, once escaped")
            << R"({"error":{"message":"first","messag\u0065":"second"}})"_ba
            << u"API error: second"_s;
    }

    void theLastOfEqualKeysCounts()
    {
        QFETCH(QByteArray, body);
        QTEST(outcome(providers::readAnswer(body, inData)), "expected");
        QTEST(outcomeByQt(body), "expected");
    }

    void theLastOfEqualKeysCountsInCandidates_data()
    {
        QTest::addColumn<QByteArray>("candidate");
        QTest::addColumn<QString>("expected");
        const QByteArray image = R"({"data":"TWFu","mimeType":"image/png"})"_ba;
        const QByteArray content = R"({"parts":[{"inlineData":)" + image + "}]}";
        QTest::newRow("content after null")
            << R"({"content":null,"content":)" + content + "}" << u"Man.png"_s;
        QTest::newRow("null after content")
            << R"({"content":)" + content + R"(,"content":null})" << noImage;
        QTest::newRow("inlineData after null")
            << R"({"content":{"parts":[{"inlineData":null,"inlineData":)" + image + "}]}}"
            << u"Man.png"_s;
        QTest::newRow("null after inlineData") << R"({"content":{"parts":[{"inlineData":)" + image
                + R"(,"inlineData":null}]}})" << noImage;
        QTest::newRow("two types")
            << R"({"content":{"parts":[{"inlineData":{"mimeType":"image/png","data":"TWFu","mimeType":"image/jpeg"}}]}})"_ba
            << u"Man.jpg"_s;
        QTest::newRow("empty parts after parts")
            << R"({"content":{"parts":[{"inlineData":)" + image + R"(}],"parts":[]}})" << noImage;
    }

    void theLastOfEqualKeysCountsInCandidates()
    {
        QFETCH(QByteArray, candidate);
        const QByteArray body = R"({"candidates":[)" + candidate + "]}";
        QTEST(outcome(providers::readAnswer(body, inCandidates)), "expected");
    }

    void unescapesTexts_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("expected");
        QTest::newRow("slashes in the image")
            << R"({"data":[{"b64_json":"\/\/\/\/"}]})"_ba << u"\u00ff\u00ff\u00ff.jpg"_s;
        QTest::newRow("letters in the image")
            << R"({"data":[{"b64_json":"\u0054WFu"}]})"_ba << u"Man.jpg"_s;
        QTest::newRow("a line break in the image")
            << R"({"data":[{"b64_json":"TWFu\n"}]})"_ba << noImage;
        QTest::newRow("key of the image")
            << R"({"d\u0061ta":[{"b64\u005fjson":"TWFu"}]})"_ba << u"Man.jpg"_s;
        QTest::newRow("key that only looks like another")
            << R"({"data\u0000":[{"b64_json":"TWFu"}]})"_ba << noImage;
        QTest::newRow("message with line breaks, quotes and brackets")
            << "{\"error\":{\"message\":\"a\\nb \\\"c\\\" <d> \\u00e4 \\ud83c\\udf04\"}}"_ba
            << u"API error: a\nb \"c\" <d> \u00e4 \U0001F304"_s;
        QTest::newRow("message in UTF-8")
            << "{\"error\":{\"message\":\"\xc3\xa4 \xd7\x90 \xf0\x9f\x8c\x84\"}}"_ba
            << u"API error: \u00e4 \u05d0 \U0001F304"_s;
        QTest::newRow("empty message") << R"({"error":{"message":""}})"_ba << u"API error: "_s;
    }

    void unescapesTexts()
    {
        QFETCH(QByteArray, body);
        QTEST(outcome(providers::readAnswer(body, inData)), "expected");
        QTEST(outcomeByQt(body), "expected");
    }

    void aFlawBeatsAnErrorAndAnErrorBeatsAnImage_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("expected");
        const QByteArray image = R"("data":[{"b64_json":"TWFu"}])"_ba;
        QTest::newRow("error and image")
            << R"({"error":{"message":"m"},)" + image + "}" << u"API error: m"_s;
        QTest::newRow("image and error")
            << "{" + image + R"(,"error":{"message":"m"}})" << u"API error: m"_s;
        QTest::newRow("error, image and a flaw at the very end")
            << R"({"error":{"message":"m"},)" + image + "}," << unreadable;
        QTest::newRow("error and undecodable image")
            << R"({"data":[{"b64_json":"*"}],"error":{"message":"m"}})"_ba << u"API error: m"_s;
    }

    void aFlawBeatsAnErrorAndAnErrorBeatsAnImage()
    {
        QFETCH(QByteArray, body);
        QTEST(outcome(providers::readAnswer(body, inData)), "expected");
    }

    void ignoresErrorsOfAnotherShape_data()
    {
        QTest::addColumn<QByteArray>("error");
        for (const char *error : {"null", "true", "0", "\"text\"", "[]", "[{\"message\":\"m\"}]",
                 "{}", R"({"message":null})", R"({"message":1})", R"({"message":{"message":"m"}})",
                 R"({"message":["m"]})", R"({"Message":"m"})", R"({"code":400,"status":"X"})"}) {
            QTest::newRow(error) << QByteArray(error);
        }
    }

    void ignoresErrorsOfAnotherShape()
    {
        QFETCH(QByteArray, error);
        const QByteArray alone = R"({"error":)" + error + "}";
        QCOMPARE(outcome(providers::readAnswer(alone, inData)), noImage);
        QCOMPARE(outcome(providers::readAnswer(alone, inCandidates)), noImage);
        const QByteArray withImage = R"({"error":)" + error + R"(,"data":[{"b64_json":"TWFu"}]})";
        QCOMPARE(outcome(providers::readAnswer(withImage, inData)), u"Man.jpg"_s);
    }

    void theExtensionFollowsTheMimeType_data()
    {
        QTest::addColumn<QByteArray>("mimeType");
        QTest::addColumn<QString>("extension");
        QTest::newRow("PNG") << "image/png"_ba << u"png"_s;
        QTest::newRow("JPEG") << "image/jpeg"_ba << u"jpg"_s;
        QTest::newRow("png anywhere") << "x-png; charset=x"_ba << u"png"_s;
        QTest::newRow("png in capitals") << "image/PNG"_ba << u"jpg"_s;
        QTest::newRow("another type") << "image/webp"_ba << u"jpg"_s;
        QTest::newRow("empty") << ""_ba << u"jpg"_s;
    }

    void theExtensionFollowsTheMimeType()
    {
        QFETCH(QByteArray, mimeType);
        QTEST(providers::extensionForMimeType({mimeType.data(), size_t(mimeType.size())}),
            "extension");
    }

    void leavesTheCallersBodyAlone()
    {
        const QByteArray original = R"({"data":[{"b64_json":"TWFuTWFuTWFu"}]})"_ba;
        const QByteArray body(original.data(), original.size());
        const auto result = providers::readAnswer(body, inData);
        QCOMPARE(outcome(result), u"ManManMan.jpg"_s);
        QCOMPARE(body, original);
        static const char readOnly[] = R"({"data":[{"b64_json":"TWFu"}]})";
        const QByteArray raw = QByteArray::fromRawData(readOnly, sizeof readOnly - 1);
        QCOMPARE(outcome(providers::readAnswer(raw, inData)), u"Man.jpg"_s);
    }

    void decodesAnImageOfAnySize_data()
    {
        QTest::addColumn<bool>("escaped");
        QTest::newRow("plain") << false;
        QTest::newRow("slashes escaped") << true;
    }

    void decodesAnImageOfAnySize()
    {
        QFETCH(bool, escaped);
        QRandomGenerator random(5);
        for (const qsizetype size : {1, 2, 3, 1000, 100000, 3000000}) {
            QByteArray image(size, Qt::Uninitialized);
            std::generate(image.begin(), image.end(), [&] { return char(random.bounded(256)); });
            QByteArray text = image.toBase64();
            if (escaped) {
                text.replace("/", "\\/");
            }
            QByteArray body;
            body.reserve(text.size() + 200);
            body += "{\"created\":1,\"data\":[{\"b64_json\":\"" + text + "\"}],\"usage\":[1,{}]}";
            const auto result = providers::readAnswer(std::move(body), inData);
            QVERIFY(result.has_value());
            QVERIFY(result->bytes == image);
        }
    }

    void agreesWithAnotherReaderOnRandomAnswers()
    {
        QRandomGenerator random(20240602);
        QMap<QString, int> kinds;
        for (int i = 0; i < 20000; ++i) {
            const QByteArray body = QJsonDocument(randomAnswer(random))
                                        .toJson(random.bounded(2) == 0 ? QJsonDocument::Compact
                                                                       : QJsonDocument::Indented);
            const QString expected = outcomeByQt(body);
            if (outcome(providers::readAnswer(body, inData)) != expected) {
                QFAIL(("disagrees on " + body).constData());
            }
            ++kinds[expected.section(u':', 0, 0)];
        }
        QCOMPARE_GT(kinds[u"Man.jpg"_s], 1000);
        QCOMPARE_GT(kinds[u"API error"_s], 1000);
        QCOMPARE_GT(kinds[u"Invalid response"_s], 1000);
    }

    void acceptsNoBrokenAnswerThatAnotherReaderRefuses()
    {
        static const QByteArray letters = "{}[]\":,\\ 0e-.tnu\n\x01\x80\xff"_ba;
        QRandomGenerator random(20240603);
        int accepted = 0;
        for (int i = 0; i < 100000; ++i) {
            QByteArray body = QJsonDocument(randomAnswer(random)).toJson(QJsonDocument::Compact);
            for (int flaws = 1 + random.bounded(2); flaws > 0; --flaws) {
                const int position = random.bounded(int(body.size()));
                if (random.bounded(2) == 0) {
                    body[position] = letters.at(random.bounded(int(letters.size())));
                } else {
                    body.remove(position, 1 + random.bounded(3));
                }
                body += body.isEmpty() ? " " : "";
            }
            const QString ours = outcome(providers::readAnswer(body, inData));
            // The other reader takes some texts that are no JSON; never the other way round.
            if (ours != unreadable) {
                ++accepted;
                if (ours != outcomeByQt(body)) {
                    QFAIL(("disagrees on " + body).constData());
                }
            }
        }
        QCOMPARE_GT(accepted, 1000);
    }
};

QTEST_GUILESS_MAIN(AnswerReaderTest)
#include "answerreadertest.moc"
