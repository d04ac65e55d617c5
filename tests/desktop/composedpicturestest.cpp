#include "desktop/composedpictures.h"

#include "onscreen.h"
#include "testlibs/smallfiles.h"

#include <QPainter>
#include <QStandardPaths>
#include <QTest>

using namespace Qt::StringLiterals;
using desktop::Arrangement;
using desktop::ComposedPictures;

namespace {

QString folder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation)
        + u"/composed/gnome"_s;
}

QImage manyColours(QSize size, int blue)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            image.setPixel(x, y, qRgb(10 * x, 20 * y, blue - x - 10 * y));
        }
    }
    return image;
}

} // namespace

class ComposedPicturesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QDir(folder()).removeRecursively(); }

    void eachPictureHasANameOfItsOwn()
    {
        const ComposedPictures pictures(u"gnome"_s);
        const QImage red = oneColour({80, 60}, Qt::red);
        const QString file = pictures.save(red).value();
        QCOMPARE(QFileInfo(file).path(), folder());
        QCOMPARE(QImage(file).convertToFormat(QImage::Format_RGB32), red);
        // Also those made within one millisecond.
        for (int i = 1; i < 50; ++i) {
            QVERIFY(pictures.save(oneColour({1, 1}, Qt::red)));
        }
        QCOMPARE(pictures.files().size(), 50);
        QVERIFY(pictures.files().contains(file));
    }

    void anImageIsPutWithinAnother_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QRect>("place");
        QTest::newRow("all of it") << QSize(8, 6) << QRect(0, 0, 8, 6);
        QTest::newRow("right half") << QSize(8, 6) << QRect(4, 0, 4, 6);
        // A row is filled up to a multiple of four bytes: by one, by two, by three.
        QTest::newRow("by one") << QSize(5, 3) << QRect(1, 1, 3, 2);
        QTest::newRow("by two") << QSize(6, 3) << QRect(5, 0, 1, 3);
        QTest::newRow("by three") << QSize(7, 3) << QRect(0, 2, 7, 1);
    }

    void anImageIsPutWithinAnother()
    {
        QFETCH(const QSize, size);
        QFETCH(const QRect, place);
        const ComposedPictures pictures(u"gnome"_s);
        QImage expected = manyColours(size, 255);
        const QString before = pictures.save(expected).value();
        const QImage within = manyColours(place.size(), 80);
        const auto file = pictures.saveWithin(before, within, place.topLeft());
        QVERIFY(file);
        QPainter(&expected).drawImage(place.topLeft(), within);
        QCOMPARE(QImage(*file).convertToFormat(QImage::Format_RGB32), expected);
        QVERIFY(*file != before);
        QCOMPARE(QImage(before).convertToFormat(QImage::Format_RGB32), manyColours(size, 255));
    }

    void anImageIsPutWithinNothingElse()
    {
        const ComposedPictures pictures(u"gnome"_s);
        const QImage red = oneColour({8, 6}, Qt::red);
        const QString file = pictures.save(red).value();
        const auto saved = [&](QPoint place, const QString &name) {
            return pictures.saveWithin(name, red, place).has_value();
        };
        QVERIFY(!saved({1, 0}, file));
        QVERIFY(!saved({0, -1}, file));
        QVERIFY(!saved({0, 0}, folder() + u"/none.bmp"_s));
        QVERIFY(QFile::resize(file, QFileInfo(file).size() - 1));
        QVERIFY(!saved({0, 0}, file));
        QVERIFY(QFile::resize(file, 30));
        QVERIFY(!saved({0, 0}, file));
        QVERIFY(red.convertToFormat(QImage::Format_Indexed8).save(file, "BMP"));
        QVERIFY(!saved({0, 0}, file));
        QVERIFY(red.save(file, "PNG"));
        QVERIFY(!saved({0, 0}, file));
        QCOMPARE(pictures.files(), QStringList(file));
    }

    void anImageIsNotPutWithinAForgedOne_data()
    {
        QTest::addColumn<int>("offset");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("as large as can be") << 18 << QByteArray::fromHex("ffffff7fffffff7f");
        QTest::newRow("without pixels") << 18 << QByteArray::fromHex("00000000");
        QTest::newRow("from the top down") << 22 << QByteArray::fromHex("faffffff");
        QTest::newRow("pixels in the header") << 10 << QByteArray::fromHex("35000000");
        QTest::newRow("pixels behind the end") << 10 << QByteArray::fromHex("ffffff7f");
        QTest::newRow("compressed") << 30 << QByteArray::fromHex("01000000");
    }
    void anImageIsNotPutWithinAForgedOne()
    {
        QFETCH(int, offset);
        QFETCH(QByteArray, bytes);
        const ComposedPictures pictures(u"gnome"_s);
        const QImage red = oneColour({8, 6}, Qt::red);
        const QString name = pictures.save(red).value();
        QVERIFY(pictures.saveWithin(name, red, {0, 0}));
        QFile file(name);
        QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(offset));
        QCOMPARE(file.write(bytes), bytes.size());
        file.close();
        QVERIFY(!pictures.saveWithin(name, red, {0, 0}));
        QCOMPARE(pictures.files().size(), 2);
    }

    void aDiskWithoutRoomIsSaidSo_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("when it is written") << QSize(800, 600);
        QTest::newRow("when it is flushed") << QSize(8, 6);
    }
    void aDiskWithoutRoomIsSaidSo()
    {
        QFETCH(QSize, size);
        const ComposedPictures pictures(u"gnome"_s);
        const QImage red = oneColour(size, Qt::red);
        const QString before = pictures.save(red).value();
        const testlibs::SmallFiles limit(100);
        const auto saved = pictures.save(red);
        QVERIFY(!saved);
        QVERIFY2(saved.error().startsWith(u"The picture of all screens cannot be saved: "_s),
            qPrintable(saved.error()));
        QVERIFY(!pictures.saveWithin(before, red, {0, 0}));
        QCOMPARE(pictures.files(), QStringList(before));
    }

    void desktopsDoNotShareThem()
    {
        QVERIFY(ComposedPictures(u"gnome"_s).save(oneColour({8, 6}, Qt::red)));
        QCOMPARE(ComposedPictures(u"mate"_s).files(), QStringList());
    }

    void theMemoryIsOfOnePicture()
    {
        const ComposedPictures pictures(u"gnome"_s);
        QCOMPARE(pictures.remembered({}), Arrangement());
        const Arrangement shown{
            u"/a.png"_s, true, u"DP-1"_s, {{{u"DP-1"_s, {0, 0, 80, 60}}, {u"/b.png"_s}}}};
        pictures.remember(shown);
        QCOMPARE(pictures.remembered(u"/a.png"_s), shown);
        QCOMPARE(pictures.remembered(u"/b.png"_s), Arrangement());
    }

    void aDamagedMemoryIsNone()
    {
        const ComposedPictures pictures(u"gnome"_s);
        pictures.remember({u"/a.png"_s, true, {}, {}});
        QVERIFY(QFile::resize(folder() + u"/shown.json"_s, 10));
        QCOMPARE(pictures.remembered(u"/a.png"_s), Arrangement());
    }

    void noRoomIsAnError()
    {
        QVERIFY(QDir().mkpath(QFileInfo(folder()).path()));
        QFile inTheWay(folder());
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        const ComposedPictures pictures(u"gnome"_s);
        const auto saved = pictures.save(oneColour({8, 6}, Qt::red));
        pictures.remember({u"/a.png"_s, true, {}, {}});
        QCOMPARE(pictures.remembered(u"/a.png"_s), Arrangement());
        QVERIFY(inTheWay.remove());
        QVERIFY(!saved);
        QVERIFY2(saved.error().startsWith(u"The picture of all screens cannot be saved: "_s),
            qPrintable(saved.error()));
    }
};

QTEST_GUILESS_MAIN(ComposedPicturesTest)

#include "composedpicturestest.moc"
