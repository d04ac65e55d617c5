#pragma once

#include "desktop/composition.h"
#include "desktop/desktoppicture.h"

#include <QJsonObject>
#include <QList>
#include <QRectF>
#include <QString>

namespace desktop {

/// A picture as one screen shows it.
struct Shown
{
    QString file; ///< Empty for none.
    /// The area that it is laid out in, counted in widths and heights of the screen from its top
    /// left corner. Larger than the screen itself where the picture spans several.
    QRectF area{0, 0, 1, 1};
    Placement placement = Placement::Cover;
    Backdrop background = {};

    friend bool operator==(const Shown &, const Shown &) = default;
};

struct ShowingScreen
{
    Screen screen; ///< Without a geometry while it is not attached.
    Shown shown;

    bool isAttached() const { return !screen.geometry.isEmpty(); }

    friend bool operator==(const ShowingScreen &, const ShowingScreen &) = default;
};

/// What a desktop that has one picture for all screens is set to.
struct Setting
{
    QString file; ///< Empty for none.
    Placement placement = Placement::Cover;
    bool isSpanning = false; ///< One large picture over all screens, not one for each.
    Backdrop background = {};
    /// Whether any other file, set by itself, would cover each screen.
    bool coversEachScreen = true;
};

/// Which screen shows what, and the one file that makes the desktop show it.
struct Arrangement
{
    QString file;
    bool isSpanning = false;
    QString mainScreen; ///< Its name; new screens begin with its picture.
    QList<ShowingScreen> screens;

    QList<Screen> attachedScreens() const;
    /// Null when there is no screen of this name.
    const ShowingScreen *find(const QString &name) const;

    friend bool operator==(const Arrangement &, const Arrangement &) = default;
};

/// All of @p screens together as an area of one of them, see Shown.
QRectF areaOfAll(const QList<Screen> &screens, const Screen &seenFrom);

/// What @p screens show now. If @p remembered is not empty, it tells this, and those now detached
/// are remembered on; else every screen shows what the desktop is set to.
Arrangement presentArrangement(
    const Arrangement &remembered, const Setting &setting, const QList<Screen> &screens);

QJsonObject toJson(const Arrangement &arrangement);
/// Empty where the object is not what toJson() makes.
Arrangement arrangementFromJson(const QJsonObject &object);

} // namespace desktop
