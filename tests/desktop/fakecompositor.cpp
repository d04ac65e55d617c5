#include "fakecompositor.h"

#include "desktop/xdgoutput.h"

#include <wayland-server.h>

namespace {

const wl_interface layerShell{"zwlr_layer_shell_v1", 4, 0, nullptr, 0, nullptr};

void bindNothing(wl_client * /*client*/, void * /*data*/, uint32_t /*version*/, uint32_t /*id*/) { }

void bindOutput(wl_client *client, void *data, uint32_t version, uint32_t id)
{
    wl_resource *output = wl_resource_create(client, &wl_output_interface, int(version), id);
    wl_resource_set_user_data(output, data);
    wl_output_send_geometry(output, 0, 0, 300, 200, WL_OUTPUT_SUBPIXEL_UNKNOWN, "maker", "model",
        WL_OUTPUT_TRANSFORM_NORMAL);
    wl_output_send_mode(output, WL_OUTPUT_MODE_CURRENT, 800, 600, 60000);
}

void destroy(wl_client * /*client*/, wl_resource *resource)
{
    wl_resource_destroy(resource);
}

using Destroy = decltype(&destroy);
constexpr Destroy outputRequests = destroy;

enum XdgOutputEvent : uint32_t { LogicalPosition, LogicalSize, Done, Name, Description };

void tellPlace(wl_client *client, wl_resource *manager, uint32_t id, wl_resource *output)
{
    const auto &told = *static_cast<FakeCompositor::Output *>(wl_resource_get_user_data(output));
    const QRect &geometry = told.geometry;
    wl_resource *xdgOutput = wl_resource_create(
        client, &desktop::xdgOutputInterface, wl_resource_get_version(manager), id);
    wl_resource_set_implementation(xdgOutput, &outputRequests, nullptr, nullptr);
    wl_resource_post_event(xdgOutput, LogicalPosition, geometry.x(), geometry.y());
    wl_resource_post_event(xdgOutput, LogicalSize, geometry.width(), geometry.height());
    if (wl_resource_get_version(manager) >= 2) {
        wl_resource_post_event(xdgOutput, Name, told.name.constData());
        wl_resource_post_event(xdgOutput, Description, "an output");
    }
    wl_resource_post_event(xdgOutput, Done);
}

struct ManagerRequests
{
    Destroy destroy;
    decltype(&tellPlace) getXdgOutput;
};
constexpr ManagerRequests managerRequests{destroy, tellPlace};

void bindManager(wl_client *client, void * /*data*/, uint32_t version, uint32_t id)
{
    wl_resource *manager
        = wl_resource_create(client, &desktop::xdgOutputManagerInterface, int(version), id);
    wl_resource_set_implementation(manager, &managerRequests, nullptr, nullptr);
}

} // namespace

FakeCompositor::FakeCompositor(Offer offer)
    : m_offer(std::move(offer)), m_display(wl_display_create())
{
    if (m_offer.layerShell) {
        wl_global_create(m_display, &layerShell, 1, nullptr, bindNothing);
    }
    for (Output &output : m_offer.outputs) {
        wl_global_create(m_display, &wl_output_interface, 1, &output, bindOutput);
    }
    if (m_offer.xdgOutputVersion > 0) {
        wl_global_create(m_display, &desktop::xdgOutputManagerInterface, m_offer.xdgOutputVersion,
            nullptr, bindManager);
    }
    qputenv("XDG_RUNTIME_DIR", m_folder.path().toLocal8Bit());
    if (wl_display_add_socket(m_display, "wayland-fake") != 0) {
        qFatal("The fake needs a socket of its own.");
    }
    qputenv("WAYLAND_DISPLAY", "wayland-fake");
    m_thread = std::thread([this] { wl_display_run(m_display); });
}

FakeCompositor::~FakeCompositor()
{
    // Ends the loop at its next turn, which a client that comes brings about.
    wl_display_terminate(m_display);
    m_thread.join();
    wl_display_destroy_clients(m_display);
    wl_display_destroy(m_display);
    qunsetenv("WAYLAND_DISPLAY");
}
