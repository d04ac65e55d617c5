#include "desktop/arrangement.h"

#include <QFile>
#include <QJsonArray>

#include <algorithm>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

Shown shownBy(const Setting &setting, const Screen &screen, const QList<Screen> &screens)
{
    Shown shown{setting.file, {0, 0, 1, 1}, setting.placement, setting.background};
    if (setting.isSpanning) {
        shown.area = areaOfAll(screens, screen);
    }
    return shown;
}

// Names of screens behind a docking station may be new each time: they are remembered for as long
// as their pictures exist.
QList<ShowingScreen> detachedScreens(const Arrangement &remembered, const Arrangement &present)
{
    QList<ShowingScreen> detached;
    for (const ShowingScreen &each : remembered.screens) {
        if (present.find(each.screen.name) == nullptr && QFile::exists(each.shown.file)) {
            detached.append({{each.screen.name, {}}, each.shown});
        }
    }
    return detached;
}

QJsonArray toJson(const QRectF &rect)
{
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

QRectF rectFromJson(const QJsonValue &value)
{
    const QJsonArray numbers = value.toArray();
    return {
        numbers[0].toDouble(), numbers[1].toDouble(), numbers[2].toDouble(), numbers[3].toDouble()};
}

QJsonObject toJson(const ShowingScreen &each)
{
    return {
        {u"name"_s, each.screen.name},
        {u"geometry"_s, toJson(QRectF(each.screen.geometry))},
        {u"file"_s, each.shown.file},
        {u"area"_s, toJson(each.shown.area)},
        {u"placement"_s, int(each.shown.placement)},
        {u"background"_s, each.shown.background.colour.name()},
        {u"backgroundEnd"_s, each.shown.background.endColour.name()},
        {u"shading"_s, int(each.shown.background.shading)},
    };
}

Backdrop backdropFromJson(const QJsonObject &object)
{
    Backdrop backdrop(QColor(object[u"background"_s].toString()));
    backdrop.endColour = QColor(object[u"backgroundEnd"_s].toString());
    backdrop.shading = Backdrop::Shading(std::clamp(object[u"shading"_s].toInt(),
        int(Backdrop::Shading::Solid), int(Backdrop::Shading::FromTopToBottom)));
    return backdrop;
}

ShowingScreen showingScreenFromJson(const QJsonObject &object)
{
    const Screen screen{object[u"name"_s].toString(), rectFromJson(object[u"geometry"_s]).toRect()};
    const int placement
        = std::clamp(object[u"placement"_s].toInt(), int(Placement::None), int(Placement::Cover));
    return {screen,
        {object[u"file"_s].toString(), rectFromJson(object[u"area"_s]), Placement(placement),
            backdropFromJson(object)}};
}

} // namespace

QList<Screen> Arrangement::attachedScreens() const
{
    QList<Screen> found;
    for (const ShowingScreen &each : screens) {
        if (each.isAttached()) {
            found.append(each.screen);
        }
    }
    return found;
}

const ShowingScreen *Arrangement::find(const QString &name) const
{
    const auto found = std::find_if(screens.begin(), screens.end(),
        [&](const ShowingScreen &each) { return each.screen.name == name; });
    return found == screens.end() ? nullptr : &*found;
}

QRectF areaOfAll(const QList<Screen> &screens, const Screen &seenFrom)
{
    QRect all;
    for (const Screen &screen : screens) {
        all |= screen.geometry;
    }
    const QRectF unit = seenFrom.geometry;
    return {(all.x() - unit.x()) / unit.width(), (all.y() - unit.y()) / unit.height(),
        all.width() / unit.width(), all.height() / unit.height()};
}

Arrangement presentArrangement(
    const Arrangement &remembered, const Setting &setting, const QList<Screen> &screens)
{
    const ShowingScreen *main = remembered.find(remembered.mainScreen);
    Arrangement present{setting.file, setting.isSpanning, remembered.mainScreen, {}};
    for (const Screen &screen : screens) {
        const ShowingScreen *known = remembered.find(screen.name);
        const ShowingScreen *like = known != nullptr ? known : main;
        present.screens.append(
            {screen, like != nullptr ? like->shown : shownBy(setting, screen, screens)});
    }
    present.screens += detachedScreens(remembered, present);
    return present;
}

QJsonObject toJson(const Arrangement &arrangement)
{
    QJsonArray screens;
    for (const ShowingScreen &each : arrangement.screens) {
        screens.append(toJson(each));
    }
    return {
        {u"file"_s, arrangement.file},
        {u"isSpanning"_s, arrangement.isSpanning},
        {u"mainScreen"_s, arrangement.mainScreen},
        {u"screens"_s, screens},
    };
}

Arrangement arrangementFromJson(const QJsonObject &object)
{
    Arrangement arrangement{object[u"file"_s].toString(), object[u"isSpanning"_s].toBool(),
        object[u"mainScreen"_s].toString(), {}};
    const QJsonArray screens = object[u"screens"_s].toArray();
    for (const auto &screen : screens) {
        arrangement.screens.append(showingScreenFromJson(screen.toObject()));
    }
    return arrangement;
}

} // namespace desktop
