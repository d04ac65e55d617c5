#include "imageservice/painting/sea.h"

#include "imageservice/painting/ridges.h"
#include "imageservice/painting/sky.h"
#include "imageservice/painting/waves.h"

namespace imageservice {

void paintSea(Canvas &canvas, const Scene &scene)
{
    const Sky sky(scene, canvas.aspect(), scene.dice("sea").between(0.46F, 0.58F));
    paintSky(canvas, sky);
    paintRidges(canvas, sky, {3, sky.horizon(), 0.11F, 0.35F, 0.25F + 0.3F * scene.mist, true});
    paintWaves(canvas, sky);
}

} // namespace imageservice
