#include "app/trayhost.h"

#include "desktop/buscall.h"
#include "desktop/xcbreply.h"

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QPointer>
#include <QSocketNotifier>

#include <utility>
#include <vector>

#include <xcb/xfixes.h>

using namespace Qt::StringLiterals;

namespace app {

namespace {

const auto watcherService = u"org.kde.StatusNotifierWatcher"_s;
const auto watcherPath = u"/StatusNotifierWatcher"_s;

template <typename T>
desktop::XcbReply<T> owned(T *reply)
{
    return desktop::XcbReply<T>(reply);
}

} // namespace

/// Tells Qt that a window is gone that took in tray icons. Qt asks who does, and only then to be
/// told of its end; it never hears of one that ends in between, and goes on sending its icons
/// there. Some panels start with several such windows that live for a moment.
class EndOfTray
{
public:
    EndOfTray()
        : m_connection(qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection()),
          m_own(xcb_generate_id(m_connection))
    {
        xcb_create_window(m_connection, 0, m_own,
            xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root, 0, 0, 1, 1, 0,
            XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    }

    void tell(xcb_window_t window) const
    {
        xcb_destroy_notify_event_t end{};
        end.response_type = XCB_DESTROY_NOTIFY;
        end.event = window;
        end.window = window;
        // Without a mask, what is sent to a window goes to the connection that has made it.
        xcb_send_event(
            m_connection, 0, m_own, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&end));
        xcb_flush(m_connection);
    }

private:
    xcb_connection_t *const m_connection;
    const xcb_window_t m_own;
};

/// The X11 selection whose owner embeds tray icons, watched on a connection of its own.
class TrayHost::SelectionWatch
{
public:
    explicit SelectionWatch(TrayHost &host)
        : m_connection(xcb_connect(nullptr, &m_screenNumber), &xcb_disconnect)
    {
        if (xcb_connection_has_error(m_connection.get()) != 0) {
            return;
        }
        m_selection = desktop::atomNamed(
            m_connection.get(), "_NET_SYSTEM_TRAY_S" + QByteArray::number(m_screenNumber));
        m_firstEvent = xcb_get_extension_data(m_connection.get(), &xcb_xfixes_id)->first_event;
        listen();
        m_notifier = std::make_unique<QSocketNotifier>(
            xcb_get_file_descriptor(m_connection.get()), QSocketNotifier::Read);
        connect(
            m_notifier.get(), &QSocketNotifier::activated, &host, [this, &host] { look(host); });
        look(host);
    }

private:
    void look(TrayHost &host)
    {
        // Waiting for a reply may read events past the notifier, so they are emptied after asking.
        do {
            const xcb_window_t current = owner();
            for (const xcb_window_t former : std::exchange(m_owners, {current})) {
                if (former != current && former != XCB_NONE) {
                    m_endOfTray.tell(former);
                }
            }
            if (current != XCB_NONE) {
                host.onSeen();
            }
        } while (drain());
        if (xcb_connection_has_error(m_connection.get()) != 0) {
            m_notifier->setEnabled(false); // A dead connection stays readable for ever.
        }
    }

    xcb_window_t owner() const
    {
        const auto reply = owned(xcb_get_selection_owner_reply(
            m_connection.get(), xcb_get_selection_owner(m_connection.get(), m_selection), nullptr));
        return reply ? reply->owner : xcb_window_t(XCB_NONE);
    }

    xcb_window_t root() const
    {
        auto screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get()));
        for (int i = 0; i < m_screenNumber; ++i) {
            xcb_screen_next(&screens);
        }
        return screens.data->root;
    }

    void listen() const
    {
        owned(xcb_xfixes_query_version_reply(
            m_connection.get(), xcb_xfixes_query_version(m_connection.get(), 1, 0), nullptr));
        xcb_xfixes_select_selection_input(m_connection.get(), root(), m_selection,
            XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER);
        xcb_flush(m_connection.get());
    }

    bool drain()
    {
        bool any = false;
        while (const auto event = owned(xcb_poll_for_event(m_connection.get()))) {
            any = true;
            if ((event->response_type & ~sentByClient)
                == m_firstEvent + XCB_XFIXES_SELECTION_NOTIFY) {
                m_owners.push_back(
                    reinterpret_cast<const xcb_xfixes_selection_notify_event_t *>(event.get())
                        ->owner);
            }
        }
        return any;
    }

    static constexpr uint8_t sentByClient = 0x80;

    int m_screenNumber = 0;
    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> m_connection;
    xcb_atom_t m_selection = XCB_ATOM_NONE;
    uint8_t m_firstEvent = 0;
    std::vector<xcb_window_t> m_owners; ///< Since the last look, and the one that was found then.
    EndOfTray m_endOfTray;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

TrayHost::TrayHost(QObject *parent) : QObject(parent), m_bus(QString()) { }

TrayHost::~TrayHost() = default;

void TrayHost::watch(const QDBusConnection &bus)
{
    m_isAvailable = false;
    m_bus = bus;
    m_names = std::make_unique<QDBusServiceWatcher>(
        watcherService, m_bus, QDBusServiceWatcher::WatchForRegistration);
    connect(m_names.get(), &QDBusServiceWatcher::serviceRegistered, this, &TrayHost::askForHost);
    m_bus.connect(desktop::anybody, watcherPath, watcherService, u"StatusNotifierHostRegistered"_s,
        this, SLOT(askForHost()));
    askForHost();

    if (QGuiApplication::platformName() == "xcb"_L1 && !m_selectionWatch) {
        m_selectionWatch = std::make_unique<SelectionWatch>(*this);
    }
}

void TrayHost::askForHost()
{
    findHost();
}

QCoro::Task<> TrayHost::findHost()
{
    const QPointer alive(this);
    auto question = QDBusMessage::createMethodCall(
        watcherService, watcherPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    question << watcherService << u"IsStatusNotifierHostRegistered"_s;
    question.setAutoStartService(false);
    const desktop::BusResult answer
        = co_await desktop::callBus(m_bus, question, QDeadlineTimer(desktop::unhurriedTime));
    if (alive && answer && answer->value(0).value<QDBusVariant>().variant().toBool()) {
        onSeen();
    }
}

void TrayHost::onSeen()
{
    if (!m_isAvailable) {
        m_isAvailable = true;
        Q_EMIT available();
    }
}

} // namespace app
