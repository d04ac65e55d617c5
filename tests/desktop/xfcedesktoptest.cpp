#include "desktop/xfcedesktop.h"

#include "errorof.h"
#include "fakexfce.h"

#include <QCoroTask>
#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using desktop::Picture;
using desktop::Screen;
using desktop::SetResult;
using desktop::XfceDesktop;

namespace {

const Screen mainScreen{u"HDMI-1"_s, {0, 0, 800, 600}};
const QString workspace0 = u"/backdrop/screen0/monitorHDMI-1/workspace0"_s;
const QString workspace1 = u"/backdrop/screen0/monitorHDMI-1/workspace1"_s;
const QString file = u"/home/me/my pictures/wall #1 ü.png"_s;

QVariantMap paintedProfile()
{
    return {
        {workspace0 + u"/last-image"_s, u"/usr/share/old.png"_s},
        {workspace0 + u"/image-style"_s, 5},
        {workspace1 + u"/last-image"_s, u"/usr/share/old.png"_s},
        {workspace1 + u"/image-style"_s, 5},
        {u"/backdrop/screen0/monitorDP-1/workspace0/last-image"_s, u"/usr/share/old.png"_s},
        {u"/backdrop/single-workspace-mode"_s, true},
    };
}

SetResult set()
{
    XfceDesktop xfce(QDBusConnection::sessionBus());
    return QCoro::waitFor(xfce.setPicture(Picture{file, "png"_ba, {}}, mainScreen));
}

} // namespace

class XfceDesktopTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void workspacesOfTheMonitorAreFound_data()
    {
        QTest::addColumn<QStringList>("properties");
        QTest::addColumn<QStringList>("workspaces");

        const QStringList both{workspace0, workspace1};
        QTest::newRow("each once, though it has many properties")
            << QStringList{workspace1 + u"/last-image"_s, workspace0 + u"/last-image"_s,
                   workspace0 + u"/image-style"_s, workspace0 + u"/color-style"_s}
            << both;
        QTest::newRow("also without a picture so far")
            << QStringList{workspace0 + u"/image-style"_s} << QStringList{workspace0};
        QTest::newRow("not those of a monitor with a longer name") << QStringList{
            u"/backdrop/screen0/monitorHDMI-10/workspace7/last-image"_s,
            workspace0 + u"/last-image"_s} << QStringList{workspace0};
        QTest::newRow("a new monitor has the workspaces of the others") << QStringList{
            u"/backdrop/screen0/monitorDP-1/workspace0/last-image"_s,
            u"/backdrop/screen0/monitorDP-1/workspace1/last-image"_s} << both;
        QTest::newRow("a new profile has the first one")
            << QStringList() << QStringList{workspace0};
        QTest::newRow("what is no workspace does not count") << QStringList{
            u"/backdrop/single-workspace-mode"_s,
            u"/backdrop/screen0/monitorHDMI-1/image-path"_s} << QStringList{workspace0};
    }
    void workspacesOfTheMonitorAreFound()
    {
        QFETCH(QStringList, properties);
        QTEST(XfceDesktop::workspacePaths(properties, mainScreen.name), "workspaces");
    }

    void aMonitorsNameIsNoPattern()
    {
        QCOMPARE(XfceDesktop::workspacePaths(
                     {u"/backdrop/screen0/monitorDPx1/workspace3/last-image"_s,
                         u"/backdrop/screen0/monitorDP.1/workspace0/last-image"_s},
                     u"DP.1"_s),
            QStringList{u"/backdrop/screen0/monitorDP.1/workspace0"_s});
    }

    void twoStylesDoNotShowThePictureOnOneMonitor()
    {
        for (int style = 0; style <= 6; ++style) {
            QCOMPARE(XfceDesktop::isStyleForOneMonitor(style), style != 0 && style != 6);
        }
        QVERIFY(!XfceDesktop::isStyleForOneMonitor(u"nonsense"_s));
    }

    void everyWorkspaceOfTheMonitorGetsThePicture()
    {
        FakeXfce fake(FakeXfce::Obliging);
        fake.properties = paintedProfile();
        QCOMPARE(errorOf(set()), u"no error"_s);
        QCOMPARE(fake.changes,
            QStringList({workspace0 + u"/last-image=QString:"_s + file,
                workspace1 + u"/last-image=QString:"_s + file}));
    }

    void aStyleThatHidesThePictureIsChanged_data()
    {
        QTest::addColumn<int>("style");
        QTest::newRow("none") << 0;
        QTest::newRow("spanning all screens") << 6;
    }
    void aStyleThatHidesThePictureIsChanged()
    {
        QFETCH(int, style);
        FakeXfce fake(FakeXfce::Obliging);
        fake.properties = paintedProfile();
        fake.properties[workspace1 + u"/image-style"_s] = style;
        QCOMPARE(errorOf(set()), u"no error"_s);
        QCOMPARE(fake.changes,
            QStringList({workspace0 + u"/last-image=QString:"_s + file,
                workspace1 + u"/last-image=QString:"_s + file,
                workspace1 + u"/image-style=int:5"_s}));
    }

    void aNewProfileGetsItsFirstPicture()
    {
        FakeXfce fake(FakeXfce::Obliging);
        QCOMPARE(errorOf(set()), u"no error"_s);
        QCOMPARE(fake.properties.value(workspace0 + u"/last-image"_s), file);
    }

    void aRefusalIsAPlainSentenceAndTheServicesOwnFirstLine()
    {
        FakeXfce fake(FakeXfce::Refusing);
        fake.properties = paintedProfile();
        QCOMPARE(errorOf(set()), u"The desktop refused the picture: The property is locked"_s);
        QCOMPARE(fake.changes.size(), 1);
    }

    void aChangeThatWasNotKeptIsAnError()
    {
        FakeXfce fake(FakeXfce::Forgetful);
        fake.properties = paintedProfile();
        QCOMPARE(errorOf(set()), u"The desktop did not keep the picture"_s);
    }

    void aDesktopThatDoesNotAnswerEndsAfterThreeSeconds_data()
    {
        QTest::addColumn<FakeXfce::Manner>("manner");
        QTest::newRow("to the first call") << FakeXfce::Silent;
        QTest::newRow("to all calls together") << FakeXfce::Slow;
    }
    void aDesktopThatDoesNotAnswerEndsAfterThreeSeconds()
    {
        QFETCH(FakeXfce::Manner, manner);
        FakeXfce fake(manner);
        fake.properties = paintedProfile();
        int turns = 0;
        QTimer eventLoop;
        connect(&eventLoop, &QTimer::timeout, this, [&turns] { ++turns; });
        eventLoop.start(10);
        QElapsedTimer clock;
        clock.start();

        const QString error = errorOf(set());

        const qint64 elapsed = clock.elapsed();
        QVERIFY2(error == u"The desktop did not answer within 3 seconds"_s, qPrintable(error));
        // QtDBus's clock is a coarse one.
        QVERIFY2(elapsed > 2800 && elapsed < 5000, qPrintable(QString::number(elapsed)));
        QVERIFY2(turns > 100, qPrintable(QString::number(turns)));
    }

    void aDesktopThatEndsWithoutAnsweringIsAnError()
    {
        FakeXfce fake(FakeXfce::Dying);
        const QString error = errorOf(set());
        QVERIFY2(error == u"The desktop ended without answering"_s, qPrintable(error));
    }

    void aMissingPainterIsAnErrorAndNothingIsStarted()
    {
        const QString error = errorOf(set());
        QVERIFY2(error.startsWith(u"The desktop is not running: "_s), qPrintable(error));
        const QDBusConnectionInterface *bus = QDBusConnection::sessionBus().interface();
        QVERIFY(!bus->isServiceRegistered(u"org.xfce.Xfconf"_s));
    }

    void noBusIsAnError()
    {
        XfceDesktop xfce(QDBusConnection(u"never connected"_s));
        const SetResult result
            = QCoro::waitFor(xfce.setPicture(Picture{file, "png"_ba, {}}, mainScreen));
        const QString error = errorOf(result);
        QVERIFY2(error.startsWith(u"The session bus cannot be reached: "_s), qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(XfceDesktopTest)

#include "xfcedesktoptest.moc"
