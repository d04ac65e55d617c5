#include "desktop/screenchanges.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

using desktop::ScreenChanges;

class ScreenChangesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itIsToldOnceAtTheBeginning()
    {
        const ScreenChanges changes;
        QSignalSpy settled(&changes, &ScreenChanges::settled);
        QVERIFY(settled.wait());
        QVERIFY(!settled.wait(1300));
    }

    void severalChangesInARowAreToldOnce()
    {
        const ScreenChanges changes;
        QSignalSpy settled(&changes, &ScreenChanges::settled);
        QVERIFY(settled.wait());
        for (int i = 0; i < 5; ++i) {
            Q_EMIT QGuiApplication::primaryScreen()->geometryChanged({});
            Q_EMIT qGuiApp->screenRemoved(QGuiApplication::primaryScreen());
            QVERIFY(!settled.wait(200));
        }
        QVERIFY(settled.wait());
        QVERIFY(!settled.wait(1300));
        QCOMPARE(settled.size(), 2);
    }

    void aScreenThatCameLaterIsWatched()
    {
        const ScreenChanges changes;
        QSignalSpy settled(&changes, &ScreenChanges::settled);
        QVERIFY(settled.wait());
        Q_EMIT qGuiApp->screenAdded(QGuiApplication::primaryScreen());
        QVERIFY(settled.wait());
    }
};

QTEST_MAIN(ScreenChangesTest)

#include "screenchangestest.moc"
