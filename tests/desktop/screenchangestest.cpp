#include "desktop/screenchanges.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using desktop::ScreenChanges;

namespace {

const QString painter = u"org.example.Painter"_s;

} // namespace

class ScreenChangesTest : public QObject
{
    Q_OBJECT

private:
    QDBusConnection m_bus = QDBusConnection::sessionBus();

private Q_SLOTS:
    void itIsToldOnceAtTheBeginning()
    {
        const ScreenChanges changes(m_bus, {painter});
        QSignalSpy settled(&changes, &ScreenChanges::settled);
        QVERIFY(settled.wait());
        QVERIFY(!settled.wait(1300));
    }

    void severalChangesInARowAreToldOnce()
    {
        const ScreenChanges changes(m_bus, {painter});
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
        const ScreenChanges changes(m_bus, {painter});
        QSignalSpy settled(&changes, &ScreenChanges::settled);
        QVERIFY(settled.wait());
        Q_EMIT qGuiApp->screenAdded(QGuiApplication::primaryScreen());
        QVERIFY(settled.wait());
    }

    void aPainterThatCameLaterIsToldOf()
    {
        const ScreenChanges changes(m_bus, {painter});
        QSignalSpy settled(&changes, &ScreenChanges::settled);
        QVERIFY(settled.wait());
        QVERIFY(m_bus.registerService(u"org.example.Other"_s));
        QVERIFY(m_bus.registerService(painter));
        QVERIFY(settled.wait());
        QVERIFY(m_bus.unregisterService(painter));
    }

    void withoutABusScreensAreWatchedAllTheSame()
    {
        const ScreenChanges changes(QDBusConnection(u"none"_s), {painter});
        QSignalSpy settled(&changes, &ScreenChanges::settled);
        QVERIFY(settled.wait());
    }
};

QTEST_MAIN(ScreenChangesTest)

#include "screenchangestest.moc"
