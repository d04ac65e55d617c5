#include "desktop/picturefile.h"

#include "desktop/pictureformat.h"
#include "testlibs/orientedjpeg.h"

#include <QBuffer>
#include <QImageWriter>
#include <QTemporaryDir>
#include <QtEndian>
#include <QTest>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using desktop::Picture;
using desktop::readPicture;
using testlibs::firstOrientation;
using testlibs::orientedJpeg;
using testlibs::quarters;
using testlibs::uprightQuarters;

namespace {

QByteArray encoded(const char *format, QSize size = {40, 30})
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return buffer.data();
}

quint32 checksum(const QByteArray &bytes)
{
    quint32 sum = 0xffffffff;
    for (const char byte : bytes) {
        sum ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit) {
            sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xedb88320 : 0);
        }
    }
    return ~sum;
}

QByteArray bigEndian(quint32 number)
{
    const quint32 swapped = qToBigEndian(number);
    return {reinterpret_cast<const char *>(&swapped), 4};
}

QByteArray progressiveJpeg()
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setProgressiveScanWrite(true);
    const bool written = writer.write(QImage::fromData(orientedJpeg(firstOrientation, {40, 30})));
    return written ? buffer.data() : QByteArray();
}

/// With a whole small JPEG in a segment of its own, as cameras put it there.
QByteArray withThumbnail(QByteArray jpeg)
{
    constexpr qsizetype behindTheStart = 2;
    const QByteArray small = orientedJpeg(firstOrientation, {16, 16});
    const auto length = qToBigEndian(quint16(small.size() + 2));
    return jpeg.insert(behindTheStart,
        "\xff\xe2"_ba + QByteArray(reinterpret_cast<const char *>(&length), 2) + small);
}

/// A PNG that says how large it is, and has no rows.
QByteArray promisedPng(quint32 width, quint32 height, char bitsPerSample)
{
    const QByteArray header = "IHDR"_ba + bigEndian(width) + bigEndian(height) + bitsPerSample
        + QByteArray("\x06\x00\x00\x00", 4);
    return "\x89PNG\r\n\x1a\n"_ba + bigEndian(13) + header + bigEndian(checksum(header))
        + bigEndian(0) + "IDAT"_ba + bigEndian(checksum("IDAT"_ba)) + bigEndian(0) + "IEND"_ba
        + bigEndian(checksum("IEND"_ba));
}

} // namespace

class PictureFileTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    QString write(const QString &name, const QByteArray &bytes)
    {
        QFile file(m_folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            qFatal("The test's own file cannot be written.");
        }
        return file.fileName();
    }

private Q_SLOTS:
    // The first one, before larger pictures have taken memory.
    void aChunkThatSaysToBeLongTakesNoMemory()
    {
        constexpr qsizetype behindTheHeader = 33;
        constexpr long kilobytes = 100L * 1024;
        const auto mostMemory = [] {
            rusage usage{};
            getrusage(RUSAGE_SELF, &usage);
            return usage.ru_maxrss;
        };
        const QByteArray chunk = QByteArray::fromHex("40000000") + "tEXtx";
        const QString file = write(u"a.png"_s, encoded("png").insert(behindTheHeader, chunk));
        const long before = mostMemory();
        QCOMPARE(readPicture(file).error(), u"The image is damaged"_s);
        QVERIFY(mostMemory() - before < kilobytes);
    }

    void picturesAreDecoded_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("format");

        QTest::newRow("a PNG") << u"a.png"_s << "png"_ba;
        QTest::newRow("a JPEG") << u"a.jpg"_s << "jpeg"_ba;
        QTest::newRow("a WebP") << u"a.webp"_s << "webp"_ba;
        QTest::newRow("a JPEG named .png") << u"b.png"_s << "jpeg"_ba;
        QTest::newRow("a PNG without an extension") << u"c"_s << "png"_ba;
        QTest::newRow("blanks, # and umlauts in the name") << u"a #1 %20 ü.png"_s << "png"_ba;
    }
    void picturesAreDecoded()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, format);
        const QString file = write(name, encoded(format.constData()));

        const tl::expected<Picture, QString> picture = readPicture(file);

        QVERIFY2(picture, qPrintable(picture ? QString() : picture.error()));
        QCOMPARE(picture->file, file);
        QCOMPARE(picture->format, format);
        QCOMPARE(picture->image.size(), QSize(40, 30));
        const QColor colour = picture->image.pixelColor(20, 15);
        QVERIFY(colour.red() > 240 && colour.green() < 15 && colour.blue() < 15);
    }

    void aRelativePathBecomesAbsolute()
    {
        const QString file = write(u"relative.png"_s, encoded("png"));
        const QString before = QDir::currentPath();
        QDir::setCurrent(m_folder.path());
        const tl::expected<Picture, QString> picture = readPicture(u"relative.png"_s);
        QDir::setCurrent(before);
        QVERIFY(picture);
        QCOMPARE(picture->file, file);
    }

    void aPictureIsTurnedTheRightWayUp_data() { testlibs::addOrientations(); }
    void aPictureIsTurnedTheRightWayUp()
    {
        QFETCH(int, orientation);
        const QString file
            = testlibs::putOrientedJpeg(m_folder.filePath(u"turned.jpg"_s), orientation, {64, 32});

        const tl::expected<Picture, QString> picture = readPicture(file);

        QVERIFY(picture);
        QCOMPARE(picture->image.size(), QSize(64, 32));
        QCOMPARE(quarters(picture->image), uprightQuarters);
    }

    void whatIsNoPictureIsRefused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("error");

        const QByteArray svg = "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>"_ba;
        const QString unsupported = u"Unsupported image format"_s;
        const QString damaged = u"The image is damaged"_s;
        QTest::newRow("an empty file") << ""_ba << u"The file is empty"_s;
        QTest::newRow("text") << "This is no picture."_ba << unsupported;
        QTest::newRow("one byte") << "\x89"_ba << unsupported;
        QTest::newRow("SVG, which Qt could read") << svg << unsupported;
        QTest::newRow("BMP, which Qt could read") << encoded("bmp") << unsupported;
        QTest::newRow("XBM, which Qt could read") << encoded("xbm") << unsupported;
        QTest::newRow("RIFF, but sound") << "RIFF....WAVEfmt "_ba << unsupported;
        QTest::newRow("RIFF and no more") << "RIFF"_ba << unsupported;
        QTest::newRow("a PNG's first bytes") << encoded("png").first(8) << damaged;
        QTest::newRow("half a PNG") << encoded("png").first(encoded("png").size() / 2) << damaged;
        QTest::newRow("a JPEG's first bytes") << encoded("jpeg").first(20) << damaged;
        QTest::newRow("half a WebP")
            << encoded("webp").first(encoded("webp").size() / 2) << damaged;
        QTest::newRow("the largest, without its rows") << promisedPng(7680, 4320, 8) << damaged;
        QTest::newRow("one row more")
            << promisedPng(8192, 4097, 8) << u"The image is too large (8192 × 4097 pixels)"_s;
        QTest::newRow("more bytes than pixels tell")
            << promisedPng(7680, 4320, 16) << u"The image is too large (7680 × 4320 pixels)"_s;
        QTest::newRow("a small file that promises 16 GB")
            << promisedPng(65535, 65535, 8) << u"The image is too large (65535 × 65535 pixels)"_s;
    }
    void whatIsNoPictureIsRefused()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, error);

        const tl::expected<Picture, QString> picture = readPicture(write(u"refused.png"_s, bytes));

        QVERIFY(!picture);
        QCOMPARE(picture.error(), error);
    }

    void aCutPictureIsRefusedUnlessAllOfItIsThere_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray jpeg = orientedJpeg(firstOrientation, {40, 30});
        QTest::newRow("PNG") << encoded("png");
        QTest::newRow("WebP") << encoded("webp");
        QTest::newRow("JPEG") << jpeg;
        QTest::newRow("JPEG in several scans") << progressiveJpeg();
        QTest::newRow("JPEG with a thumbnail") << withThumbnail(jpeg);
    }
    void aCutPictureIsRefusedUnlessAllOfItIsThere()
    {
        QFETCH(QByteArray, bytes);
        const QString file = write(u"cut"_s, bytes);
        const auto whole = readPicture(file);
        QVERIFY(whole);
        for (qsizetype size = bytes.size() - 1; size > 0; --size) {
            QVERIFY(QFile::resize(file, size));
            const auto cut = readPicture(file);
            QVERIFY2(!cut || cut->image == whole->image, qPrintable(QString::number(size)));
            QVERIFY2(!cut || whole->format != "jpeg", qPrintable(QString::number(size)));
        }
    }

    void theEndOfAJpegIsFoundWhereverItLies()
    {
        constexpr qsizetype endOfImage = 2;
        constexpr int readAtOnce = 16'384;
        const QByteArray jpeg = orientedJpeg(firstOrientation, {40, 30});
        QVERIFY(jpeg.size() < 1500);
        for (int padding = readAtOnce - 1500; padding < readAtOnce; ++padding) {
            QBuffer file;
            file.setData(
                jpeg.chopped(endOfImage) + QByteArray(padding, '\0') + jpeg.last(endOfImage));
            QVERIFY(file.open(QIODevice::ReadOnly));
            QVERIFY2(desktop::isWhole(file, "jpeg"_ba), qPrintable(QString::number(padding)));
            QCOMPARE(file.pos(), 0);
        }
    }

    void whatIsMarkedWithinAJpegIsNotItsEnd_data()
    {
        QTest::addColumn<QByteArray>("marked");
        QTest::newRow("a stuffed zero") << QByteArray("\xff\0", 2);
        QTest::newRow("the first mark to start afresh from") << "\xff\xd0"_ba;
        QTest::newRow("the last one") << "\xff\xd7"_ba;
        QTest::newRow("a segment with an end of its own")
            << QByteArray("\xff\xe0\0\x06\xff\xd9\xff\xd9", 8);
        QTest::newRow("fillers") << "\xff\xff\xff"_ba;
    }
    void whatIsMarkedWithinAJpegIsNotItsEnd()
    {
        QFETCH(QByteArray, marked);
        constexpr qsizetype endOfImage = 2;
        const QByteArray jpeg = orientedJpeg(firstOrientation, {40, 30});
        const auto isWhole = [](QByteArray bytes) {
            QBuffer file(&bytes);
            return file.open(QIODevice::ReadOnly) && desktop::isWhole(file, "jpeg"_ba);
        };
        QVERIFY(!isWhole(jpeg.chopped(endOfImage) + marked));
        QVERIFY(isWhole(jpeg.chopped(endOfImage) + marked + jpeg.last(endOfImage)));
    }

    void whatFollowsAJpegDoesNoHarm_data()
    {
        QTest::addColumn<QByteArray>("more");
        QTest::newRow("padding") << QByteArray(5000, '\0');
        QTest::newRow("another picture") << orientedJpeg(firstOrientation, {16, 16});
        QTest::newRow("half a picture") << orientedJpeg(firstOrientation, {16, 16}).first(200);
    }
    void whatFollowsAJpegDoesNoHarm()
    {
        QFETCH(QByteArray, more);
        const QByteArray jpeg = orientedJpeg(firstOrientation, {40, 30});
        const auto picture = readPicture(write(u"a.jpg"_s, jpeg + more));
        QVERIFY(picture);
        QCOMPARE(quarters(picture->image), uprightQuarters);
    }

    void aMissingFileIsNotFound()
    {
        QCOMPARE(readPicture(m_folder.filePath(u"missing.png"_s)).error(), u"File not found"_s);
        QCOMPARE(readPicture(QString()).error(), u"File not found"_s);
    }

    void aFolderIsNotAFile()
    {
        QVERIFY(QDir(m_folder.path()).mkdir(u"folder.png"_s));
        QCOMPARE(readPicture(m_folder.filePath(u"folder.png"_s)).error(), u"Not a file"_s);
    }

    void aPipeIsNotWaitedFor()
    {
        const QString pipe = m_folder.filePath(u"pipe.png"_s);
        QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QCOMPARE(readPicture(pipe).error(), u"Not a file"_s);
    }

    void aFileOfSomebodyElseCannotBeRead()
    {
        constexpr uid_t nobody = 65534;
        const QString file = write(u"secret.png"_s, encoded("png"));
        QVERIFY(QFile::setPermissions(file, {}));
        QVERIFY(QFile::setPermissions(m_folder.path(),
            QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ExeGroup
                | QFile::ExeOther));
        // To root, no file is closed.
        const uid_t self = ::geteuid();
        if (self == 0) {
            QCOMPARE(::seteuid(nobody), 0);
        }
        const tl::expected<Picture, QString> picture = readPicture(file);
        QCOMPARE(::seteuid(self), 0);
        QVERIFY(!picture);
        QCOMPARE(picture.error(), u"The file cannot be read: Permission denied"_s);
    }
};

QTEST_GUILESS_MAIN(PictureFileTest)

#include "picturefiletest.moc"
