#include "imageservice/painting/painter.h"

#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace imageservice;

namespace {

constexpr QSize Small(192, 108);

QImage picture(const QString &prompt, const QString &model = u"model"_s, QSize size = Small)
{
    return painted(sceneFor(prompt, model), size);
}

/// Mean difference of a byte.
double distance(const QImage &a, const QImage &b)
{
    qint64 sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb one = a.pixel(x, y);
            const QRgb two = b.pixel(x, y);
            sum += std::abs(qRed(one) - qRed(two)) + std::abs(qGreen(one) - qGreen(two))
                + std::abs(qBlue(one) - qBlue(two));
        }
    }
    return static_cast<double>(sum) / (3.0 * a.width() * a.height());
}

/// The largest share of the pixels that have one brightness.
double largestFlatShare(const QImage &image)
{
    std::array<int, 256> counts{};
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            ++counts[static_cast<size_t>(qGray(image.pixel(x, y)))];
        }
    }
    return *std::max_element(counts.begin(), counts.end())
        / static_cast<double>(image.width() * image.height());
}

void addMotifs()
{
    QTest::addColumn<QString>("prompt");
    for (const char *prompt : {"mountains at dawn", "the sea at sunset", "desert dunes by day",
             "a city at night", "a misty forest in the morning", "aurora over snow",
             "moonlit sea, stormy clouds", "autumn forest at dusk"}) {
        QTest::newRow(prompt) << QString::fromLatin1(prompt);
    }
}

} // namespace

class PainterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSameRequestGivesTheSamePicture_data() { addMotifs(); }
    void theSameRequestGivesTheSamePicture();
    void anotherPromptOfThatMotifLooksDifferent_data() { addMotifs(); }
    void anotherPromptOfThatMotifLooksDifferent();
    void anotherModelLooksDifferent_data() { addMotifs(); }
    void anotherModelLooksDifferent();
    void aLargePictureShowsTheSameScene_data() { addMotifs(); }
    void aLargePictureShowsTheSameScene();
    void aPictureIsNoFlatSurface_data() { addMotifs(); }
    void aPictureIsNoFlatSurface();
    void everySizeIsPainted_data();
    void everySizeIsPainted();
    void softSkiesAreGrainedNotBanded();
    void paintingTimeOf4K_data() { addMotifs(); }
    void paintingTimeOf4K();
};

void PainterTest::theSameRequestGivesTheSamePicture()
{
    QFETCH(QString, prompt);
    QCOMPARE(picture(prompt), picture(prompt));
}

void PainterTest::anotherPromptOfThatMotifLooksDifferent()
{
    QFETCH(QString, prompt);
    QVERIFY(distance(picture(prompt), picture(prompt + u" again"_s)) > 4);
}

void PainterTest::anotherModelLooksDifferent()
{
    QFETCH(QString, prompt);
    QVERIFY(distance(picture(prompt), picture(prompt, u"another"_s)) > 4);
}

void PainterTest::aLargePictureShowsTheSameScene()
{
    QFETCH(QString, prompt);
    constexpr QSize Size(640, 360);
    const QImage large = picture(prompt, u"model"_s, Size * 2);
    const QImage shrunk = large.scaled(Size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const double toItself = distance(picture(prompt, u"model"_s, Size), shrunk);
    const double toAnother = distance(picture(prompt + u" again"_s, u"model"_s, Size), shrunk);
    QVERIFY2(toItself * 2 < toAnother, qPrintable(u"%1, %2"_s.arg(toItself).arg(toAnother)));
}

void PainterTest::aPictureIsNoFlatSurface()
{
    QFETCH(QString, prompt);
    QVERIFY(largestFlatShare(picture(prompt)) < 0.15);
}

void PainterTest::everySizeIsPainted_data()
{
    QTest::addColumn<QString>("prompt");
    QTest::addColumn<QSize>("size");
    for (const char *motif : {"mountain", "sea", "dunes", "city", "forest", "aurora"}) {
        for (const QSize size : {QSize(16, 16), QSize(17, 301), QSize(301, 17), QSize(96, 144)}) {
            const QByteArray name = QByteArray(motif) + ' ' + QByteArray::number(size.width()) + 'x'
                + QByteArray::number(size.height());
            QTest::newRow(name.constData()) << QString::fromLatin1(motif) << size;
        }
    }
}

void PainterTest::everySizeIsPainted()
{
    QFETCH(QString, prompt);
    QFETCH(QSize, size);
    QCOMPARE(picture(prompt, u"model"_s, size).size(), size);
}

void PainterTest::softSkiesAreGrainedNotBanded()
{
    // Near the top the sky hardly changes: without grain whole rows would be of one colour.
    const QImage sky = picture(u"a clear cloudless day in the desert"_s, u"model"_s, {640, 360});
    int changes = 0;
    for (int x = 1; x < sky.width(); ++x) {
        changes += sky.pixel(x, 5) != sky.pixel(x - 1, 5) ? 1 : 0;
    }
    QVERIFY2(changes > sky.width() / 4, qPrintable(QString::number(changes)));
}

void PainterTest::paintingTimeOf4K()
{
    QFETCH(QString, prompt);
    QElapsedTimer timer;
    timer.start();
    const QImage image = picture(prompt, u"model"_s, {3840, 2160});
    qInfo("%lld ms", timer.elapsed());
    QCOMPARE(image.size(), QSize(3840, 2160));
}

QTEST_GUILESS_MAIN(PainterTest)
#include "paintertest.moc"
