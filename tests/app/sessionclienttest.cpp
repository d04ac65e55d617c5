#include "app/sessionclient.h"
#include "app/appdelegate.h"

#include <QApplication>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using app::AppDelegate;
using app::SessionClient;

/// What the session manager has for its client.
class FakeClient : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.SessionManager.ClientPrivate")

public:
    QList<bool> answers;

public Q_SLOTS:
    void EndSessionResponse(bool agrees, const QString & /*reason*/) { answers << agrees; }

Q_SIGNALS:
    void QueryEndSession(uint flags);
    void EndSession(uint flags);
    void Stop();
};

/// A session manager, on a connection of its own.
class FakeSessionManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.SessionManager")

public:
    FakeSessionManager() : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, name))
    {
        m_bus.registerObject(u"/org/gnome/SessionManager"_s, this, QDBusConnection::ExportAllSlots);
        m_bus.registerObject(clientPath, &client,
            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
        m_bus.registerService(u"org.gnome.SessionManager"_s);
    }
    ~FakeSessionManager() override { QDBusConnection::disconnectFromBus(name); }

    FakeClient client;
    QString registered;

public Q_SLOTS:
    QDBusObjectPath RegisterClient(const QString &appId, const QString & /*startupId*/)
    {
        registered = appId;
        return QDBusObjectPath(clientPath);
    }

private:
    inline static const QString name = u"session manager"_s;
    inline static const QString clientPath = u"/org/gnome/SessionManager/Client7"_s;

    QDBusConnection m_bus;
};

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
};

QTEST_MAIN(SessionClientTest)

#include "sessionclienttest.moc"
