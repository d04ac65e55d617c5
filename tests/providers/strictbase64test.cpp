#include "providers/strictbase64.h"

#include <QRandomGenerator>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

using Bytes = std::optional<QByteArray>;
using providers::Base64Way;

constexpr auto bothWays = {Base64Way::Fastest, Base64Way::Portable};

Bytes decoded(const QByteArray &text, Base64Way way)
{
    // Not a byte more than promised, so that a sanitizer sees what is written beyond.
    const auto memory = std::make_unique<char[]>(text.size() / 4 * 3);
    const auto size
        = providers::decodeStrictBase64({text.data(), size_t(text.size())}, memory.get(), way);
    return size ? Bytes(QByteArray(memory.get(), *size)) : std::nullopt;
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
        for (const Base64Way way : bothWays) {
            QTEST(decoded(text, way).value_or("refused"_ba), "bytes");
        }
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
        // Alone, and behind more letters than are decoded at a time.
        for (const Base64Way way : bothWays) {
            QVERIFY(!decoded(text, way));
            QVERIFY(!decoded(QByteArray(64, 'A') + text, way));
        }
    }

    void agreesWithAnotherDecoderOnAMillionInputs()
    {
        QRandomGenerator random(20240601);
        int accepted = 0;
        for (int i = 0; i < 1000000; ++i) {
            QByteArray text = randomBytes(random, random.bounded(80)).toBase64();
            for (int mutations = random.bounded(4); mutations > 0; --mutations) {
                mutate(text, random);
            }
            const Bytes expected = decodedByQt(text);
            accepted += expected.has_value();
            for (const Base64Way way : bothWays) {
                if (decoded(text, way) != expected) {
                    QFAIL(("disagrees on " + text.toPercentEncoding()).constData());
                }
            }
        }
        // Both verdicts must have been put to the test.
        QCOMPARE_GT(accepted, 300000);
        QCOMPARE_LT(accepted, 700000);
    }

    void findsAFlawAnywhere_data() { addWays(); }

    void findsAFlawAnywhere()
    {
        QFETCH(Base64Way, way);
        QRandomGenerator random(7);
        const QByteArray text = randomBytes(random, 192).toBase64();
        QVERIFY(decoded(text, way).has_value());
        for (qsizetype position = 0; position < text.size(); ++position) {
            for (int letter = 0; letter < 256; ++letter) {
                QByteArray changed = text;
                changed[position] = char(letter);
                QCOMPARE(decoded(changed, way), decodedByQt(changed));
            }
        }
    }

    void findsAFlawAtTheEdgesOfLargeBlocks_data() { addWays(); }

    void findsAFlawAtTheEdgesOfLargeBlocks()
    {
        QFETCH(Base64Way, way);
        QRandomGenerator random(7);
        const QByteArray text = randomBytes(random, 150000).toBase64();
        QVERIFY(decoded(text, way).has_value());
        for (const qsizetype edge : {49152, 98304, 147456}) {
            for (qsizetype position = edge - 8; position < edge + 8; ++position) {
                for (const char flaw : {' ', '\n', '-', '=', '\0'}) {
                    QByteArray flawed = text;
                    flawed[position] = flaw;
                    QVERIFY2(!decoded(flawed, way), qPrintable(QString::number(position)));
                }
            }
        }
    }

    void decodesOnTopOfItsOwnText_data()
    {
        QTest::addColumn<Base64Way>("way");
        QTest::addColumn<qsizetype>("start");
        for (const qsizetype start : {0, 1, 7, 100}) {
            QTest::addRow("fastest, %lld bytes before it", qlonglong(start))
                << Base64Way::Fastest << start;
            QTest::addRow("portable, %lld bytes before it", qlonglong(start))
                << Base64Way::Portable << start;
        }
    }

    void decodesOnTopOfItsOwnText()
    {
        QFETCH(Base64Way, way);
        QFETCH(qsizetype, start);
        QRandomGenerator random(11);
        for (const qsizetype size : sizes()) {
            const QByteArray bytes = randomBytes(random, size);
            QByteArray memory = QByteArray(start, '*') + bytes.toBase64();
            const std::string_view text(memory.data() + start, memory.size() - start);
            const auto decodedSize = providers::decodeStrictBase64(text, memory.data(), way);
            QCOMPARE(decodedSize.value_or(-1), size);
            QVERIFY(memory.left(size) == bytes);
        }
    }

    void appendsWhatDecodesToTheSameBytes_data() { addWays(); }

    void appendsWhatDecodesToTheSameBytes()
    {
        QFETCH(Base64Way, way);
        QRandomGenerator random(13);
        for (const qsizetype size : sizes()) {
            const QByteArray bytes = randomBytes(random, size);
            QByteArray text = "before:"_ba;
            providers::appendBase64(text, bytes, way);
            QVERIFY(text == "before:" + bytes.toBase64());
            QCOMPARE(text.size(), 7 + providers::base64Size(size));
            QCOMPARE(text.constData()[text.size()], '\0');
        }
    }

private:
    static void addWays()
    {
        QTest::addColumn<Base64Way>("way");
        QTest::newRow("fastest") << Base64Way::Fastest;
        QTest::newRow("portable") << Base64Way::Portable;
    }

    /// Around the blocks in which either way proceeds.
    static QList<qsizetype> sizes()
    {
        QList<qsizetype> result{36863, 36864, 36865, 1000000};
        for (qsizetype size = 0; size < 100; ++size) {
            result += size;
        }
        return result;
    }
};

QTEST_GUILESS_MAIN(StrictBase64Test)
#include "strictbase64test.moc"
