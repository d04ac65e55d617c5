#include "imageservice/painting/gradient.h"

namespace imageservice {

namespace {

PerceivedColor between(const Gradient::Stop &from, const Gradient::Stop &to, float position)
{
    const float share = smoothStep(0, 1, (position - from.at) / (to.at - from.at));
    // Half linear, half soft: soft alone shows each stop as a band.
    const float t
        = mix(std::clamp((position - from.at) / (to.at - from.at), 0.0F, 1.0F), share, 0.5F);
    const PerceivedColor a = perceived(from.color);
    const PerceivedColor b = perceived(to.color);
    return {mix(a.lightness, b.lightness, t), mix(a.greenToRed, b.greenToRed, t),
        mix(a.blueToYellow, b.blueToYellow, t)};
}

} // namespace

Gradient::Gradient(std::span<const Stop> stops)
{
    size_t next = 0;
    for (int step = 0; step < static_cast<int>(m_colors.size()); ++step) {
        const float position = static_cast<float>(step) / Steps;
        while (next < stops.size() && stops[next].at <= position) {
            ++next;
        }
        if (next == 0 || next == stops.size()) {
            m_colors[step] = stops[next == 0 ? 0 : next - 1].color;
        } else {
            m_colors[step] = fromPerceived(between(stops[next - 1], stops[next], position));
        }
    }
}

Color Gradient::at(float position) const
{
    const float exact = std::clamp(position, 0.0F, 1.0F) * Steps;
    const int step = static_cast<int>(exact);
    return mix(m_colors[step], m_colors[step + 1], exact - static_cast<float>(step));
}

} // namespace imageservice
