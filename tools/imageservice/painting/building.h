#pragma once

#include "imageservice/painting/canvas.h"
#include "imageservice/painting/dice.h"

namespace imageservice {

/// A block of a tower: a front with a raster of windows. Lengths are in pixels.
struct Block
{
    float left;
    float right;
    float top;
    float bottom;
    Color low; ///< Of the wall at the street.
    Color high; ///< Of the wall at the roof.
    float windowWidth;
    float windowHeight;
    float litShare; ///< Of the windows.
    float brightness; ///< Of a lit window.
    Color lamps;
    quint32 tenants; ///< Decides which windows are lit.
};

void paintBlock(Canvas &canvas, const Block &block);

} // namespace imageservice
