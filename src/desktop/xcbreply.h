#pragma once

#include <QByteArray>

#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace desktop {

struct FreeReply
{
    void operator()(void *reply) const { std::free(reply); }
};

/// An answer of the X server; null when it refused or is gone.
template <typename Reply>
using XcbReply = std::unique_ptr<Reply, FreeReply>;

/// The server's number for a name, which is made if there is none; waits for the answer.
/// XCB_ATOM_NONE when the server is gone. Any thread.
inline xcb_atom_t atomNamed(xcb_connection_t *connection, const QByteArray &name)
{
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection,
        xcb_intern_atom(connection, 0, uint16_t(name.size()), name.constData()), nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

} // namespace desktop
