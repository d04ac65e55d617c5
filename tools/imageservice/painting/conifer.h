#pragma once

#include "imageservice/painting/canvas.h"

namespace imageservice {

/// One spruce, seen from the side. Places and lengths are in pixels.
struct Conifer
{
    float x;
    float foot;
    float height;
    float slimness; ///< Half the width at the foot as a share of the height.
    quint32 shape; ///< Decides the branches.
    Color shade;
    Color lit; ///< On the side that faces the sun.
    float sunSide; ///< -1 left, 1 right.
    float snow; ///< 0 none, 1 laden.
    Color snowColor;
};

void paintConifer(Canvas &canvas, const Conifer &tree);

} // namespace imageservice
