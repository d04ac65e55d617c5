#pragma once

#include "desktop/desktoppicture.h"
#include "desktop/xcbreply.h"

#include <QByteArray>

#include <memory>
#include <optional>
#include <vector>

namespace desktop {

/// A connection of our own to the X server, closed at the end of its life. Not Qt's, so that it can
/// be used on any thread and what it leaves behind on the server is its own affair. Every question
/// waits for the server's answer.
class X11Display
{
public:
    /// Absent when no server can be reached.
    static std::optional<X11Display> open();

    xcb_connection_t *connection() const { return m_connection.get(); }
    const xcb_screen_t &screen() const { return *m_screen; }
    xcb_window_t root() const { return m_screen->root; }
    xcb_atom_t atom(const QByteArray &name) const;
    /// The 32-bit items of a window's property; empty when it has none of that type.
    std::vector<uint32_t> property(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) const;

    /// The monitors that are on; absent when the server cannot tell.
    std::optional<std::vector<Screen>> monitors() const;
    /// Whether a window stands over the root window as the desktop, so that the root is not seen.
    bool hasDesktopWindow() const;
    /// Whether the window manager draws the screen itself and leaves the root window out.
    bool isRootCovered() const;

private:
    struct Disconnect
    {
        void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
    };
    using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

    X11Display(Connection connection, xcb_screen_t *screen);
    QByteArray textProperty(xcb_window_t window, const QByteArray &name) const;
    QString atomName(xcb_atom_t atom) const;
    std::vector<xcb_window_t> topWindows() const;
    bool isVisible(xcb_window_t window) const;

    Connection m_connection;
    xcb_screen_t *m_screen;
};

} // namespace desktop
