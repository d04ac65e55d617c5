#pragma once

#include "imageservice/painting/air.h"

#include <functional>
#include <vector>

namespace imageservice {

/// Stands at the origin, looks along +z. Lengths on the ground have no unit; @p focal maps them to
/// canvas heights.
struct Camera
{
    float horizon; ///< On the canvas, in its heights from the top.
    float altitude;
    float focal;
    float middle; ///< On the canvas, in its heights from the left.

    /// Canvas height from the top of a point.
    float yOf(float height, float distance) const
    {
        return horizon + focal * (altitude - height) / distance;
    }
    float xOf(float x, float distance) const { return middle + focal * x / distance; }
    float groundX(float canvasX, float distance) const
    {
        return (canvasX - middle) * distance / focal;
    }
};

struct GroundPoint
{
    float x;
    float distance;
    float height;
    float normalX;
    float normalUp;
    float normalAway;
    float sunlit; ///< 0 in the shadow of other ground, 1 in the open.
};

/// A landscape as a height above each place. Implementations are asked for some millions of points
/// and should be quick.
class Ground
{
public:
    Ground() = default;
    Ground(const Ground &) = delete;
    Ground &operator=(const Ground &) = delete;
    virtual ~Ground() = default;

    /// @p detail is the smallest length that can be seen there.
    virtual float height(float x, float distance, float detail) const = 0;
    /// Colour of the lit surface, without the air before it.
    virtual Color color(const GroundPoint &point) const = 0;
};

struct GroundRange
{
    float nearest;
    float farthest;
};

/// Called after each strip of ground, from far to near, with its distance; for what stands on it.
using OnStrip = std::function<void(float distance)>;

/// Paints the ground above height 0 from far to near, with the sun's shadows falling sideways.
/// Returns for each column of pixels the row where the ground ends.
std::vector<float> paintGround(Canvas &canvas, const Sky &sky, const Camera &camera,
    const Ground &ground, const Air &air, const GroundRange &range, const OnStrip &onStrip = {});

} // namespace imageservice
