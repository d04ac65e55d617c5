#include "imageservice/painting/painter.h"
#include "runningservice.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace imageservice;

namespace {

QImage drawn(QSize size)
{
    return painted(sceneFor(u"a sea at sunset"_s, u"model"_s), size);
}

QByteArray png(const QImage &image)
{
    return encoded(image, PictureFormat::Png).bytes;
}

/// Mean difference of a byte of green, which is most of the brightness.
double distance(const QImage &a, const QImage &b)
{
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            sum += std::abs(qGreen(a.pixel(x, y)) - qGreen(b.pixel(x, y)));
        }
    }
    return sum / (static_cast<double>(a.width()) * a.height());
}

} // namespace

class UpscalingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thePictureComesBackLarger_data();
    void thePictureComesBackLarger();
    void theContentStays();
    void enlargingIsSmooth();
    void aBodyOf25MegabytesOfPictureIsTaken();
    void whatIsNoPictureIsABadArgument_data();
    void whatIsNoPictureIsABadArgument();
    void anEndlessStripIsRefused();
    void theKeyChoosesTheFormat();
    void aKeyMayFailForUpscalingOnly_data();
    void aKeyMayFailForUpscalingOnly();

private:
    RunningService m_service;
};

void UpscalingTest::thePictureComesBackLarger_data()
{
    QTest::addColumn<QSize>("before");
    QTest::addColumn<QSize>("after");
    QTest::newRow("3:2") << QSize(384, 256) << QSize(3840, 2560);
    QTest::newRow("16:9") << QSize(192, 108) << QSize(3840, 2160);
    QTest::newRow("square") << QSize(64, 64) << QSize(3840, 3840);
    QTest::newRow("already wide") << QSize(3840, 200) << QSize(3840, 200);
}

void UpscalingTest::thePictureComesBackLarger()
{
    QFETCH(QSize, before);
    QFETCH(QSize, after);
    const Answer answer = m_service.askUpscaler("canary-key", png(drawn(before)));
    QCOMPARE(answer.status, 200);
    QCOMPARE(QImage::fromData(geminiImage(answer.object())).size(), after);
}

void UpscalingTest::theContentStays()
{
    const QImage before = drawn({384, 256});
    const Answer answer = m_service.askUpscaler("ok-png", png(before));
    const QImage after = QImage::fromData(geminiImage(answer.object()));
    const QImage shrunk
        = after.scaled(before.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QVERIFY(distance(before, shrunk) < 3);
    QVERIFY(distance(before.mirrored(), shrunk) > 10);
}

void UpscalingTest::enlargingIsSmooth()
{
    QImage halves(64, 36, QImage::Format_RGB32);
    halves.fill(Qt::black);
    for (int y = 0; y < halves.height(); ++y) {
        for (int x = 32; x < 64; ++x) {
            halves.setPixel(x, y, qRgb(255, 255, 255));
        }
    }
    const QImage after = upscaled(png(halves));
    QSet<int> greys;
    for (int x = 0; x < after.width(); ++x) {
        greys.insert(qGreen(after.pixel(x, 1000)));
    }
    QVERIFY2(greys.size() > 20, qPrintable(QString::number(greys.size())));
}

void UpscalingTest::aBodyOf25MegabytesOfPictureIsTaken()
{
    // Readers of pictures ignore what follows the end.
    const QByteArray picture = png(drawn({320, 180})).leftJustified(25'000'000, '\0');
    const Answer answer = m_service.askUpscaler("canary-key", picture);
    QCOMPARE(answer.status, 200);
    QCOMPARE(QImage::fromData(geminiImage(answer.object())).size(), QSize(3840, 2160));
}

void UpscalingTest::whatIsNoPictureIsABadArgument_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("text") << QByteArray("hello");
    QTest::newRow("half a picture's head") << png(drawn({32, 32})).first(20);
}

void UpscalingTest::whatIsNoPictureIsABadArgument()
{
    QFETCH(QByteArray, bytes);
    const Answer answer = m_service.askUpscaler("canary-key", bytes);
    QCOMPARE(answer.status, 400);
    QCOMPARE(answer.object()[u"error"][u"status"], u"INVALID_ARGUMENT"_s);
}

void UpscalingTest::anEndlessStripIsRefused()
{
    QImage strip(1, 2000, QImage::Format_RGB32);
    strip.fill(Qt::red);
    QCOMPARE(m_service.askUpscaler("canary-key", png(strip)).status, 400);
}

void UpscalingTest::theKeyChoosesTheFormat()
{
    const QByteArray picture = png(drawn({64, 36}));
    QVERIFY(
        geminiImage(m_service.askUpscaler("canary-key", picture).object()).startsWith("\xFF\xD8"));
    QVERIFY(geminiImage(m_service.askUpscaler("ok-png", picture).object()).startsWith("\x89PNG"));
}

void UpscalingTest::aKeyMayFailForUpscalingOnly_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<int>("status");
    QTest::newRow("as an error") << QByteArray("upscale-fail") << 503;
    QTest::newRow("in any other way") << QByteArray("upscale-html") << 502;
    QTest::newRow("with another error") << QByteArray("upscale-fail-429") << 429;
}

void UpscalingTest::aKeyMayFailForUpscalingOnly()
{
    QFETCH(QByteArray, key);
    QFETCH(int, status);
    QCOMPARE(m_service.askGemini(key).status, 200);
    QCOMPARE(m_service.askUpscaler(key, png(drawn({64, 36}))).status, status);
}

QTEST_GUILESS_MAIN(UpscalingTest)
#include "upscalingtest.moc"
