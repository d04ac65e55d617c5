#include "desktop/x11display.h"

#include <algorithm>

#include <xcb/randr.h>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

constexpr uint32_t wholeProperty = UINT32_MAX / 4;

} // namespace

std::optional<X11Display> X11Display::open()
{
    int screenNumber = 0;
    Connection connection(xcb_connect(nullptr, &screenNumber));
    if (xcb_connection_has_error(connection.get()) != 0) {
        return {};
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection.get()));
    while (screenNumber-- > 0 && screens.rem > 1) {
        xcb_screen_next(&screens);
    }
    return X11Display(std::move(connection), screens.data);
}

X11Display::X11Display(Connection connection, xcb_screen_t *screen)
    : m_connection(std::move(connection)), m_screen(screen)
{
}

xcb_atom_t X11Display::atom(const QByteArray &name) const
{
    return atomNamed(connection(), name);
}

QString X11Display::atomName(xcb_atom_t atom) const
{
    const XcbReply<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(connection(), xcb_get_atom_name(connection(), atom), nullptr));
    return reply ? QString::fromUtf8(
               xcb_get_atom_name_name(reply.get()), xcb_get_atom_name_name_length(reply.get()))
                 : QString();
}

std::vector<uint32_t> X11Display::property(
    xcb_window_t window, xcb_atom_t name, xcb_atom_t type) const
{
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection(),
        xcb_get_property(connection(), 0, window, name, type, 0, wholeProperty), nullptr));
    if (!reply || reply->format != 32 || reply->type != type) {
        return {};
    }
    const auto *items = static_cast<const uint32_t *>(xcb_get_property_value(reply.get()));
    return {items, items + reply->value_len};
}

std::optional<std::vector<Screen>> X11Display::monitors() const
{
    const XcbReply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
        connection(), xcb_randr_get_monitors(connection(), root(), 1), nullptr));
    if (!reply) {
        return {};
    }
    std::vector<Screen> monitors;
    auto item = xcb_randr_get_monitors_monitors_iterator(reply.get());
    for (; item.rem > 0; xcb_randr_monitor_info_next(&item)) {
        const xcb_randr_monitor_info_t &monitor = *item.data;
        monitors.push_back(
            {atomName(monitor.name), QRect(monitor.x, monitor.y, monitor.width, monitor.height)});
    }
    return monitors;
}

bool X11Display::hasDesktopWindow() const
{
    const xcb_atom_t windowType = atom("_NET_WM_WINDOW_TYPE"_ba);
    const xcb_atom_t desktopType = atom("_NET_WM_WINDOW_TYPE_DESKTOP"_ba);
    const std::vector<xcb_window_t> windows = topWindows();
    return std::any_of(windows.begin(), windows.end(), [&](xcb_window_t window) {
        const std::vector<uint32_t> types = property(window, windowType, XCB_ATOM_ATOM);
        return std::find(types.begin(), types.end(), desktopType) != types.end()
            && isVisible(window);
    });
}

bool X11Display::isRootCovered() const
{
    const XcbReply<xcb_get_selection_owner_reply_t> compositor(xcb_get_selection_owner_reply(
        connection(), xcb_get_selection_owner(connection(), atom("_NET_WM_CM_S0"_ba)), nullptr));
    const std::vector<uint32_t> manager
        = property(root(), atom("_NET_SUPPORTING_WM_CHECK"_ba), XCB_ATOM_WINDOW);
    // Other compositors draw the root window's picture behind everything.
    return compositor && compositor->owner != XCB_NONE && !manager.empty()
        && textProperty(manager.front(), "_NET_WM_NAME"_ba) == "KWin";
}

QByteArray X11Display::textProperty(xcb_window_t window, const QByteArray &name) const
{
    constexpr uint32_t longest = 64;
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection(),
        xcb_get_property(
            connection(), 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, longest),
        nullptr));
    return reply && reply->format == 8
        ? QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
            xcb_get_property_value_length(reply.get()))
        : QByteArray();
}

// A window manager may put frames between the root and the windows it lists; without a window
// manager, or before it is ready, there is no list.
std::vector<xcb_window_t> X11Display::topWindows() const
{
    std::vector<xcb_window_t> windows
        = property(root(), atom("_NET_CLIENT_LIST"_ba), XCB_ATOM_WINDOW);
    const XcbReply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection(), xcb_query_tree(connection(), root()), nullptr));
    if (tree) {
        const xcb_window_t *children = xcb_query_tree_children(tree.get());
        windows.insert(
            windows.end(), children, children + xcb_query_tree_children_length(tree.get()));
    }
    return windows;
}

bool X11Display::isVisible(xcb_window_t window) const
{
    const XcbReply<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        connection(), xcb_get_window_attributes(connection(), window), nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

} // namespace desktop
