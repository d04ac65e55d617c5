#include "ui/x11front.h"

#include "desktop/xcbreply.h"

#include <QGuiApplication>
#include <QWindow>

#include <cstring>

namespace ui {

using namespace Qt::StringLiterals;

namespace {

/// Sends what concerns everybody on the screen to its root window, on Qt's own connection: it
/// arrives after what Qt has said of its windows.
class RootWindow
{
public:
    explicit RootWindow(xcb_connection_t *connection)
        : m_connection(connection),
          m_window(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root)
    {
    }

    void activate(xcb_window_t window, xcb_timestamp_t time) const;
    void endStart(xcb_window_t window, const QByteArray &id) const;

private:
    void send(const xcb_client_message_event_t &message, uint32_t toWhom) const;

    xcb_connection_t *const m_connection;
    const xcb_window_t m_window;
};

void RootWindow::send(const xcb_client_message_event_t &message, uint32_t toWhom) const
{
    xcb_send_event(m_connection, 0, m_window, toWhom, reinterpret_cast<const char *>(&message));
}

void RootWindow::activate(xcb_window_t window, xcb_timestamp_t time) const
{
    // Window managers believe one that has no time only if it comes from a tool, such as a panel,
    // by which the person has asked for it.
    enum Source : uint32_t { Program = 1, Tool = 2 };

    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = desktop::atomNamed(m_connection, "_NET_ACTIVE_WINDOW");
    message.data.data32[0] = time == XCB_CURRENT_TIME ? Tool : Program;
    message.data.data32[1] = time;
    send(message, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
}

// Otherwise the launcher would show for some seconds that it waits for a window.
void RootWindow::endStart(xcb_window_t window, const QByteArray &id) const
{
    QByteArray quoted = id;
    quoted.replace('\\', "\\\\").replace('"', "\\\"");
    const QByteArray text = "remove: ID=\"" + quoted + '"' + '\0';

    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 8;
    message.window = window;
    message.type = desktop::atomNamed(m_connection, "_NET_STARTUP_INFO_BEGIN");
    const xcb_atom_t more = desktop::atomNamed(m_connection, "_NET_STARTUP_INFO");
    constexpr qsizetype partSize = sizeof(message.data.data8);
    for (qsizetype start = 0; start < text.size(); start += partSize) {
        const QByteArray part = text.mid(start, partSize).leftJustified(partSize, '\0');
        std::memcpy(message.data.data8, part.constData(), partSize);
        send(message, XCB_EVENT_MASK_PROPERTY_CHANGE);
        message.type = more;
    }
}

/// Launchers write the time at the end.
xcb_timestamp_t timeOf(const QByteArray &startupId)
{
    constexpr QByteArrayView mark = "_TIME";
    const qsizetype at = startupId.lastIndexOf(mark);
    return at < 0 ? XCB_CURRENT_TIME : startupId.mid(at + mark.size()).toUInt();
}

} // namespace

void putInFrontOnX11(const QWindow &window, const QByteArray &startupId)
{
    // Platforms without a screen have a connection to the X server as well, if there is one.
    if (QGuiApplication::platformName() != "xcb"_L1) {
        return;
    }
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    const RootWindow root(x11->connection());
    const auto id = xcb_window_t(window.winId());
    root.activate(id, timeOf(startupId));
    if (!startupId.isEmpty()) {
        root.endStart(id, startupId);
    }
    xcb_flush(x11->connection());
}

} // namespace ui
