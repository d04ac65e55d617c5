#include "desktop/plasmadesktop.h"

#include "fakeplasma.h"

#include <QCoroTask>
#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;
using desktop::Picture;
using desktop::PlasmaDesktop;
using desktop::Screen;
using desktop::SetResult;

namespace {

const Screen leftScreen{u"HDMI-1"_s, {0, 0, 800, 600}};
const Screen rightScreen{u"DP-1"_s, {800, -20, 800, 600}};
const QString untouched = u"org.kde.slideshow undefined"_s;

QString errorOf(const Screen &screen = leftScreen, const QString &file = u"/a b.png"_s,
    const QDBusConnection &bus = QDBusConnection::sessionBus())
{
    PlasmaDesktop plasma(bus);
    const SetResult result = QCoro::waitFor(plasma.setPicture(Picture{file, "png"_ba, {}}, screen));
    return result ? u"no error"_s : result.error();
}

} // namespace

class PlasmaDesktopTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyTheDesktopOfTheScreenIsChanged()
    {
        FakePlasma plasma(FakePlasma::Obliging);
        QCOMPARE(errorOf(leftScreen), u"no error"_s);
        QCOMPARE(plasma.pictures(),
            QStringList({untouched, u"org.kde.image file:///a%20b.png"_s, untouched}));
        QCOMPARE(errorOf(rightScreen, u"/c.png"_s), u"no error"_s);
        QCOMPARE(plasma.pictures(),
            QStringList({untouched, u"org.kde.image file:///a%20b.png"_s,
                u"org.kde.image file:///c.png"_s}));
    }

    void everyDesktopOfTheScreenIsChanged()
    {
        FakePlasma plasma(FakePlasma::Obliging);
        plasma.run(u"all.push(new Desktop(0))"_s);
        QCOMPARE(errorOf(leftScreen, u"/a.png"_s), u"no error"_s);
        const QString changed = u"org.kde.image file:///a.png"_s;
        QCOMPARE(plasma.pictures(), QStringList({untouched, changed, untouched, changed}));
    }

    void aPathIsTakenLetterByLetter_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("url");
        QTest::newRow("quotes") << u"/\"a'.png"_s << u"file:///%22a'.png"_s;
        QTest::newRow("a backslash") << u"/a\\.png"_s << u"file:///a%5C.png"_s;
        QTest::newRow("what ends a path") << u"/a#b?c.png"_s << u"file:///a%23b%3Fc.png"_s;
        QTest::newRow("per cents") << u"/a%20%1%2.png"_s << u"file:///a%2520%251%252.png"_s;
        QTest::newRow("the end of a line") << u"/a\nb.png"_s << u"file:///a%0Ab.png"_s;
        QTest::newRow("other letters") << u"/ü€.png"_s << u"file:///%C3%BC%E2%82%AC.png"_s;
        QTest::newRow("a script") << u"/'];print(7);//.png"_s << u"file:///'];print(7);//.png"_s;
    }
    void aPathIsTakenLetterByLetter()
    {
        QFETCH(QString, file);
        QFETCH(QString, url);
        FakePlasma plasma(FakePlasma::Obliging);
        QCOMPARE(errorOf(leftScreen, file), u"no error"_s);
        QCOMPARE(plasma.pictures().value(1), u"org.kde.image "_s + url);
    }

    void lookingChangesNothing()
    {
        FakePlasma plasma(FakePlasma::Obliging);
        const QString look = PlasmaDesktop::script(PlasmaDesktop::Task::Look, u"/a.png"_s, {0, 0});
        QCOMPARE(plasma.run(look), u"0"_s);
        QCOMPARE(plasma.pictures(), QStringList({untouched, untouched, untouched}));
        QCOMPARE(errorOf(leftScreen, u"/a.png"_s), u"no error"_s);
        QCOMPARE(plasma.run(look), u"1"_s);
    }

    void aPictureBehindAnotherKindOfBackgroundIsNotShown()
    {
        FakePlasma plasma(FakePlasma::Obliging);
        QCOMPARE(errorOf(leftScreen, u"/a.png"_s), u"no error"_s);
        plasma.run(u"all[1].wallpaperPlugin = 'org.kde.color'"_s);
        const QString look = PlasmaDesktop::script(PlasmaDesktop::Task::Look, u"/a.png"_s, {0, 0});
        QCOMPARE(plasma.run(look), u"0"_s);
    }

    void aScreenWithoutADesktopIsAnError()
    {
        FakePlasma plasma(FakePlasma::Obliging);
        QCOMPARE(errorOf(Screen{u"HDMI-1"_s, {1, 0, 800, 600}}),
            u"The desktop shows nothing on the main screen"_s);
        QCOMPARE(plasma.pictures(), QStringList({untouched, untouched, untouched}));
    }

    void aChangeThatWasNotKeptIsAnError()
    {
        FakePlasma plasma(FakePlasma::Forgetful);
        QCOMPARE(errorOf(), u"The desktop did not keep the picture"_s);
    }

    void aScriptThatBreaksIsAPlainSentenceAndItsFirstLine()
    {
        FakePlasma plasma(FakePlasma::Breaking);
        QCOMPARE(errorOf(), u"The desktop refused the picture: Error: no such thing at line 3"_s);
    }

    void anAnswerThatIsNoNumberIsAnError()
    {
        FakePlasma plasma(FakePlasma::Mumbling);
        QCOMPARE(errorOf(), u"The desktop refused the picture"_s);
    }

    void aDesktopThatDoesNotAnswerEndsAfterThreeSeconds()
    {
        FakePlasma plasma(FakePlasma::Silent);
        QElapsedTimer clock;
        clock.start();
        const QString error = errorOf();
        const qint64 elapsed = clock.elapsed();
        QVERIFY2(error == u"The desktop did not answer within 3 seconds"_s, qPrintable(error));
        // QtDBus's clock is a coarse one.
        QVERIFY2(elapsed > 2800 && elapsed < 5000, qPrintable(QString::number(elapsed)));
    }

    void aDesktopThatEndsWithoutAnsweringIsAnError()
    {
        FakePlasma plasma(FakePlasma::Dying);
        const QString error = errorOf();
        QVERIFY2(error == u"The desktop ended without answering"_s, qPrintable(error));
    }

    void aMissingPainterIsAnError()
    {
        const QString error = errorOf();
        QVERIFY2(error.startsWith(u"The desktop is not running: "_s), qPrintable(error));
    }

    void noBusIsAnError()
    {
        const QString error
            = errorOf(leftScreen, u"/a.png"_s, QDBusConnection(u"never connected"_s));
        QVERIFY2(error.startsWith(u"The session bus cannot be reached: "_s), qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(PlasmaDesktopTest)

#include "plasmadesktoptest.moc"
