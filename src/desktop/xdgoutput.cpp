#include "desktop/xdgoutput.h"

#include <array>

namespace desktop {

namespace {

constexpr int version = 3;

std::array<const wl_interface *, 2> noObjects{};
std::array<const wl_interface *, 2> placeOfOutput{&xdgOutputInterface, &wl_output_interface};

constexpr std::array managerRequests{
    wl_message{"destroy", "", noObjects.data()},
    wl_message{"get_xdg_output", "no", placeOfOutput.data()},
};
constexpr std::array outputRequests{wl_message{"destroy", "", noObjects.data()}};
constexpr std::array outputEvents{
    wl_message{"logical_position", "ii", noObjects.data()},
    wl_message{"logical_size", "ii", noObjects.data()},
    wl_message{"done", "", noObjects.data()},
    wl_message{"name", "2s", noObjects.data()},
    wl_message{"description", "2s", noObjects.data()},
};

} // namespace

const wl_interface xdgOutputManagerInterface{
    "zxdg_output_manager_v1", version, managerRequests.size(), managerRequests.data(), 0, nullptr};
const wl_interface xdgOutputInterface{"zxdg_output_v1", version, outputRequests.size(),
    outputRequests.data(), outputEvents.size(), outputEvents.data()};

} // namespace desktop
