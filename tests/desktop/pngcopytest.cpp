#include "desktop/pngcopy.h"

#include "desktop/backgroundprocesses.h"
#include "desktop/choosedesktop.h"
#include "testlibs/smallfiles.h"

#include <QCoroTask>
#include <QDir>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using desktop::DesktopKind;
using desktop::fileEveryDesktopReads;
using desktop::Picture;
using desktop::readPicture;
using desktop::Screen;
using desktop::SetResult;

namespace {

QDir copies()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation)
        + u"/desktop pictures"_s);
}

} // namespace

class PngCopyTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    Picture picture(const QString &name, const char *format, Qt::GlobalColor colour)
    {
        QImage image(40, 30, QImage::Format_RGB32);
        image.fill(colour);
        const QString file = m_folder.filePath(name);
        if (!image.save(file, format)) {
            qFatal("The test's own picture cannot be written.");
        }
        return readPicture(file).value();
    }

private Q_SLOTS:
    void cleanup() { copies().removeRecursively(); }

    void pngAndJpegAreTakenAsTheyAre()
    {
        const Picture png = picture(u"a.png"_s, "png", Qt::red);
        const Picture jpeg = picture(u"a.jpg"_s, "jpeg", Qt::red);
        QCOMPARE(fileEveryDesktopReads(png).value(), png.file);
        QCOMPARE(fileEveryDesktopReads(jpeg).value(), jpeg.file);
        QVERIFY(!copies().exists());
    }

    void webpIsCopiedWithoutLoss()
    {
        const Picture webp = picture(u"a.webp"_s, "webp", Qt::red);
        const QString copy = fileEveryDesktopReads(webp).value();
        const Picture png = readPicture(copy).value();
        QCOMPARE(png.format, "png"_ba);
        QCOMPARE(png.image.convertToFormat(QImage::Format_RGB32),
            webp.image.convertToFormat(QImage::Format_RGB32));
    }

    void theSamePictureKeepsOneCopy()
    {
        const Picture webp = picture(u"a.webp"_s, "webp", Qt::red);
        QCOMPARE(fileEveryDesktopReads(webp).value(), fileEveryDesktopReads(webp).value());
        QCOMPARE(copies().entryList(QDir::Files).size(), 1);
    }

    void anotherPictureOfTheSameNameGetsAnotherCopy()
    {
        const QString red = fileEveryDesktopReads(picture(u"a.webp"_s, "webp", Qt::red)).value();
        const QString green
            = fileEveryDesktopReads(picture(u"a.webp"_s, "webp", Qt::green)).value();
        QVERIFY(red != green);
    }

    void aDamagedCopyIsMadeAgain()
    {
        const Picture webp = picture(u"a.webp"_s, "webp", Qt::red);
        const QString copy = fileEveryDesktopReads(webp).value();
        QVERIFY(QFile::resize(copy, 50));
        QCOMPARE(fileEveryDesktopReads(webp).value(), copy);
        QVERIFY(readPicture(copy));
    }

    void noRoomForTheCopyIsAnError()
    {
        QVERIFY(QDir().mkpath(QFileInfo(copies().path()).path()));
        QFile inTheWay(copies().path());
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        const auto copy = fileEveryDesktopReads(picture(u"a.webp"_s, "webp", Qt::red));
        QVERIFY(inTheWay.remove());
        QVERIFY(!copy);
        QCOMPARE(copy.error(), u"The picture could not be converted to PNG for this desktop"_s);
    }

    void whoNeedsACopyTellsThatThereIsNone_data()
    {
        QTest::addColumn<DesktopKind>("kind");
        QTest::newRow("Plasma") << DesktopKind::Plasma;
        QTest::newRow("the portal") << DesktopKind::Portal;
        QTest::newRow("sway") << DesktopKind::Sway;
        QTest::newRow("swaybg") << DesktopKind::Swaybg;
        QTest::newRow("Xfce") << DesktopKind::Xfce;
    }
    void whoNeedsACopyTellsThatThereIsNone()
    {
        QFETCH(DesktopKind, kind);
        const Picture withoutPixels{u"/a.webp"_s, "webp"_ba, {}};
        const auto backend = desktop::makeBackend(
            kind, {}, QDBusConnection(u"none"_s), std::make_shared<desktop::BackgroundProcesses>());
        const SetResult result
            = QCoro::waitFor(backend->setPicture(withoutPixels, Screen{u"left"_s, {0, 0, 80, 60}}));
        QVERIFY(!result);
        QCOMPARE(result.error(), u"The picture could not be converted to PNG for this desktop"_s);
    }

    void aDiskWithoutRoomIsAnErrorAndLeavesNoHalfCopy()
    {
        const Picture webp = picture(u"a.webp"_s, "webp", Qt::red);
        QVERIFY(copies().mkpath(u"."_s));
        const testlibs::SmallFiles limit(20);
        const auto copy = fileEveryDesktopReads(webp);
        QVERIFY(!copy);
        QCOMPARE(copy.error(), u"The picture could not be converted to PNG for this desktop"_s);
        QCOMPARE(copies().entryList(QDir::Files), QStringList());
    }
};

QTEST_GUILESS_MAIN(PngCopyTest)

#include "pngcopytest.moc"
