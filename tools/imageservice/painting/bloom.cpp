#include "imageservice/painting/bloom.h"

#include <vector>

namespace imageservice {

namespace {

/// A small copy of the canvas that holds the light above what a screen shows.
class Glare
{
public:
    Glare(const Canvas &canvas, int coarseness)
        : m_coarseness(coarseness), m_width(canvas.width() / coarseness + 2),
          m_height(canvas.height() / coarseness + 2),
          m_light(static_cast<size_t>(m_width) * m_height)
    {
        const float share = 1 / static_cast<float>(coarseness * coarseness);
        for (int y = 0; y < canvas.height(); ++y) {
            const Color *row = canvas.row(y);
            Color *to = at(0, y / coarseness);
            for (int x = 0; x < canvas.width(); ++x) {
                const float over = std::max({row[x].red, row[x].green, row[x].blue}) - 0.85F;
                if (over > 0) {
                    to[x / coarseness]
                        = to[x / coarseness] + row[x] * (share * std::min(over, 1.5F));
                }
            }
        }
    }

    /// Three box blurs are as good as a bell.
    void blur(int reach)
    {
        for (int pass = 0; pass < 3; ++pass) {
            for (int y = 0; y < m_height; ++y) {
                blurLine(at(0, y), 1, m_width, reach);
            }
            for (int x = 0; x < m_width; ++x) {
                blurLine(at(x, 0), m_width, m_height, reach);
            }
        }
    }

    void add(const Glare &other)
    {
        for (size_t index = 0; index < m_light.size(); ++index) {
            m_light[index] = m_light[index] + other.m_light[index];
        }
    }

    void addTo(Canvas &canvas, float strength)
    {
        const float step = 1 / static_cast<float>(m_coarseness);
        for (int y = 0; y < canvas.height(); ++y) {
            const int line = y / m_coarseness;
            const float dy = static_cast<float>(y - line * m_coarseness) * step;
            const Color *upper = at(0, line);
            const Color *lower = at(0, line + 1);
            Color *row = canvas.row(y);
            for (int x = 0; x < canvas.width(); ++x) {
                const int column = x / m_coarseness;
                const float dx = static_cast<float>(x - column * m_coarseness) * step;
                const Color light = mix(mix(upper[column], upper[column + 1], dx),
                    mix(lower[column], lower[column + 1], dx), dy);
                row[x] = row[x] + light * strength;
            }
        }
    }

private:
    Color *at(int x, int y) { return m_light.data() + static_cast<size_t>(y) * m_width + x; }

    void blurLine(Color *line, int stride, int count, int reach)
    {
        m_line.resize(count);
        for (int index = 0; index < count; ++index) {
            m_line[index] = line[static_cast<qsizetype>(index) * stride];
        }
        const auto clamped = [&](int index) { return m_line[std::clamp(index, 0, count - 1)]; };
        Color sum;
        for (int index = -reach; index <= reach; ++index) {
            sum = sum + clamped(index);
        }
        const float share = 1 / static_cast<float>(2 * reach + 1);
        for (int index = 0; index < count; ++index) {
            line[static_cast<qsizetype>(index) * stride] = sum * share;
            sum = sum + clamped(index + reach + 1) - clamped(index - reach);
        }
    }

    int m_coarseness;
    int m_width;
    int m_height;
    std::vector<Color> m_light;
    std::vector<Color> m_line;
};

} // namespace

void paintBloom(Canvas &canvas)
{
    const int coarseness = std::max(canvas.height() / 360, 1);
    Glare wide(canvas, coarseness);
    Glare close = wide;
    wide.blur(10);
    close.blur(2);
    wide.add(close);
    wide.addTo(canvas, 0.4F);
}

} // namespace imageservice
