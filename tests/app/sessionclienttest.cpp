#include "app/sessionclient.h"
#include "app/appdelegate.h"

#include "fakesessionmanager.h"
#include "settledbus.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using app::AppDelegate;
using app::SessionClient;

class SessionClientTest : public QObject
{
    Q_OBJECT

private:
    AppDelegate m_delegate;

private Q_SLOTS:
    void initTestCase() { QGuiApplication::setDesktopFileName(u"com.tarnel.Plenaura"_s); }

    void theEndOfTheSessionClosesTheWindowsAndIsRefused()
    {
        FakeSessionManager manager;
        const QSignalSpy closing(&m_delegate, &AppDelegate::closeWindowsRequested);
        SessionClient client(m_delegate);
        client.watch();
        QTRY_COMPARE(manager.registered, u"com.tarnel.Plenaura"_s);
        QTRY_VERIFY(client.isRegistered());
        Q_EMIT manager.client.QueryEndSession(0);
        QTRY_COMPARE(manager.client.answers, QList{false});
        QCOMPARE(closing.count(), 1);
    }

    void aSessionManagerThatComesLaterIsFound()
    {
        SessionClient client(m_delegate);
        client.watch();
        FakeSessionManager manager;
        QTRY_COMPARE(manager.registered, u"com.tarnel.Plenaura"_s);
    }

    void theEndOfTheSessionIsAgreedToOnTheWayOut()
    {
        FakeSessionManager manager;
        AppDelegate delegate;
        SessionClient client(delegate);
        client.watch();
        QTRY_VERIFY(client.isRegistered());
        delegate.setShouldReallyQuit();
        Q_EMIT manager.client.QueryEndSession(0);
        QTRY_COMPARE(manager.client.answers, QList{true});
    }

    void anEndThatNobodyAsksAboutEndsTheProgram()
    {
        FakeSessionManager manager;
        AppDelegate delegate;
        SessionClient client(delegate);
        client.watch();
        QTRY_VERIFY(client.isRegistered());
        Q_EMIT manager.client.EndSession(0);
        QTRY_COMPARE(manager.client.answers, QList{true});
        QVERIFY(delegate.shouldReallyQuit());
    }

    void beingStoppedEndsTheProgram()
    {
        FakeSessionManager manager;
        AppDelegate delegate;
        SessionClient client(delegate);
        client.watch();
        QTRY_VERIFY(client.isRegistered());
        Q_EMIT manager.client.Stop();
        QTRY_VERIFY(delegate.shouldReallyQuit());
    }

    void aClientThatIsGoneWhenItIsRegisteredHearsNothing()
    {
        FakeSessionManager manager;
        auto client = std::make_unique<SessionClient>(m_delegate);
        client->watch();
        client.reset();
        QTRY_COMPARE(manager.registered, u"com.tarnel.Plenaura"_s);
        letTheBusSettle();
        Q_EMIT manager.client.QueryEndSession(0);
        letTheBusSettle();
        QVERIFY(manager.client.answers.isEmpty());
    }

    void withoutX11ItAsksNobody()
    {
        qputenv("SESSION_MANAGER", "local/here:@/tmp/.ICE-unix/1");
        QVERIFY(!SessionClient::isAskedByX11());
        qunsetenv("SESSION_MANAGER");
    }
};

QTEST_MAIN(SessionClientTest)

#include "sessionclienttest.moc"
