#include "desktop/sessionbus.h"

#include "desktop/buscall.h"
#include "desktop/gnomedisplays.h"
#include "desktop/portaldesktop.h"
#include "desktop/systemdesktoppicture.h"
#include "errorof.h"
#include "fakemutter.h"
#include "fakexfce.h"
#include "mortalbus.h"
#include "testlibs/belongings.h"

#include <QCoroTask>
#include <QGuiApplication>
#include <QImage>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using desktop::SessionBus;
using desktop::SystemDesktopPicture;
using testlibs::Belongings;

namespace {

const desktop::Screen screen{u"left"_s, {0, 0, 800, 600}};

} // namespace

/// The bus ends, and is there again.
class SessionBusTest : public QObject
{
    Q_OBJECT

public:
    explicit SessionBusTest(MortalBus &bus) : m_bus(bus) { }

private Q_SLOTS:
    void initTestCase()
    {
        QImage image(16, 9, QImage::Format_RGB32);
        image.fill(Qt::red);
        QVERIFY(image.save(m_picture));
    }

    void allOfTheProgramSharesOne()
    {
        auto held = SessionBus::shared();
        QCOMPARE(SessionBus::shared(), held);
        const QPointer<SessionBus> bus = held.get();
        held.reset();
        QVERIFY(!bus);
    }

    void itReturnsAsOftenAsItEnds()
    {
        const SessionBus bus;
        QSignalSpy returned(&bus, &SessionBus::returned);
        QTRY_VERIFY(bus.connection().isConnected());
        for (int i = 1; i <= 3; ++i) {
            m_bus.end();
            QTRY_VERIFY(!bus.connection().isConnected());
            m_bus.start();
            QTRY_COMPARE(returned.count(), i);
            QVERIFY(bus.connection().isConnected());
        }
    }

    void waitingForItGathersNothing()
    {
        const SessionBus bus;
        QTRY_VERIFY(bus.connection().isConnected());
        renew(bus);
        const Belongings before = Belongings::now();
        for (int i = 0; i < 3; ++i) {
            renew(bus);
        }
        const Belongings after = Belongings::now();
        QVERIFY(after.files <= before.files);
        QVERIFY(after.threads <= before.threads);
    }

    void theNextPictureIsSetOnTheNewOne()
    {
        SystemDesktopPicture desktop;
        {
            const FakeXfce xfce(FakeXfce::Obliging);
            QTRY_COMPARE(set(desktop), u"no error"_s);
        }
        m_bus.end();
        QTRY_COMPARE(set(desktop), u"The session bus cannot be reached"_s);
        m_bus.start();
        const FakeXfce xfce(FakeXfce::Obliging);
        QTRY_COMPARE(set(desktop), u"no error"_s);
        QVERIFY(!xfce.changes.isEmpty());
    }

    void thePrimaryScreenIsFollowedOnTheNewOne()
    {
        SessionBus bus;
        QTRY_VERIFY(bus.connection().isConnected());
        desktop::GnomePrimaryScreen primary(bus.connection());
        connect(&bus, &SessionBus::returned, &primary, [&] { primary.moveTo(bus.connection()); });
        m_bus.end();
        QTRY_VERIFY(!bus.connection().isConnected());
        m_bus.start();
        // Before the program has found the bus again.
        FakeMutter mutter(u"left"_s);
        QTRY_COMPARE(primary.name(), u"left"_s);
        mutter.changePrimary(u"right"_s);
        QTRY_COMPARE(primary.name(), u"right"_s);
    }

    void everyCallEndsOnceWhenTheBusEnds()
    {
        const SessionBus bus;
        QTRY_VERIFY(bus.connection().isConnected());
        QSignalSpy returned(&bus, &SessionBus::returned);
        const FakeXfce xfce(FakeXfce::Silent);
        constexpr int calls = 500;
        int ended = 0;
        for (int i = 0; i < calls; ++i) {
            ask(bus.connection()).then([&ended](const desktop::BusResult &result) {
                QVERIFY(!result);
                ++ended;
            });
        }
        m_bus.end();
        m_bus.start();
        QTRY_COMPARE(returned.count(), 1);
        QTRY_COMPARE(ended, calls);
    }

    void aPortalOnABusThatEndedIsAnError()
    {
        const SessionBus bus;
        QTRY_VERIFY(bus.connection().isConnected());
        const QDBusConnection ended = bus.connection();
        m_bus.end();
        QTRY_VERIFY(!ended.isConnected());
        desktop::PortalDesktop portal(ended);
        QCOMPARE(errorOf(QCoro::waitFor(portal.setPicture({m_picture, "png", {}}, screen))),
            u"The session bus cannot be reached: Not connected to D-Bus server"_s);
        m_bus.start();
    }

private:
    void renew(const SessionBus &bus)
    {
        QSignalSpy returned(&bus, &SessionBus::returned);
        m_bus.end();
        QTRY_VERIFY(!bus.connection().isConnected());
        m_bus.start();
        QTRY_COMPARE(returned.count(), 1);
    }

    static QCoro::Task<desktop::BusResult> ask(const QDBusConnection &bus)
    {
        auto question = QDBusMessage::createMethodCall(u"org.xfce.Xfconf"_s, u"/org/xfce/Xfconf"_s,
            u"org.xfce.Xfconf"_s, u"GetAllProperties"_s);
        question.setArguments({u"xfce4-desktop"_s, u"/backdrop"_s});
        return desktop::callBus(bus, question, QDeadlineTimer(desktop::unhurriedTime));
    }

    QString set(SystemDesktopPicture &desktop) const
    {
        return errorOf(QCoro::waitFor(desktop.setPicture(m_picture, screen)));
    }

    MortalBus &m_bus;
    QTemporaryDir m_folder;
    const QString m_picture = m_folder.filePath(u"picture.png"_s);
};

int main(int argc, char **argv)
{
    MortalBus bus;
    const QGuiApplication application(argc, argv);
    SessionBusTest test(bus);
    return QTest::qExec(&test, argc, argv);
}

#include "sessionbustest.moc"
