#pragma once

#include <QImage>

#include <optional>

namespace ui::fakes {

/// In what one picture of a window is not another.
struct Difference
{
    QRect where; ///< Around all pixels that differ.
    qsizetype pixels = 0;
    QImage marked; ///< The new picture, pale, with these pixels in red.
};

/// What a person would see to be different. Nothing if it is no more than the shade of some edges,
/// which varies with the libraries that draw them.
std::optional<Difference> difference(const QImage &approved, const QImage &made);

} // namespace ui::fakes
