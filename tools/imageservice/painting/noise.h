#pragma once

#include <QtGlobal>

#include <array>
#include <vector>

namespace imageservice {

/// Smooth randomness over a plane, about one bump per unit. Repeats after 256 units.
class Noise
{
public:
    struct Slope
    {
        float value;
        float alongX;
        float alongY;
    };

    explicit Noise(quint64 seed);

    /// From -1 to 1, mostly within a half.
    float at(float x, float y) const;
    /// Value noise from 0 to 1 with its slope.
    Slope slopeAt(float x, float y) const;
    /// @p octaves of at(), each half as large and half as strong as the one before; about -1 to 1.
    float fractal(float x, float y, int octaves) const;
    /// Like fractal(), folded into sharp crests; 0 to 1.
    float ridged(float x, float y, int octaves) const;
    /// Noise along a line, -1 to 1.
    float along(float x, int octaves) const;

private:
    static constexpr int Size = 256;

    quint8 lattice(int x, int y) const
    {
        return m_lattice[static_cast<size_t>(y & (Size - 1)) * Size
            + static_cast<size_t>(x & (Size - 1))];
    }
    float corner(int x, int y, float dx, float dy) const
    {
        const auto [alongX, alongY] = m_directions[lattice(x, y)];
        return alongX * dx + alongY * dy;
    }

    struct Direction
    {
        float alongX;
        float alongY;
    };

    std::array<Direction, Size> m_directions{};
    std::vector<quint8> m_lattice;
};

} // namespace imageservice
