#pragma once

#include "imageservice/painting/canvas.h"

#include <functional>
#include <vector>

namespace imageservice {

/// A soft quantity over a part of the canvas, worked out on a coarse raster and read smoothly
/// between its points. Clouds and auroras cost a tenth of what they would per pixel.
class Field
{
public:
    /// The whole width of the canvas between two heights from its top.
    struct Extent
    {
        float top;
        float bottom;
    };

    /// @p cell is the width of the raster; it and the places that @p value is asked at are in
    /// canvas heights.
    Field(const Canvas &canvas, Extent extent, float cell,
        const std::function<float(float, float)> &value);

    /// The value at a pixel of the canvas; places outside are moved to the rim.
    float at(int x, int y) const;

private:
    int m_cell; ///< In pixels, as all below.
    int m_top;
    int m_columns;
    int m_rows;
    std::vector<float> m_values;
};

} // namespace imageservice
