#include "imageservice/painting/scene.h"

#include "imageservice/painting/lexicon.h"

#include <QCryptographicHash>
#include <QtEndian>

namespace imageservice {

namespace {

/// The same on every machine and for ever, unlike qHash().
quint64 seedOf(const QString &prompt, const QString &model)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(model.toUtf8());
    hash.addData(QByteArrayView("\0", 1));
    hash.addData(prompt.toUtf8());
    return qFromBigEndian<quint64>(hash.result().constData());
}

Motif motifFor(const Wishes &wishes, Dice dice)
{
    constexpr std::array Any = {
        Motif::Mountains, Motif::Sea, Motif::Dunes, Motif::City, Motif::Forest, Motif::Mountains};
    const Motif open = Any[dice.below(static_cast<int>(Any.size()))];
    const bool wild = wishes.aurora || wishes.snow || wishes.water;
    return wishes.motif.value_or(wild ? Motif::Mountains : open);
}

Daytime daytimeFor(const Wishes &wishes, Motif motif, Dice dice)
{
    constexpr std::array Any = {
        Daytime::Sunset, Daytime::Dusk, Daytime::Day, Daytime::Dawn, Daytime::Sunset, Daytime::Day};
    constexpr std::array InTown = {Daytime::Night, Daytime::Dusk};
    const Daytime outside = Any[dice.below(static_cast<int>(Any.size()))];
    const Daytime inTown = InTown[dice.below(static_cast<int>(InTown.size()))];
    if (wishes.aurora || (wishes.moon && !wishes.daytime)) {
        return Daytime::Night;
    }
    return wishes.daytime.value_or(motif == Motif::City ? inTown : outside);
}

float starsAt(Daytime daytime)
{
    switch (daytime) {
    case Daytime::Night:
        return 1;
    case Daytime::Dusk:
        return 0.3F;
    default:
        return 0;
    }
}

float sunHeight(Daytime daytime, Dice dice)
{
    switch (daytime) {
    case Daytime::Day:
        return dice.between(0.42F, 0.55F);
    case Daytime::Night:
        return dice.between(0.24F, 0.36F);
    case Daytime::Dusk:
        return -0.06F;
    default:
        return dice.between(0.05F, 0.13F);
    }
}

} // namespace

Scene sceneFor(const QString &prompt, const QString &model)
{
    const Wishes wishes = wishesIn(prompt);
    Scene scene;
    scene.seed = seedOf(prompt, model);
    Dice dice = scene.dice("scene");
    scene.motif = motifFor(wishes, scene.dice("motif"));
    scene.daytime = daytimeFor(wishes, scene.motif, scene.dice("daytime"));
    scene.snow = wishes.snow || wishes.aurora;
    scene.aurora = wishes.aurora;
    scene.autumn = wishes.autumn;
    scene.moon
        = wishes.moon || (scene.daytime == Daytime::Night && !scene.aurora && dice.chance(0.6F));
    scene.clouds = wishes.clouds.value_or(scene.aurora ? 0.0F : dice.between(0.1F, 0.6F));
    scene.mist = wishes.mist.value_or(dice.between(0.1F, 0.5F));
    scene.stars = starsAt(scene.daytime);
    scene.sunAcross = dice.chance(0.5F) ? dice.between(0.16F, 0.4F) : dice.between(0.6F, 0.84F);
    scene.sunUp = sunHeight(scene.daytime, scene.dice("sun"));
    scene.palette = paletteFor(scene.daytime, scene.dice("palette"), wishes.tint);
    if (scene.aurora) {
        scene.palette.ambient = mix(scene.palette.ambient, Color::fromRgb(0x2E8A70), 0.45F);
    }
    return scene;
}

} // namespace imageservice
