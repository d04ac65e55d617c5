#include "ui/picturereader.h"

#include "testlibs/orientedjpeg.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <sys/resource.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

class PictureReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theContentDecidesNotTheName_data();
    void theContentDecidesNotTheName();
    void noOtherDecoderIsAsked_data();
    void noOtherDecoderIsAsked();
    void whatIsTooLargeIsNotShown_data();
    void whatIsTooLargeIsNotShown();
    void aChunkThatSaysToBeLongTakesNoMemory();
    void whatFollowsAPictureDoesNoHarm();
    void aCutPictureIsNotShown_data();
    void aCutPictureIsNotShown();
    void aPictureIsTurnedTheRightWayUp_data();
    void aPictureIsTurnedTheRightWayUp();
    void aPipeIsNotWaitedFor();
    void whatIsTransparentStaysSo_data();
    void whatIsTransparentStaysSo();
    void aFileThatCannotBeOpenedIsNotShown();

private:
    QImage read(const QString &name, ui::Framing framing = ui::Framing::Fit) const
    {
        const std::atomic_bool stopped = false;
        return ui::readPicture(m_folder.filePath(name), {64, 40}, framing, stopped);
    }
    void put(const QString &name, const QByteArray &bytes) const
    {
        QFile file(m_folder.filePath(name));
        QVERIFY(file.open(QFile::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    QTemporaryDir m_folder;
};

namespace {

QByteArray encoded(QSize size, const char *format, QImage::Format pixels = QImage::Format_Mono)
{
    QImage image(size, pixels);
    image.fill(1);
    QBuffer buffer;
    return image.save(&buffer, format) ? buffer.data() : QByteArray();
}

/// In kilobytes, since the program began.
long mostMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

} // namespace

void PictureReaderTest::theContentDecidesNotTheName_data()
{
    QTest::addColumn<QByteArray>("format");
    for (const auto *format : {"png", "jpeg", "webp"}) {
        QTest::newRow(format) << QByteArray(format);
    }
}

void PictureReaderTest::theContentDecidesNotTheName()
{
    QFETCH(const QByteArray, format);
    for (const QString &name : {u"a.png"_s, u"a.jpg"_s, u"a"_s}) {
        put(name, encoded({32, 20}, format));
        QCOMPARE(read(name).size(), QSize(32, 20));
    }
}

void PictureReaderTest::noOtherDecoderIsAsked_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("svg")
        << QByteArray("svg")
        << QByteArray(
               R"(<svg xmlns="http://www.w3.org/2000/svg" width="32" height="20"><rect width="9" height="9"/></svg>)");
    for (const auto *format : {"bmp", "xbm", "xpm", "ppm", "ico", "tiff"}) {
        QTest::newRow(format) << QByteArray(format) << encoded({32, 32}, format);
    }
}

void PictureReaderTest::noOtherDecoderIsAsked()
{
    QFETCH(const QByteArray, format);
    QFETCH(QByteArray, bytes);
    QBuffer buffer(&bytes);
    // Without that decoder the test would prove nothing.
    QVERIFY2(!QImageReader(&buffer).size().isEmpty(), "The decoder is not installed.");
    put(u"a.png"_s, bytes);
    QVERIFY(read(u"a.png"_s).isNull());
}

void PictureReaderTest::whatIsTooLargeIsNotShown_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QImage::Format>("pixels");
    QTest::addColumn<QSize>("largest");
    QTest::addColumn<QSize>("tooLarge");
    QTest::newRow("scaled while it is decoded")
        << QByteArray("jpeg") << QImage::Format_RGB32 << QSize(8192, 8192) << QSize(8193, 8192);
    QTest::newRow("decoded whole") // Qt counts whole megabytes.
        << QByteArray("png") << QImage::Format_Mono << QSize(8192, 4096) << QSize(8192, 4128);
}

void PictureReaderTest::whatIsTooLargeIsNotShown()
{
    QFETCH(const QByteArray, format);
    QFETCH(const QImage::Format, pixels);
    QFETCH(const QSize, largest);
    QFETCH(const QSize, tooLarge);
    put(u"largest.png"_s, encoded(largest, format, pixels));
    QVERIFY(!read(u"largest.png"_s).isNull());
    put(u"toolarge.png"_s, encoded(tooLarge, format, pixels));
    QVERIFY(read(u"toolarge.png"_s).isNull());
}

void PictureReaderTest::aChunkThatSaysToBeLongTakesNoMemory()
{
    constexpr qsizetype behindTheHeader = 33;
    const QByteArray chunk = QByteArray::fromHex("40000000") + "tEXtx";
    put(u"a.png"_s, encoded({32, 20}, "png").insert(behindTheHeader, chunk));
    const long before = mostMemory();
    QVERIFY(read(u"a.png"_s).isNull());
    QVERIFY2(mostMemory() - before < 100L * 1024, qPrintable(QString::number(mostMemory())));
}

void PictureReaderTest::whatFollowsAPictureDoesNoHarm()
{
    put(u"a.png"_s, encoded({32, 20}, "png") + "something else");
    QCOMPARE(read(u"a.png"_s).size(), QSize(32, 20));
}

void PictureReaderTest::aCutPictureIsNotShown_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("PNG") << encoded({32, 20}, "png");
    QTest::newRow("WebP") << encoded({32, 20}, "webp");
    QTest::newRow("JPEG") << testlibs::orientedJpeg(testlibs::firstOrientation, {32, 20});
}

void PictureReaderTest::aCutPictureIsNotShown()
{
    QFETCH(const QByteArray, bytes);
    put(u"cut"_s, bytes);
    const QImage whole = read(u"cut"_s);
    QCOMPARE(whole.size(), QSize(32, 20));
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    for (qsizetype size = bytes.size() - 1; size > 0; --size) {
        QVERIFY(QFile::resize(m_folder.filePath(u"cut"_s), size));
        const QImage cut = read(u"cut"_s);
        QVERIFY2(cut.isNull() || cut == whole, qPrintable(QString::number(size)));
    }
}

void PictureReaderTest::aPictureIsTurnedTheRightWayUp_data()
{
    QTest::addColumn<int>("orientation");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<ui::Framing>("framing");
    QTest::addColumn<QSize>("shown");
    for (int orientation = testlibs::firstOrientation; orientation <= testlibs::lastOrientation;
         ++orientation) {
        QTest::addRow("EXIF orientation %d, whole", orientation)
            << orientation << QSize(320, 160) << ui::Framing::Fit << QSize(64, 32);
        QTest::addRow("EXIF orientation %d, covering", orientation)
            << orientation << QSize(320, 160) << ui::Framing::Cover << QSize(80, 40);
        QTest::addRow("EXIF orientation %d, cut to what covers", orientation)
            << orientation << QSize(160, 640) << ui::Framing::Cover << QSize(64, 80);
        QTest::addRow("EXIF orientation %d, small", orientation)
            << orientation << QSize(32, 16) << ui::Framing::Fit << QSize(32, 16);
    }
}

void PictureReaderTest::aPictureIsTurnedTheRightWayUp()
{
    QFETCH(const int, orientation);
    QFETCH(const QSize, size);
    QFETCH(const ui::Framing, framing);
    put(u"turned.jpg"_s, testlibs::orientedJpeg(orientation, size));
    const QImage image = read(u"turned.jpg"_s, framing);
    QTEST(image.size(), "shown");
    QCOMPARE(testlibs::quarters(image), testlibs::uprightQuarters);
}

void PictureReaderTest::aPipeIsNotWaitedFor()
{
    QCOMPARE(mkfifo(QFile::encodeName(m_folder.filePath(u"pipe.png"_s)).constData(), 0600), 0);
    QVERIFY(read(u"pipe.png"_s).isNull());
}

void PictureReaderTest::whatIsTransparentStaysSo_data()
{
    QTest::addColumn<QImage::Format>("pixels");
    QTest::addColumn<int>("alpha");
    QTest::newRow("a transparent picture") << QImage::Format_ARGB32 << 0;
    QTest::newRow("an opaque one") << QImage::Format_RGB32 << 255;
}

void PictureReaderTest::whatIsTransparentStaysSo()
{
    QFETCH(const QImage::Format, pixels);
    QImage image({32, 20}, pixels);
    image.fill(Qt::transparent);
    QVERIFY(image.save(m_folder.filePath(u"a.png"_s)));
    QTEST(qAlpha(read(u"a.png"_s).pixel(16, 10)), "alpha");
}

// Rights would not keep out the superuser, as whom tests may run.
void PictureReaderTest::aFileThatCannotBeOpenedIsNotShown()
{
    put(u"a.png"_s, encoded({32, 20}, "png"));
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    rlimit files{};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &files), 0);
    rlimit none = files;
    none.rlim_cur = 0;
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &none), 0);
    const QImage image = read(u"a.png"_s);
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &files), 0);
    QVERIFY(image.isNull());
    QCOMPARE(read(u"a.png"_s).size(), QSize(32, 20));
}

QTEST_GUILESS_MAIN(PictureReaderTest)
#include "picturereadertest.moc"
