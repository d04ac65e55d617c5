#pragma once

#include <QColor>

class QPalette;

namespace ui {

/// The named colours of the windows, reckoned from the desktop's palette.
///
/// Every text colour reads with at least 4.5:1 on every surface, in dark and in light palettes.
struct ThemeColors
{
    static ThemeColors from(const QPalette &palette);
    /// The ratio of relative luminances, from 1 to 21; both colours are taken as opaque.
    static double contrast(const QColor &one, const QColor &other);

    bool dark = false;
    // Surfaces.
    QColor window;
    QColor bar;
    QColor group;
    QColor control;
    QColor ultraThin;
    // Texts and icons.
    QColor text;
    QColor secondary;
    QColor tertiary;
    QColor orange;
    QColor red;
    QColor green;
    // Fills and lines.
    QColor quaternary;
    QColor separator;
    QColor outline;
    QColor track;
    QColor button;
    QColor buttonHovered;
    QColor buttonPressed;
    QColor buttonText;
    QColor prominent;
    QColor prominentHovered;
    QColor prominentPressed;
    QColor prominentText;
    QColor focusRing;
    QColor selection;
    QColor selectedText;

    friend bool operator==(const ThemeColors &, const ThemeColors &) = default;
};

} // namespace ui
