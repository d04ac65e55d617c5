#include "desktop/composedpictures.h"

#include "onscreen.h"

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
        const auto saved = ComposedPictures(u"gnome"_s).save(oneColour({8, 6}, Qt::red));
        QVERIFY(inTheWay.remove());
        QVERIFY(!saved);
        QVERIFY2(saved.error().startsWith(u"The picture of all screens cannot be saved: "_s),
            qPrintable(saved.error()));
    }
};

QTEST_GUILESS_MAIN(ComposedPicturesTest)

#include "composedpicturestest.moc"
