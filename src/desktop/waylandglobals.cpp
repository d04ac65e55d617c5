#include "desktop/waylandglobals.h"

#include "desktop/xdgoutput.h"

#include <algorithm>
#include <list>
#include <memory>
#include <string_view>

#include <poll.h>
#include <wayland-client.h>

namespace desktop {

namespace {

constexpr uint32_t versionWithNames = 2;

template <auto destroy>
struct Destroy
{
    template <typename Proxy>
    void operator()(Proxy *proxy) const
    {
        destroy(proxy);
    }
};
using Display = std::unique_ptr<wl_display, Destroy<wl_display_disconnect>>;
using Registry = std::unique_ptr<wl_registry, Destroy<wl_registry_destroy>>;
using Output = std::unique_ptr<wl_output, Destroy<wl_output_destroy>>;
using Callback = std::unique_ptr<wl_callback, Destroy<wl_callback_destroy>>;
using Proxy = std::unique_ptr<wl_proxy, Destroy<wl_proxy_destroy>>;

struct FoundOutput
{
    Output output;
    Proxy place = nullptr;
    Screen screen = {};
};

struct Found
{
    bool hasLayerShell = false;
    Proxy places = nullptr; ///< Who tells the places of outputs.
    std::list<FoundOutput> outputs = {};
};

void placeSeen(void *data, wl_proxy * /*output*/, int32_t x, int32_t y)
{
    static_cast<Screen *>(data)->geometry.moveTo(x, y);
}

void sizeSeen(void *data, wl_proxy * /*output*/, int32_t width, int32_t height)
{
    static_cast<Screen *>(data)->geometry.setSize({width, height});
}

void nameSeen(void *data, wl_proxy * /*output*/, const char *name)
{
    static_cast<Screen *>(data)->name = QString::fromUtf8(name);
}

// The library calls through every pointer of the event that arrives.
constexpr XdgOutputListener outputListener{
    placeSeen, sizeSeen, [](auto...) {}, nameSeen, [](auto...) {}};

void globalSeen(
    void *data, wl_registry *registry, uint32_t number, const char *interface, uint32_t version)
{
    auto *found = static_cast<Found *>(data);
    const std::string_view name(interface);
    if (name == "zwlr_layer_shell_v1") {
        found->hasLayerShell = true;
    } else if (name == wl_output_interface.name) {
        found->outputs.push_back({Output(static_cast<wl_output *>(
            wl_registry_bind(registry, number, &wl_output_interface, 1)))});
    } else if (name == xdgOutputManagerInterface.name && version >= versionWithNames) {
        found->places.reset(static_cast<wl_proxy *>(
            wl_registry_bind(registry, number, &xdgOutputManagerInterface, versionWithNames)));
    }
}

constexpr wl_registry_listener registryListener{globalSeen, [](auto...) {}};

/// Whether something came to be read.
bool waitForEvents(wl_display *display, QDeadlineTimer deadline)
{
    wl_display_flush(display);
    pollfd socket{wl_display_get_fd(display), POLLIN, 0};
    return poll(&socket, 1, int(deadline.remainingTime())) > 0;
}

bool readEvents(wl_display *display, QDeadlineTimer deadline)
{
    if (wl_display_prepare_read(display) == 0) {
        if (!waitForEvents(display, deadline)) {
            wl_display_cancel_read(display);
            return false;
        }
        if (wl_display_read_events(display) < 0) {
            return false;
        }
    }
    return wl_display_dispatch_pending(display) >= 0;
}

void answerSeen(void *data, wl_callback * /*callback*/, uint32_t /*serial*/)
{
    *static_cast<bool *>(data) = true;
}

constexpr wl_callback_listener answerListener{answerSeen};

// The library's own way to wait for all answers would wait for ever.
bool allAnswered(wl_display *display, QDeadlineTimer deadline)
{
    bool answered = false;
    const Callback callback(wl_display_sync(display));
    wl_callback_add_listener(callback.get(), &answerListener, &answered);
    while (!answered) {
        if (deadline.hasExpired() || !readEvents(display, deadline)) {
            return false;
        }
    }
    return true;
}

void askForPlaces(Found &found)
{
    for (FoundOutput &each : found.outputs) {
        each.place.reset(wl_proxy_marshal_flags(found.places.get(), getXdgOutput,
            &xdgOutputInterface, versionWithNames, 0, nullptr, each.output.get()));
        // The library wants its listeners as pointers to functions of no particular kind.
        wl_proxy_add_listener(each.place.get(),
            reinterpret_cast<void (**)()>(const_cast<XdgOutputListener *>(&outputListener)),
            &each.screen);
    }
}

WaylandGlobals globalsOf(const Found &found)
{
    WaylandGlobals globals{found.hasLayerShell, {}};
    for (const FoundOutput &each : found.outputs) {
        if (!each.screen.name.isEmpty()) {
            globals.outputs.push_back(each.screen);
        }
    }
    return globals;
}

} // namespace

std::optional<WaylandGlobals> askWaylandGlobals(QDeadlineTimer deadline)
{
    const Display display(wl_display_connect(nullptr));
    if (!display) {
        return {};
    }
    Found found;
    const Registry registry(wl_display_get_registry(display.get()));
    wl_registry_add_listener(registry.get(), &registryListener, &found);
    if (!allAnswered(display.get(), deadline)) {
        return {};
    }
    if (found.places) {
        askForPlaces(found);
        if (!allAnswered(display.get(), deadline)) {
            return {};
        }
    }
    return globalsOf(found);
}

} // namespace desktop
