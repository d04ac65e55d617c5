#include "desktop/portaldesktop.h"

#include "desktop/buscall.h"

#include <QCoroTask>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QDeadlineTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <optional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using desktop::Picture;
using desktop::PortalDesktop;
using desktop::SetResult;

namespace {

const QString busName = u"the fake portal"_s;

} // namespace

/// Stands on the session bus where the portal would, and reads what it is handed.
class FakePortal : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Wallpaper")

public:
    enum Order {
        ResponseFirst,
        ResponseLast,
    };

    /// Without a @p response, there is none.
    explicit FakePortal(std::optional<uint> response, Order order = ResponseLast)
        : m_response(response), m_order(order),
          m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, busName))
    {
        if (!m_bus.registerObject(
                u"/org/freedesktop/portal/desktop"_s, this, QDBusConnection::ExportAllSlots)
            || !m_bus.registerService(u"org.freedesktop.portal.Desktop"_s)) {
            qFatal("The fake needs a bus of its own.");
        }
    }
    ~FakePortal() override { QDBusConnection::disconnectFromBus(busName); }

    void respond(uint code)
    {
        QDBusMessage response = QDBusMessage::createSignal(
            m_request, u"org.freedesktop.portal.Request"_s, u"Response"_s);
        response.setArguments({code, QVariantMap()});
        m_bus.send(response);
    }

    /// The name of the error by which it says no to the call itself; if any.
    QString refusal;
    QByteArray content;
    QVariantMap options;

public Q_SLOTS:
    QDBusObjectPath SetWallpaperFile(
        const QString & /*parent*/, const QDBusUnixFileDescriptor &file, const QVariantMap &given)
    {
        if (!refusal.isEmpty()) {
            sendErrorReply(refusal, u"in its own words"_s);
            return {};
        }
        QFile opened;
        if (opened.open(file.fileDescriptor(), QIODevice::ReadOnly)) {
            content = opened.readAll();
        }
        options = given;
        m_request = u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(
            message().service().mid(1).replace(u'.', u'_'), given[u"handle_token"_s].toString());
        if (m_response && m_order == ResponseFirst) {
            respond(*m_response);
        } else if (m_response) {
            setDelayedReply(true);
            m_bus.send(message().createReply(QVariant::fromValue(QDBusObjectPath(m_request))));
            respond(*m_response);
        }
        return QDBusObjectPath(m_request);
    }

private:
    QString m_request;
    const std::optional<uint> m_response;
    const Order m_order;
    QDBusConnection m_bus;
};

class PortalDesktopTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    QString picture() const
    {
        QFile file(m_folder.filePath(u"a b.png"_s));
        if (!file.open(QIODevice::WriteOnly) || file.write("picture") != 7) {
            qFatal("The test's own picture cannot be written.");
        }
        return file.fileName();
    }
    static QString errorOf(const QString &file,
        const QDBusConnection &bus = QDBusConnection::sessionBus(),
        std::chrono::milliseconds patience = desktop::thinkingTime)
    {
        PortalDesktop portal(bus, patience);
        const SetResult result = QCoro::waitFor(portal.setPicture(Picture{file, "png"_ba, {}}, {}));
        return result ? u"no error"_s : result.error();
    }

private Q_SLOTS:
    void theOpenFileIsHandedOver()
    {
        FakePortal portal(0);
        QCOMPARE(errorOf(picture()), u"no error"_s);
        QCOMPARE(portal.content, "picture"_ba);
        QCOMPARE(portal.options[u"set-on"_s].toString(), u"background"_s);
        QCOMPARE(portal.options[u"show-preview"_s], QVariant(false));
    }

    void theResponseCounts_data()
    {
        QTest::addColumn<uint>("response");
        QTest::addColumn<FakePortal::Order>("order");
        QTest::addColumn<QString>("error");
        const QString cancelled = u"Setting the picture was cancelled"_s;
        const QString refused = u"The desktop refused the picture"_s;
        QTest::newRow("done") << 0U << FakePortal::ResponseLast << u"no error"_s;
        QTest::newRow("done before the call is answered")
            << 0U << FakePortal::ResponseFirst << u"no error"_s;
        QTest::newRow("cancelled") << 1U << FakePortal::ResponseLast << cancelled;
        QTest::newRow("cancelled before the call is answered")
            << 1U << FakePortal::ResponseFirst << cancelled;
        QTest::newRow("failed") << 2U << FakePortal::ResponseLast << refused;
        QTest::newRow("unknown") << 77U << FakePortal::ResponseLast << refused;
    }
    void theResponseCounts()
    {
        QFETCH(uint, response);
        QFETCH(FakePortal::Order, order);
        const FakePortal portal(response, order);
        QTEST(errorOf(picture()), "error");
    }

    void withoutAResponseItEnds()
    {
        const FakePortal portal({});
        QCOMPARE(errorOf(picture(), QDBusConnection::sessionBus(), 1ms),
            u"The desktop did not answer; it may be asking for permission"_s);
    }

    void aPersonMayThinkForLongerThanADesktop()
    {
        FakePortal portal({});
        PortalDesktop desktop(QDBusConnection::sessionBus());
        std::optional<SetResult> result;
        QCoro::connect(desktop.setPicture(Picture{picture(), "png"_ba, {}}, {}), this,
            [&](const SetResult &told) { result = told; });
        QTRY_VERIFY(!portal.options.isEmpty());
        const QDeadlineTimer desktopsTime(desktop::answerTime);
        QTRY_VERIFY_WITH_TIMEOUT(desktopsTime.hasExpired(), 10000);
        QVERIFY(!result);
        portal.respond(0);
        QTRY_VERIFY(result.has_value());
        QVERIFY(result->has_value());
    }

    void aPortalWithoutWallpapersIsADesktopThatIsNotSupported_data()
    {
        QTest::addColumn<QString>("error");
        QTest::newRow("as Debian's portal says it")
            << u"org.freedesktop.DBus.Error.UnknownMethod"_s;
        QTest::newRow("as the bus names it, too")
            << u"org.freedesktop.DBus.Error.UnknownInterface"_s;
    }
    void aPortalWithoutWallpapersIsADesktopThatIsNotSupported()
    {
        QFETCH(QString, error);
        FakePortal portal({});
        portal.refusal = error;
        QCOMPARE(errorOf(picture()), u"this desktop is not supported"_s);
    }

    void anotherErrorIsTold()
    {
        FakePortal portal({});
        portal.refusal = u"org.freedesktop.portal.Error.InvalidArgument"_s;
        QCOMPARE(errorOf(picture()), u"The desktop refused the picture: in its own words"_s);
    }

    // A missing portal would be started by the bus: that of the machine, not a fake.
    void noBusIsAnError()
    {
        const QString error = errorOf(picture(), QDBusConnection(u"never connected"_s));
        QVERIFY2(error.startsWith(u"The session bus cannot be reached: "_s), qPrintable(error));
    }

    void aFileThatIsGoneIsAnError()
    {
        FakePortal portal(0);
        const QString error = errorOf(m_folder.filePath(u"gone.png"_s));
        QVERIFY2(error.startsWith(u"The file cannot be read: "_s), qPrintable(error));
        QVERIFY(portal.options.isEmpty());
    }
};

QTEST_GUILESS_MAIN(PortalDesktopTest)

#include "portaldesktoptest.moc"
