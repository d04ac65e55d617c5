#pragma once

#include <QQuickItem>
#include <QStringList>

namespace ui::fakes {

/// What a person would find wrong with the places of what is visible at and below @p root: texts
/// that are cut off or stick out, things that lie on each other. One sentence for each.
QStringList layoutFaults(QQuickItem *root);

} // namespace ui::fakes
