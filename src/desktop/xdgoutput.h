#pragma once

#include <wayland-client.h>

namespace desktop {

// The Wayland protocol xdg-output, by which compositors tell the names of outputs and their places
// among each other. Written down here because libraries bring only the core of Wayland.

extern const wl_interface xdgOutputManagerInterface; ///< zxdg_output_manager_v1
extern const wl_interface xdgOutputInterface; ///< zxdg_output_v1

constexpr uint32_t getXdgOutput = 1; ///< The manager's request for the place of one output.

/// What an output tells of itself, in the order in which the protocol counts it.
struct XdgOutputListener
{
    void (*logicalPosition)(void *data, wl_proxy *output, int32_t x, int32_t y);
    void (*logicalSize)(void *data, wl_proxy *output, int32_t width, int32_t height);
    void (*done)(void *data, wl_proxy *output);
    void (*name)(void *data, wl_proxy *output, const char *name);
    void (*description)(void *data, wl_proxy *output, const char *description);
};

} // namespace desktop
