#include "fakecompositor.h"

#include <wayland-server.h>

namespace {

const wl_interface layerShell{"zwlr_layer_shell_v1", 4, 0, nullptr, 0, nullptr};

void bindNothing(wl_client * /*client*/, void * /*data*/, uint32_t /*version*/, uint32_t /*id*/) { }

void bindOutput(wl_client *client, void *data, uint32_t version, uint32_t id)
{
    wl_resource *output = wl_resource_create(client, &wl_output_interface, int(version), id);
    wl_output_send_geometry(output, 0, 0, 300, 200, WL_OUTPUT_SUBPIXEL_UNKNOWN, "maker", "model",
        WL_OUTPUT_TRANSFORM_NORMAL);
    wl_output_send_mode(output, WL_OUTPUT_MODE_CURRENT, 800, 600, 60000);
    wl_output_send_scale(output, 1);
    wl_output_send_name(output, static_cast<const QByteArray *>(data)->constData());
    wl_output_send_description(output, "an output");
    wl_output_send_done(output);
}

} // namespace

FakeCompositor::FakeCompositor(Offer offer)
    : m_offer(std::move(offer)), m_display(wl_display_create())
{
    if (m_offer.layerShell) {
        wl_global_create(m_display, &layerShell, 1, nullptr, bindNothing);
    }
    for (QByteArray &output : m_offer.outputs) {
        wl_global_create(
            m_display, &wl_output_interface, m_offer.outputVersion, &output, bindOutput);
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
