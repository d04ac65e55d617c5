#include "imageservice/painting/painter.h"

#include "imageservice/painting/bloom.h"
#include "imageservice/painting/city.h"
#include "imageservice/painting/dunes.h"
#include "imageservice/painting/forest.h"
#include "imageservice/painting/mountains.h"
#include "imageservice/painting/sea.h"

namespace imageservice {

namespace {

void paintMotif(Canvas &canvas, const Scene &scene)
{
    switch (scene.motif) {
    case Motif::Sea:
        return paintSea(canvas, scene);
    case Motif::Dunes:
        return paintDunes(canvas, scene);
    case Motif::City:
        return paintCity(canvas, scene);
    case Motif::Forest:
        return paintForest(canvas, scene);
    case Motif::Mountains:
        return paintMountains(canvas, scene);
    }
}

} // namespace

QImage painted(const Scene &scene, QSize size)
{
    Canvas canvas(size.expandedTo({16, 16}));
    paintMotif(canvas, scene);
    paintBloom(canvas);
    return canvas.developed(scene.seed);
}

} // namespace imageservice
