#include "desktop/drawnarrangement.h"

#include "desktop/pngcopy.h"
#include "desktop/shownimage.h"

#include <QHash>
#include <QImageReader>

#include <algorithm>
#include <iterator>
#include <optional>

namespace desktop {

namespace {

/// Reads each file once.
class Images
{
public:
    explicit Images(const Picture &decoded) : m_images{{decoded.file, decoded.image}} { }

    QImage image(const QString &file)
    {
        auto found = m_images.find(file);
        if (found == m_images.end()) {
            found = m_images.insert(file, readShownImage(file));
        }
        return *found;
    }

private:
    QHash<QString, QImage> m_images;
};

bool coverAlike(const Shown &one, const Shown &other)
{
    return one.placement == Placement::Cover && other.placement == Placement::Cover
        && one.file == other.file && one.area == Shown().area && other.area == Shown().area;
}

/// The picture that covers each of the screens; empty when they differ.
QString fileForAll(const Arrangement &wanted)
{
    const auto &screens = wanted.screens;
    const auto first = std::find_if(
        screens.begin(), screens.end(), [](const auto &each) { return each.isAttached(); });
    const bool alike = std::all_of(first, screens.end(), [&](const ShowingScreen &each) {
        return !each.isAttached() || coverAlike(each.shown, first->shown);
    });
    return alike && first != screens.end() ? first->shown.file : QString();
}

/// The file that all of the screens are covered by, where there is such a one and it can be read.
std::optional<QString> fileAsItIs(const Arrangement &wanted, const Picture &decoded)
{
    const QString file = wanted.isSpanning ? QString() : fileForAll(wanted);
    const tl::expected<Picture, QString> picture
        = !file.isEmpty() && file == decoded.file ? decoded : readPicture(file);
    const tl::expected<QString, QString> readable = picture.and_then(fileEveryDesktopReads);
    return readable ? std::optional(*readable) : std::nullopt;
}

bool isLost(const Shown &shown, Images &images)
{
    return !shown.file.isEmpty() && images.image(shown.file).isNull();
}

/// What the file of @p present shows on the screen; nothing where it does not tell the screens
/// apart.
std::optional<Shown> shownInFile(const ShowingScreen &each, const Arrangement &present)
{
    const ShowingScreen *before = present.isSpanning ? present.find(each.screen.name) : nullptr;
    if (before == nullptr || !before->isAttached()) {
        return {};
    }
    return Shown{present.file, areaOfAll(present.attachedScreens(), before->screen),
        Placement::Stretch, each.shown.background};
}

bool overlapsOthers(const Screen &screen, const Arrangement &arrangement)
{
    return std::any_of(
        arrangement.screens.begin(), arrangement.screens.end(), [&](const ShowingScreen &other) {
            return other.screen.name != screen.name
                && other.screen.geometry.intersects(screen.geometry);
        });
}

QRect placeOfAll(const Arrangement &arrangement)
{
    QRect all;
    for (const Screen &screen : arrangement.attachedScreens()) {
        all |= screen.geometry;
    }
    return all;
}

/// Whether the screen stays as it is, pixel for pixel.
bool isDrawnAlready(const ShowingScreen &each, const Arrangement &present)
{
    const ShowingScreen *before = present.isSpanning ? present.find(each.screen.name) : nullptr;
    return before != nullptr && *before == each && !overlapsOthers(each.screen, present)
        && QImageReader(present.file).size() == placeOfAll(present).size();
}

void replaceIfLost(ShowingScreen &each, const Arrangement &present, Images &images)
{
    const std::optional<Shown> seen = shownInFile(each, present);
    if (seen && !isDrawnAlready(each, present) && isLost(each.shown, images)) {
        each.shown = *seen;
    }
}

/// What was composed for a screen that stays as it is is sooner read than its picture, which would
/// have to be scaled again, and is there also when that one is not any more.
ShowingScreen soonestRead(const ShowingScreen &each, const Arrangement &present)
{
    return isDrawnAlready(each, present) ? ShowingScreen{each.screen, *shownInFile(each, present)}
                                         : each;
}

Part partOf(const ShowingScreen &each, Images &images)
{
    const QRectF unit = each.screen.geometry;
    const QRectF &area = each.shown.area;
    const QRectF place(unit.x() + area.x() * unit.width(), unit.y() + area.y() * unit.height(),
        area.width() * unit.width(), area.height() * unit.height());
    return {each.screen.geometry, place.toRect(), images.image(each.shown.file),
        each.shown.placement, each.shown.background};
}

QImage composedImage(const Arrangement &wanted, const Arrangement &present, Images &images)
{
    QList<Part> parts;
    for (const ShowingScreen &each : wanted.screens) {
        if (each.isAttached()) {
            // What lies in the same place as the main screen mirrors it.
            const bool isMain = each.screen.name == wanted.mainScreen;
            parts.insert(isMain ? parts.size() : 0, partOf(soonestRead(each, present), images));
        }
    }
    return compose(parts);
}

/// The only screen that is not drawn as it is to be; nothing where there are several.
std::optional<ShowingScreen> onlyChange(const Arrangement &wanted, const Arrangement &present)
{
    QList<ShowingScreen> changed;
    std::copy_if(wanted.screens.begin(), wanted.screens.end(), std::back_inserter(changed),
        [&](const ShowingScreen &each) {
            return each.isAttached() && !isDrawnAlready(each, present);
        });
    const bool isInPlace = changed.size() == 1 && placeOfAll(wanted) == placeOfAll(present)
        && !overlapsOthers(changed.first().screen, wanted);
    return isInPlace ? std::optional(changed.first()) : std::nullopt;
}

/// A new file for all screens.
tl::expected<QString, QString> draw(const Arrangement &wanted, const Arrangement &present,
    Images &images, const ComposedPictures &pictures)
{
    const std::optional<ShowingScreen> changed = onlyChange(wanted, present);
    const std::optional<QString> file = changed
        ? pictures.saveWithin(present.file, compose({partOf(*changed, images)}),
            changed->screen.geometry.topLeft() - placeOfAll(wanted).topLeft())
        : std::nullopt;
    return file ? *file : pictures.save(composedImage(wanted, present, images));
}

} // namespace

tl::expected<Arrangement, QString> drawn(const Arrangement &wanted, const Arrangement &present,
    const Picture &decoded, const ComposedPictures &pictures)
{
    Arrangement done = wanted;
    const std::optional<QString> asItIs = fileAsItIs(wanted, decoded);
    done.isSpanning = !asItIs;
    if (asItIs) {
        done.file = *asItIs;
        return done;
    }
    Images images(decoded);
    for (ShowingScreen &each : done.screens) {
        replaceIfLost(each, present, images);
    }
    return draw(done, present, images, pictures).map([&](const QString &file) {
        done.file = file;
        return done;
    });
}

} // namespace desktop
