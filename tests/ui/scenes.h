#pragma once

#include "stage.h"

#include <QImage>

#include <functional>
#include <optional>

namespace ui::fakes {

/// Something worth looking at: a window in one of its states.
struct Scene
{
    QString name;
    /// Brings the window into the state and returns it; null if that does not come about.
    std::function<QQuickWindow *(Stage &)> open;
};

/// Every window in every state, with texts and times that are always the same.
QList<Scene> scenes();

/// What the window shows once nothing moves any more and all its pictures are there; nothing if it
/// does not come to rest. Indicators of progress are stopped for this.
std::optional<QImage> pictureAtRest(QQuickWindow *window);

/// What lies on top: an open popup or preview, else the content. In other words, what people can
/// read and use now.
QList<QQuickItem *> topLayer(QQuickWindow *window);

} // namespace ui::fakes
