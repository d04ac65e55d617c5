#include "app/singleinstance.h"
#include "app/wallpaperapp.h"

#include "desktop/sessionbus.h"
#include "fakesessionmanager.h"
#include "settledbus.h"

#include <QGuiApplication>
#include <QTest>

using namespace Qt::StringLiterals;
using app::SingleInstance;
using app::WallpaperApp;

/// Two ways lead to the end of a session. Where it is announced through X11, which Qt listens to, a
/// program that can be asked over the bus as well would be asked twice.
class X11SessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QGuiApplication::setDesktopFileName(u"com.tarnel.Plenaura"_s); }
    void cleanup() { qunsetenv("SESSION_MANAGER"); }

    void theSessionIsJoinedInOneWayOnly_data();
    void theSessionIsJoinedInOneWayOnly();
};

void X11SessionTest::theSessionIsJoinedInOneWayOnly_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<QString>("registered");
    QTest::newRow("over the bus") << ""_ba << u"com.tarnel.Plenaura"_s;
    // Not tried any more: Qt has looked for it when it was started.
    QTest::newRow("through X11") << "local/here:@/tmp/.ICE-unix/1"_ba << QString();
}

void X11SessionTest::theSessionIsJoinedInOneWayOnly()
{
    QFETCH(const QByteArray, address);
    qputenv("SESSION_MANAGER", address);
    FakeSessionManager manager;
    SingleInstance instance;
    const WallpaperApp application(instance);
    letTheBusSettle();
    QTEST(manager.registered, "registered");

    manager.registered.clear();
    Q_EMIT desktop::SessionBus::shared()->returned();
    letTheBusSettle();
    QTEST(manager.registered, "registered");
}

QTEST_MAIN(X11SessionTest)
#include "x11sessiontest.moc"
