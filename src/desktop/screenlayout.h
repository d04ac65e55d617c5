#pragma once

#include "desktop/desktoppicture.h"

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QList>

namespace desktop {

/// All screens as the painter of the desktop lays them out, with the places of all in the same
/// pixels. Beside a screen of twice the density, an ordinary one counts twice its pixels where the
/// desktop lays screens out by how large they look, so that the dense one gets all it can show.
QCoro::Task<QList<Screen>> screenLayout(QDBusConnection bus, QDeadlineTimer deadline);

} // namespace desktop
