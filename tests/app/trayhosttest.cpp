#include "app/trayhost.h"
#include "app/trayicon.h"

#include "desktop/xcbreply.h"
#include "settledbus.h"

#include <QApplication>
#include <QDBusConnection>
#include <QMenu>
#include <QPixmap>
#include <QSignalSpy>
#include <QSystemTrayIcon>
#include <QTest>
#include <QWidget>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;
using app::TrayHost;
using app::TrayIcon;

/// What panels register with, on a connection of its own; it may be there before any panel is.
class FakeWatcher : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)

public:
    explicit FakeWatcher(bool hasHost)
        : m_hasHost(hasHost),
          m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, name))
    {
        m_bus.registerObject(u"/StatusNotifierWatcher"_s, this,
            QDBusConnection::ExportAllProperties | QDBusConnection::ExportAllSignals);
        m_bus.registerService(u"org.kde.StatusNotifierWatcher"_s);
    }
    ~FakeWatcher() override { QDBusConnection::disconnectFromBus(name); }

    bool hasHost() const { return m_hasHost; }
    void registerHost()
    {
        m_hasHost = true;
        Q_EMIT StatusNotifierHostRegistered();
    }

Q_SIGNALS:
    void StatusNotifierHostRegistered();

private:
    inline static const QString name = u"watcher"_s;

    bool m_hasHost;
    QDBusConnection m_bus;
};

/// A panel of the kind that embeds icons: it owns the tray selection of the screen.
class EmbeddingPanel
{
public:
    EmbeddingPanel() : m_connection(xcb_connect(nullptr, nullptr), &xcb_disconnect)
    {
        xcb_connection_t *c = m_connection.get();
        const xcb_window_t window = xcb_generate_id(c);
        const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
        xcb_create_window(c, 0, window, screen->root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
            XCB_COPY_FROM_PARENT, 0, nullptr);
        const xcb_atom_t selection = atom("_NET_SYSTEM_TRAY_S0");
        xcb_set_selection_owner(c, window, selection, XCB_CURRENT_TIME);

        xcb_client_message_event_t announcement{};
        announcement.response_type = XCB_CLIENT_MESSAGE;
        announcement.format = 32;
        announcement.window = screen->root;
        announcement.type = atom("MANAGER");
        announcement.data.data32[1] = selection;
        announcement.data.data32[2] = window;
        xcb_send_event(c, 0, screen->root, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
            reinterpret_cast<const char *>(&announcement));
        xcb_flush(c);
    }

    /// Whether somebody has asked it to take in an icon.
    bool isAsked()
    {
        while (const desktop::XcbReply<xcb_generic_event_t> event{
            xcb_poll_for_event(m_connection.get())}) {
            const auto *message = reinterpret_cast<const xcb_client_message_event_t *>(event.get());
            m_isAsked = m_isAsked
                || ((event->response_type & 0x7fU) == XCB_CLIENT_MESSAGE
                    && message->type == atom("_NET_SYSTEM_TRAY_OPCODE"));
        }
        return m_isAsked;
    }

private:
    xcb_atom_t atom(const QByteArray &name) const
    {
        return desktop::atomNamed(m_connection.get(), name);
    }

    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> m_connection;
    bool m_isAsked = false;
};

class TrayHostTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anIconMovesToThePanelThatTakesOver();
    void withoutAnyHostNothingIsAvailable();
    void aHostThatIsThereIsSeen();
    void aHostThatComesLaterIsSeen();
    void aWatcherWithoutAHostIsNotEnough();
    void anEmbeddingPanelThatIsThereIsSeen();
    void anEmbeddingPanelThatComesLaterIsSeen();
    void theFirstHostOnlyIsReported();
    void aScreenThatIsOutOfReachHasNoPanel();
    void anIconForAPanelThatIsThereIsShownAtOnce();
    void onlyTheFirstButtonOpensTheProgram_data();
    void onlyTheFirstButtonOpensTheProgram();
};

// It comes first, because Qt asks once per process whether there is a host on the bus.
void TrayHostTest::anIconMovesToThePanelThatTakesOver()
{
    EmbeddingPanel panel;
    TrayHost host;
    host.watch();
    QVERIFY(host.isAvailable());
    QPixmap picture(22, 22);
    picture.fill(Qt::red);
    QSystemTrayIcon icon(picture);
    icon.show();
    QTRY_VERIFY(panel.isAsked());
    // The window of the one before lives on, so Qt cannot know by itself that it is none any more.
    EmbeddingPanel next;
    QTRY_VERIFY(next.isAsked());
}

void TrayHostTest::withoutAnyHostNothingIsAvailable()
{
    TrayHost host;
    host.watch();
    letTheBusSettle();
    QVERIFY(!host.isAvailable());
}

void TrayHostTest::aHostThatIsThereIsSeen()
{
    const FakeWatcher watcher(true);
    TrayHost host;
    QSignalSpy available(&host, &TrayHost::available);
    host.watch();
    QVERIFY(host.isAvailable() || available.wait());
}

void TrayHostTest::aHostThatComesLaterIsSeen()
{
    TrayHost host;
    QSignalSpy available(&host, &TrayHost::available);
    host.watch();
    letTheBusSettle();
    const FakeWatcher watcher(true);
    QVERIFY(host.isAvailable() || available.wait());
}

void TrayHostTest::aWatcherWithoutAHostIsNotEnough()
{
    FakeWatcher watcher(false);
    TrayHost host;
    QSignalSpy available(&host, &TrayHost::available);
    host.watch();
    letTheBusSettle();
    QVERIFY(!host.isAvailable());
    watcher.registerHost();
    QVERIFY(host.isAvailable() || available.wait());
}

void TrayHostTest::anEmbeddingPanelThatIsThereIsSeen()
{
    const EmbeddingPanel panel;
    TrayHost host;
    QSignalSpy available(&host, &TrayHost::available);
    host.watch();
    QVERIFY(host.isAvailable() || available.wait());
}

void TrayHostTest::anEmbeddingPanelThatComesLaterIsSeen()
{
    TrayHost host;
    QSignalSpy available(&host, &TrayHost::available);
    host.watch();
    letTheBusSettle();
    QVERIFY(!host.isAvailable());
    const EmbeddingPanel panel;
    QVERIFY(host.isAvailable() || available.wait());
}

void TrayHostTest::theFirstHostOnlyIsReported()
{
    TrayHost host;
    QSignalSpy available(&host, &TrayHost::available);
    host.watch();
    const EmbeddingPanel panel;
    QVERIFY(host.isAvailable() || available.wait());
    const FakeWatcher watcher(true);
    letTheBusSettle();
    QCOMPARE(available.count(), 1);
}

void TrayHostTest::aScreenThatIsOutOfReachHasNoPanel()
{
    const EmbeddingPanel panel;
    const QByteArray screen = qgetenv("DISPLAY");
    qputenv("DISPLAY", ":nowhere");
    TrayHost host;
    host.watch();
    qputenv("DISPLAY", screen);
    letTheBusSettle();
    QVERIFY(!host.isAvailable());
}

void TrayHostTest::anIconForAPanelThatIsThereIsShownAtOnce()
{
    EmbeddingPanel panel;
    TrayHost host;
    host.watch();
    QVERIFY(host.isAvailable());
    QMenu menu;
    const TrayIcon icon(menu, host);
    QTRY_VERIFY(panel.isAsked());
}

void TrayHostTest::onlyTheFirstButtonOpensTheProgram_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<int>("opened");
    QTest::newRow("left") << Qt::LeftButton << 1;
    QTest::newRow("middle") << Qt::MiddleButton << 0;
}

void TrayHostTest::onlyTheFirstButtonOpensTheProgram()
{
    QFETCH(const Qt::MouseButton, button);
    const EmbeddingPanel panel;
    TrayHost host;
    host.watch();
    QMenu menu;
    const TrayIcon icon(menu, host);
    const QSignalSpy activated(&icon, &TrayIcon::activated);
    const auto widgets = QApplication::allWidgets();
    const auto shown = std::find_if(widgets.begin(), widgets.end(),
        [](const QWidget *widget) { return widget->inherits("QSystemTrayIconSys"); });
    QVERIFY(shown != widgets.end());
    QTest::mouseClick(*shown, button);
    QTEST(int(activated.count()), "opened");
}

QTEST_MAIN(TrayHostTest)
#include "trayhosttest.moc"
