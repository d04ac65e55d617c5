#include "providers/strictbase64.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

using Bytes = std::optional<QByteArray>;

Bytes decoded(const QByteArray &text)
{
    QByteArray bytes(text.size(), '\0');
    const auto size
        = providers::decodeStrictBase64(std::string_view(text.data(), text.size()), bytes.data());
    return size ? Bytes(bytes.left(*size)) : std::nullopt;
}

/// A second opinion from another decoder, which is strict but for missing padding.
Bytes decodedByQt(const QByteArray &text)
{
    const auto result = QByteArray::fromBase64Encoding(
        text, QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
    return result && text.size() % 4 == 0 ? Bytes(*result) : std::nullopt;
}

QByteArray randomBytes(QRandomGenerator &random, qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    std::generate(bytes.begin(), bytes.end(), [&] { return char(random.bounded(256)); });
    return bytes;
}

/// A byte that is likely to matter, or any other.
char randomLetter(QRandomGenerator &random)
{
    static const QByteArray likely = "=====AZaz09+/-_ \t\r\n\0,.\x7f\x80\xff"_ba;
    return random.bounded(4) == 0 ? char(random.bounded(256))
                                  : likely.at(random.bounded(int(likely.size())));
}

void mutate(QByteArray &text, QRandomGenerator &random)
{
    const int position = random.bounded(int(text.size()) + 1);
    switch (random.bounded(4)) {
    case 0:
        text.insert(position, randomLetter(random));
        break;
    case 1:
        text.remove(position, 1 + random.bounded(4));
        break;
    case 2:
        text.append(randomLetter(random));
        break;
    default:
        if (position < text.size()) {
            text[position] = randomLetter(random);
        }
    }
}

} // namespace

class StrictBase64Test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodes_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty text is no bytes") << ""_ba
                                                << ""_ba;
        QTest::newRow("no padding") << "TWFu"_ba
                                    << "Man"_ba;
        QTest::newRow("one padding letter") << "TWE="_ba
                                            << "Ma"_ba;
        QTest::newRow("two padding letters") << "TQ=="_ba
                                             << "M"_ba;
        QTest::newRow("several blocks") << "TWFuTWFuTQ=="_ba
                                        << "ManManM"_ba;
        QTest::newRow("trailing bits after two letters") << "TR=="_ba
                                                         << "M"_ba;
        QTest::newRow("trailing bits after three letters") << "TWF="_ba
                                                           << "Ma"_ba;
        QTest::newRow("plus and slash") << "+/+/"_ba
                                        << "\xfb\xff\xbf"_ba;
        QTest::newRow("zero bytes") << "AAAA"_ba
                                    << "\0\0\0"_ba;
    }

    void decodes()
    {
        QFETCH(QByteArray, text);
        QTEST(decoded(text).value_or("refused"_ba), "bytes");
    }

    void refuses_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("missing padding") << "TWE"_ba;
        QTest::newRow("missing padding, both letters") << "TQ"_ba;
        QTest::newRow("half of the padding") << "TQ="_ba;
        QTest::newRow("one letter") << "T"_ba;
        QTest::newRow("a dangling letter") << "TWFuT"_ba;
        QTest::newRow("padding alone") << "="_ba;
        QTest::newRow("a block of padding") << "===="_ba;
        QTest::newRow("three padding letters") << "T==="_ba;
        QTest::newRow("a block of padding at the end") << "TWFu===="_ba;
        QTest::newRow("surplus padding") << "TWE=="_ba;
        QTest::newRow("padding in front") << "=WFu"_ba;
        QTest::newRow("padding inside") << "T=Fu"_ba;
        QTest::newRow("a letter after padding") << "TW=u"_ba;
        QTest::newRow("padding in the middle") << "TWE=TWFu"_ba;
        QTest::newRow("two texts in one") << "TQ==TQ=="_ba;
        QTest::newRow("minus of the URL alphabet") << "TW-u"_ba;
        QTest::newRow("underscore of the URL alphabet") << "TW_u"_ba;
        QTest::newRow("minus in front") << "-TWF"_ba;
        QTest::newRow("minus at the end") << "TWF-"_ba;
        QTest::newRow("only minus") << "----"_ba;
        QTest::newRow("blank in front") << " TWF"_ba;
        QTest::newRow("blank at the end") << "TWF "_ba;
        QTest::newRow("blank inside") << "T Fu"_ba;
        QTest::newRow("four blanks in front") << "    TWFu"_ba;
        QTest::newRow("four blanks at the end") << "TWFu    "_ba;
        QTest::newRow("only blanks") << "    "_ba;
        QTest::newRow("line break at the end") << "TWFu\n"_ba;
        QTest::newRow("four line breaks at the end") << "TWFu\r\n\r\n"_ba;
        QTest::newRow("line break inside") << "TWFu\nTWF"_ba;
        QTest::newRow("tabulator") << "TWF\t"_ba;
        QTest::newRow("NUL") << "TWF\0"_ba;
        QTest::newRow("comma") << "TW,u"_ba;
        QTest::newRow("byte above 127") << "TWF\xe9"_ba;
        QTest::newRow("blank before padding") << "TQ ="_ba;
    }

    void refuses()
    {
        QFETCH(QByteArray, text);
        QVERIFY(!decoded(text));
    }

    void agreesWithAnotherDecoderOnAMillionInputs()
    {
        QRandomGenerator random(20240601);
        int accepted = 0;
        for (int i = 0; i < 1000000; ++i) {
            QByteArray text = randomBytes(random, random.bounded(40)).toBase64();
            for (int mutations = random.bounded(4); mutations > 0; --mutations) {
                mutate(text, random);
            }
            const Bytes ours = decoded(text);
            accepted += ours.has_value();
            if (ours != decodedByQt(text)) {
                QFAIL(("disagrees on " + text.toPercentEncoding()).constData());
            }
        }
        // Both verdicts must have been put to the test.
        QCOMPARE_GT(accepted, 300000);
        QCOMPARE_LT(accepted, 700000);
    }

    void findsAFlawAnywhereInALongText()
    {
        QRandomGenerator random(7);
        const QByteArray text = randomBytes(random, 200000).toBase64();
        QVERIFY(decoded(text).has_value());
        for (const char flaw : {' ', '\n', '-', '=', '\0'}) {
            for (qsizetype position = 0; position < text.size() - 2;
                 position += 1 + (position % 4096 == 2) * 4090) {
                QByteArray flawed = text;
                flawed[position] = flaw;
                QVERIFY2(!decoded(flawed), qPrintable(QString::number(position)));
            }
        }
    }

    void decodesOnTopOfItsOwnText_data()
    {
        QTest::addColumn<qsizetype>("start");
        QTest::newRow("at its start") << qsizetype(0);
        QTest::newRow("one byte before it") << qsizetype(1);
        QTest::newRow("some bytes before it") << qsizetype(100);
    }

    void decodesOnTopOfItsOwnText()
    {
        QFETCH(qsizetype, start);
        QRandomGenerator random(11);
        for (const qsizetype size : {0, 1, 2, 3, 36863, 36864, 36865, 1000000}) {
            const QByteArray bytes = randomBytes(random, size);
            QByteArray memory = QByteArray(start, '*') + bytes.toBase64();
            const std::string_view text(memory.data() + start, memory.size() - start);
            const auto decodedSize = providers::decodeStrictBase64(text, memory.data());
            QCOMPARE(decodedSize.value_or(-1), size);
            QVERIFY(memory.left(size) == bytes);
        }
    }

    void appendsWhatDecodesToTheSameBytes()
    {
        QRandomGenerator random(13);
        for (const qsizetype size : {0, 1, 2, 3, 4, 36863, 36864, 36865, 1000000}) {
            const QByteArray bytes = randomBytes(random, size);
            QByteArray text = "before:"_ba;
            providers::appendBase64(text, bytes);
            QVERIFY(text == "before:" + bytes.toBase64());
            QCOMPARE(text.size(), 7 + providers::base64Size(size));
            QCOMPARE(text.constData()[text.size()], '\0');
        }
    }
};

QTEST_GUILESS_MAIN(StrictBase64Test)
#include "strictbase64test.moc"
