#include "desktop/output.h"

#include <algorithm>

namespace desktop {

std::optional<Screen> outputOf(const Screen &screen, const std::vector<Screen> &outputs)
{
    auto same = std::find_if(outputs.begin(), outputs.end(),
        [&](const Screen &output) { return output.name == screen.name; });
    if (same == outputs.end()) {
        same = std::find_if(outputs.begin(), outputs.end(), [&](const Screen &output) {
            return output.geometry.topLeft() == screen.geometry.topLeft();
        });
    }
    return same == outputs.end() ? std::nullopt : std::optional(*same);
}

} // namespace desktop
