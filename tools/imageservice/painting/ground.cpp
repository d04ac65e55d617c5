#include "imageservice/painting/ground.h"

#include <cmath>

namespace imageservice {

namespace {

/// All points at one distance, some pixels apart.
struct Strip
{
    explicit Strip(int cells) : heights(cells), tops(cells), colors(cells) { }

    float distance = 0;
    std::vector<float> heights;
    std::vector<float> tops; ///< In pixels.
    std::vector<Color> colors;
};

class GroundPainter
{
public:
    GroundPainter(
        Canvas &canvas, const Sky &sky, const Camera &camera, const Ground &ground, const Air &air)
        : m_canvas(canvas), m_sky(sky), m_camera(camera), m_ground(ground), m_air(air),
          m_cell(std::max(canvas.height() / 1000, 1)), m_cells(canvas.width() / m_cell + 2),
          m_farther(m_cells), m_nearer(m_cells), m_sunlit(m_cells), m_haze(m_cells),
          m_foot(canvas.width(), camera.horizon * canvas.scale())
    {
        for (int cell = 0; cell < m_cells; ++cell) {
            m_haze[cell] = sky.haze(canvasX(cell));
        }
    }

    /// Distance of the next strip: near enough that common slopes get a strip every few pixels.
    float next(float distance) const
    {
        return distance
            * (1 - 3.0F * static_cast<float>(m_cell) / (m_canvas.scale() * m_camera.focal));
    }

    void start(float distance)
    {
        measure(m_farther, distance);
        shade(m_farther, m_farther);
    }

    void advance(float distance)
    {
        measure(m_nearer, distance);
        shade(m_nearer, m_farther);
        fill();
        std::swap(m_farther, m_nearer);
    }

    std::vector<float> foot() const { return m_foot; }

private:
    float canvasX(int cell) const { return static_cast<float>(cell * m_cell) / m_canvas.scale(); }
    float lengthPerCell(float distance) const
    {
        return distance * static_cast<float>(m_cell) / (m_canvas.scale() * m_camera.focal);
    }

    void measure(Strip &strip, float distance)
    {
        strip.distance = distance;
        const float detail = 1.6F * lengthPerCell(distance);
        for (int cell = 0; cell < m_cells; ++cell) {
            const float groundX = m_camera.groundX(canvasX(cell), distance);
            strip.heights[cell] = m_ground.height(groundX, distance, detail);
            strip.tops[cell] = m_camera.yOf(strip.heights[cell], distance) * m_canvas.scale();
        }
        castShadows(strip);
    }

    /// The sun stands sideways, so that a strip shades only itself: one walk away from the sun.
    void castShadows(const Strip &strip)
    {
        const float fall = lengthPerCell(strip.distance) * 0.42F;
        const float softness = 1 / (0.012F + 0.006F * strip.distance);
        const bool fromLeft = m_sky.sunSide() < 0;
        float shadow = -1000;
        for (int count = 0; count < m_cells; ++count) {
            const int cell = fromLeft ? count : m_cells - 1 - count;
            shadow = std::max(shadow - fall, strip.heights[cell]);
            m_sunlit[cell] = std::clamp(1 - (shadow - strip.heights[cell]) * softness, 0.0F, 1.0F);
        }
    }

    GroundPoint pointAt(const Strip &strip, const Strip &behind, int cell) const
    {
        const int left = std::max(cell - 1, 0);
        const int right = std::min(cell + 1, m_cells - 1);
        const float slopeX = (strip.heights[right] - strip.heights[left])
            / (lengthPerCell(strip.distance) * static_cast<float>(right - left));
        const float groundX = m_camera.groundX(canvasX(cell), strip.distance);
        const float gap = std::max(behind.distance - strip.distance, 1e-5F);
        // Columns spread with distance: their sideways part has to leave the slope between strips.
        const float slopeAway = (behind.heights[cell] - strip.heights[cell]) / gap
            - slopeX * groundX / strip.distance;
        const float length = 1 / std::sqrt(1 + slopeX * slopeX + slopeAway * slopeAway);
        return {groundX, strip.distance, strip.heights[cell], -slopeX * length, length,
            -slopeAway * length, m_sunlit[cell]};
    }

    void shade(Strip &strip, const Strip &behind)
    {
        for (int cell = 0; cell < m_cells; ++cell) {
            const GroundPoint point = pointAt(strip, behind, cell);
            const float seen = m_air.clearness(point.height, point.distance);
            strip.colors[cell]
                = mix(m_air.color(m_haze[cell], point.distance), m_ground.color(point), seen);
        }
    }

    /// Paints what lies between the two strips where it faces the camera and is not under water.
    void fill()
    {
        const float perCell = 1 / static_cast<float>(m_cell);
        for (int cell = 0; cell + 1 < m_cells; ++cell) {
            if (m_farther.heights[cell] < 0 && m_farther.heights[cell + 1] < 0) {
                continue;
            }
            const float rise = std::abs(m_farther.tops[cell + 1] - m_farther.tops[cell]) * perCell;
            const int end = std::min((cell + 1) * m_cell, m_canvas.width());
            for (int x = cell * m_cell; x < end; ++x) {
                fillColumn(x, cell, static_cast<float>(x - cell * m_cell) * perCell, rise);
            }
        }
    }

    void fillColumn(int x, int cell, float share, float rise)
    {
        const float top = mix(m_farther.tops[cell], m_farther.tops[cell + 1], share);
        const float bottom = mix(m_nearer.tops[cell], m_nearer.tops[cell + 1], share);
        if (bottom < top) {
            return;
        }
        // A steep rim is spread over as many rows as it rises from column to column.
        const float rim = 1 + std::min(rise, 4.0F);
        const float start = top - rim / 2;
        const int first = std::max(static_cast<int>(start), 0);
        // One row more closes the seam to the next strip, which is painted over it.
        const int last = std::min(static_cast<int>(bottom + 2), m_canvas.height() - 1);
        const float span = 1 / std::max(bottom - top, 1.0F);
        const Color upper = mix(m_farther.colors[cell], m_farther.colors[cell + 1], share);
        const Color lower = mix(m_nearer.colors[cell], m_nearer.colors[cell + 1], share);
        for (int y = first; y <= last; ++y) {
            const auto row = static_cast<float>(y);
            const float cover = std::clamp((row + 1 - start) / rim, 0.0F, 1.0F);
            Color &pixel = m_canvas.at(x, y);
            pixel
                = mix(pixel, mix(upper, lower, std::clamp((row - top) * span, 0.0F, 1.0F)), cover);
        }
        m_foot[x] = std::max(m_foot[x], bottom);
    }

    Canvas &m_canvas;
    const Sky &m_sky;
    const Camera &m_camera;
    const Ground &m_ground;
    const Air &m_air;
    int m_cell; ///< In pixels.
    int m_cells;
    Strip m_farther;
    Strip m_nearer;
    std::vector<float> m_sunlit;
    std::vector<Color> m_haze;
    std::vector<float> m_foot;
};

} // namespace

std::vector<float> paintGround(Canvas &canvas, const Sky &sky, const Camera &camera,
    const Ground &ground, const Air &air, const GroundRange &range, const OnStrip &onStrip)
{
    GroundPainter painter(canvas, sky, camera, ground, air);
    float distance = range.farthest;
    painter.start(distance);
    while ((distance = painter.next(distance)) > range.nearest) {
        painter.advance(distance);
        if (onStrip) {
            onStrip(distance);
        }
    }
    return painter.foot();
}

} // namespace imageservice
