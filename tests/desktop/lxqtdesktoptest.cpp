#include "desktop/lxqtdesktop.h"

#include "desktop/screenchanges.h"
#include "desktop/systemdesktoppicture.h"
#include "errorof.h"
#include "fakelxqt.h"
#include "onscreen.h"
#include "placements.h"
#include "twoscreens.h"

#include <QCoroTask>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

using namespace Qt::StringLiterals;
using desktop::LxqtDesktop;
using desktop::readPicture;
using desktop::Screen;
using desktop::SetResult;

namespace {

SetResult set(const QString &file, const QString &screen = u"left"_s)
{
    LxqtDesktop lxqt(QDBusConnection::sessionBus());
    return QCoro::waitFor(lxqt.setPicture(readPicture(file).value(), Screen{screen, {}}));
}

SetResult followScreens()
{
    LxqtDesktop lxqt(QDBusConnection::sessionBus());
    return QCoro::waitFor(lxqt.followScreens());
}

bool paints()
{
    return QCoro::waitFor(LxqtDesktop::paints(QDBusConnection::sessionBus(), QDeadlineTimer(3000)));
}

QDir composedFolder()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation)
        + u"/composed/lxqt"_s);
}

QStringList composedFiles()
{
    return composedFolder().entryList({u"composed_*"_s}, QDir::Files);
}

QImage shown()
{
    return QImage(FakeLxqt::setting(u"Wallpaper"_s).toString());
}

/// As if the right screen had been smaller.
void rememberOtherScreens()
{
    QFile memory(composedFolder().filePath(u"shown.json"_s));
    QVERIFY(memory.open(QIODevice::ReadWrite));
    QByteArray text = memory.readAll();
    QVERIFY(text.contains("100,"));
    text.replace("100,", "50,");
    memory.seek(0);
    memory.resize(0);
    memory.write(text);
}

} // namespace

class LxqtDesktopTest : public QObject
{
    Q_OBJECT

private:
    PictureFolder m_folder{{160, 90}};

private Q_SLOTS:
    void init()
    {
        for (const char *name : {"Wallpaper", "BgColor", "PerScreenWallpaper"}) {
            FakeLxqt::writeSetting(QString::fromLatin1(name), {});
        }
        FakeLxqt::writeSetting(u"WallpaperMode"_s, u"stretch"_s);
        composedFolder().removeRecursively();
    }

    void theMainScreenChangesAndTheOtherKeepsItsPicture()
    {
        FakeLxqt fake(FakeLxqt::Obliging);
        FakeLxqt::writeSetting(u"BgColor"_s, u"#0000ff"_s);
        QCOMPARE(errorOf(set(m_folder.picture(u"red #1 ü.png"_s, Qt::red))), u"no error"_s);
        QCOMPARE(shown().size(), QSize(180, 60));
        QCOMPARE(shown().pixelColor(79, 30), QColor(Qt::red));
        QCOMPARE(shown().pixelColor(80, 30), QColor(Qt::blue));

        QCOMPARE(
            errorOf(set(m_folder.picture(u"yellow.png"_s, Qt::yellow), u"right"_s)), u"no error"_s);
        QCOMPARE(errorOf(set(m_folder.picture(u"green.webp"_s, Qt::green))), u"no error"_s);
        QVERIFY(shown().pixelColor(79, 30).green() > 240);
        QVERIFY(shown().pixelColor(79, 30).red() < 15);
        QCOMPARE(shown().pixelColor(80, 30), QColor(Qt::yellow));
    }

    void aPictureOverAllScreensIsCut()
    {
        FakeLxqt fake(FakeLxqt::Obliging);
        QImage halves(180, 60, QImage::Format_RGB32);
        halves.fill(Qt::red);
        for (int y = 0; y < 60; ++y) {
            for (int x = 80; x < 180; ++x) {
                halves.setPixelColor(x, y, x < 130 ? Qt::green : Qt::blue);
            }
        }
        const QString file = m_folder.filePath(u"halves.png"_s);
        QVERIFY(halves.save(file));
        FakeLxqt::writeSetting(u"Wallpaper"_s, file);
        QCOMPARE(errorOf(set(m_folder.picture(u"yellow.png"_s, Qt::yellow))), u"no error"_s);
        QCOMPARE(shown().copy(80, 0, 100, 60), halves.copy(80, 0, 100, 60));
        QCOMPARE(shown().pixelColor(79, 30), QColor(Qt::yellow));
    }

    void theModeMakesOnePictureSpanAllScreens_data()
    {
        QTest::addColumn<QVariant>("perScreen");
        QTest::addColumn<QString>("mode");
        QTest::newRow("one window over all screens") << QVariant(false) << u"stretch"_s;
        QTest::newRow("each screen by itself") << QVariant(true) << u"tile"_s;
    }
    void theModeMakesOnePictureSpanAllScreens()
    {
        QFETCH(QVariant, perScreen);
        FakeLxqt fake(FakeLxqt::Obliging);
        FakeLxqt::writeSetting(u"PerScreenWallpaper"_s, perScreen);
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red))), u"no error"_s);
        QTEST(fake.told.value(0).section(u':', 0, 0), "mode");
    }

    void theOtherScreensPictureIsPlacedAsBefore_data()
    {
        addPlacements({"none", "tile", "center", "fit", "stretch", "zoom"}, Qt::blue);
    }
    void theOtherScreensPictureIsPlacedAsBefore()
    {
        QFETCH(QString, placement);
        FakeLxqt fake(FakeLxqt::Obliging);
        FakeLxqt::writeSetting(u"PerScreenWallpaper"_s, true);
        FakeLxqt::writeSetting(u"BgColor"_s, u"#0000ff"_s);
        FakeLxqt::writeSetting(u"Wallpaper"_s, placedPicture(m_folder));
        FakeLxqt::writeSetting(u"WallpaperMode"_s, placement);
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red))), u"no error"_s);
        QTEST(seenOfPlaced(shown().copy(80, 0, 100, 60)), "seen");
    }

    void noRoomForAComposedPictureIsAnError()
    {
        FakeLxqt fake(FakeLxqt::Obliging);
        QVERIFY(QDir().mkpath(QFileInfo(composedFolder().path()).path()));
        QFile inTheWay(composedFolder().path());
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        const QString error = errorOf(set(m_folder.picture(u"red.png"_s, Qt::red)));
        QVERIFY(inTheWay.remove());
        QVERIFY2(
            error.startsWith(u"The picture of all screens cannot be saved: "_s), qPrintable(error));
        QCOMPARE(fake.told, QStringList());
    }

    void whatAllScreensShowAlikeIsSetAsItIs()
    {
        FakeLxqt fake(FakeLxqt::Obliging);
        FakeLxqt::writeSetting(u"PerScreenWallpaper"_s, true);
        FakeLxqt::writeSetting(u"WallpaperMode"_s, u"zoom"_s);
        const QString red = m_folder.picture(u"red.png"_s, Qt::red);
        QCOMPARE(errorOf(set(red)), u"no error"_s);
        QCOMPARE(errorOf(set(red, u"right"_s)), u"no error"_s);
        QCOMPARE(fake.told.value(1), u"zoom:"_s + red);
    }

    void atMostTwoComposedPicturesAreKept()
    {
        FakeLxqt fake(FakeLxqt::Obliging);
        for (int i = 0; i < 4; ++i) {
            QCOMPARE(errorOf(set(m_folder.picture(u"%1.png"_s.arg(i), Qt::red))), u"no error"_s);
            QVERIFY(composedFiles().contains(
                QFileInfo(FakeLxqt::setting(u"Wallpaper"_s).toString()).fileName()));
        }
        QCOMPARE(composedFiles().size(), 2);
        QSet<QString> names(fake.told.begin(), fake.told.end());
        QCOMPARE(names.size(), 4);
    }

    void aDeletedPictureStaysWhereItIsShown()
    {
        FakeLxqt fake(FakeLxqt::Obliging);
        const QString red = m_folder.picture(u"red.png"_s, Qt::red);
        QCOMPARE(errorOf(set(red, u"right"_s)), u"no error"_s);
        QVERIFY(QFile::remove(red));
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(
                errorOf(set(m_folder.picture(u"green%1.png"_s.arg(i), Qt::green))), u"no error"_s);
            QCOMPARE(shown().pixelColor(79, 30), QColor(Qt::green));
            QCOMPARE(shown().copy(80, 0, 100, 60), oneColour({100, 60}, Qt::red));
        }
        QCOMPARE(errorOf(set(m_folder.picture(u"green2.png"_s, Qt::green))), u"no error"_s);
        QCOMPARE(shown().copy(80, 0, 100, 60), oneColour({100, 60}, Qt::red));
    }

    void anotherScreenKeepsWhatItShowsWhenItsPictureIsOverwritten()
    {
        FakeLxqt fake(FakeLxqt::Obliging);
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red), u"right"_s)), u"no error"_s);
        m_folder.picture(u"red.png"_s, Qt::yellow);
        QCOMPARE(errorOf(set(m_folder.picture(u"green.png"_s, Qt::green))), u"no error"_s);
        QCOMPARE(shown().pixelColor(79, 30), QColor(Qt::green));
        QCOMPARE(shown().copy(80, 0, 100, 60), oneColour({100, 60}, Qt::red));
    }

    void changedScreensGetTheirPicturesAgain()
    {
        FakeLxqt fake(FakeLxqt::Obliging);
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red))), u"no error"_s);
        QCOMPARE(
            errorOf(set(m_folder.picture(u"blue.png"_s, Qt::blue), u"right"_s)), u"no error"_s);
        QCOMPARE(errorOf(followScreens()), u"no error"_s);
        QCOMPARE(fake.told.size(), 2);

        rememberOtherScreens();
        QCOMPARE(errorOf(followScreens()), u"no error"_s);
        QCOMPARE(fake.told.size(), 3);
        QCOMPARE(shown().copy(0, 0, 80, 60), oneColour({80, 60}, Qt::red));
        QCOMPARE(shown().copy(80, 0, 100, 60), oneColour({100, 60}, Qt::blue));
        QCOMPARE(errorOf(followScreens()), u"no error"_s);
        QCOMPARE(fake.told.size(), 3);
    }

    void aPictureOfOthersIsNotFollowed()
    {
        FakeLxqt fake(FakeLxqt::Obliging);
        QCOMPARE(errorOf(followScreens()), u"no error"_s);
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red))), u"no error"_s);
        FakeLxqt::writeSetting(u"Wallpaper"_s, u"/usr/share/other.png"_s);
        QCOMPARE(errorOf(followScreens()), u"no error"_s);
        QCOMPARE(fake.told.size(), 1);
    }

    void theProfileThatWasChangedLastCounts()
    {
        FakeLxqt fake(FakeLxqt::Obliging);
        QDir folder(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
            + u"/pcmanfm-qt"_s);
        const auto put = [&](const QString &profile, QColor colour, int secondsLater) {
            const QString name = folder.filePath(profile + u"/settings.conf"_s);
            folder.mkpath(profile);
            QSettings(name, QSettings::IniFormat).setValue(u"Desktop/BgColor"_s, colour.name());
            QFile file(name);
            return file.open(QIODevice::ReadWrite)
                && file.setFileTime(QDateTime::currentDateTime().addSecs(secondsLater),
                    QFileDevice::FileModificationTime);
        };
        QVERIFY(folder.mkpath(u"empty"_s));
        QVERIFY(put(u"a"_s, Qt::green, 20));
        QVERIFY(put(u"b"_s, Qt::yellow, 30));
        QVERIFY(put(u"c"_s, Qt::green, 10));
        // The fake has another profile, so that what is read back differs.
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red))),
            u"The desktop did not keep the picture"_s);
        for (const QString &profile : {u"empty"_s, u"a"_s, u"b"_s, u"c"_s}) {
            QVERIFY(QDir(folder.filePath(profile)).removeRecursively());
        }
        QCOMPARE(
            QImage(fake.told.value(0).section(u':', 1)).pixelColor(130, 30), QColor(Qt::yellow));
    }

    void aFileManagerThatIsNoDesktopDoesNotPaint()
    {
        QVERIFY(!paints());
        FakeLxqt fake(FakeLxqt::Obliging);
        QVERIFY(paints());
        fake.isDesktop = false;
        QVERIFY(!paints());
    }

    void anIgnoredPictureIsAnError()
    {
        FakeLxqt fake(FakeLxqt::Forgetful);
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red))),
            u"The desktop did not keep the picture"_s);
    }

    void aScreenThatIsGoneIsAnError()
    {
        FakeLxqt fake(FakeLxqt::Obliging);
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red), u"middle"_s)),
            u"The screen is no longer there"_s);
        QCOMPARE(fake.told, QStringList());
    }

    void aMissingDesktopIsAnError()
    {
        const QString error = errorOf(set(m_folder.picture(u"red.png"_s, Qt::red)));
        QVERIFY2(error.startsWith(u"The desktop is not running"_s), qPrintable(error));
    }

    void whoWasAskedBeforeHasLessTimeToAnswer()
    {
        FakeLxqt fake(FakeLxqt::Slow);
        LxqtDesktop asked(QDBusConnection::sessionBus(), std::chrono::milliseconds(100));
        const desktop::Picture red = readPicture(m_folder.picture(u"red.png"_s, Qt::red)).value();
        const QString error = errorOf(QCoro::waitFor(asked.setPicture(red, Screen{u"left"_s, {}})));
        QVERIFY2(
            error.startsWith(u"The desktop did not answer within 3 seconds"_s), qPrintable(error));
        QCOMPARE(errorOf(set(red.file)), u"no error"_s);
    }

    void aFileManagerThatComesLaterIsGivenWhatTheScreensShouldShow()
    {
        {
            FakeLxqt fake(FakeLxqt::Obliging);
            QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red))), u"no error"_s);
        }
        rememberOtherScreens();
        desktop::SystemDesktopPicture system;
        const desktop::ScreenChanges start(QDBusConnection::sessionBus(), {});
        QVERIFY(QSignalSpy(&start, &desktop::ScreenChanges::settled).wait());
        // Comes after what is done at the start, as changes wait for each other.
        QVERIFY(!QCoro::waitFor(system.setPicture(u"missing.png"_s, Screen{u"left"_s, {}})));
        FakeLxqt fake(FakeLxqt::Obliging);
        QTRY_COMPARE(fake.told.size(), 1);
        QTRY_COMPARE(shown().size(), QSize(180, 60));
    }

    void aDesktopThatHangsEndsAfterThreeSeconds()
    {
        FakeLxqt fake(FakeLxqt::Silent);
        QElapsedTimer clock;
        clock.start();
        const QString error = errorOf(set(m_folder.picture(u"red.png"_s, Qt::red)));
        QVERIFY2(
            error.startsWith(u"The desktop did not answer within 3 seconds"_s), qPrintable(error));
        QVERIFY(clock.elapsed() > 2800);
    }
};

int main(int argc, char **argv)
{
    const TwoScreens screens;
    QGuiApplication application(argc, argv);
    LxqtDesktopTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "lxqtdesktoptest.moc"
