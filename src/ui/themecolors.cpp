#include "ui/themecolors.h"

#include <QList>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace ui {

namespace {

constexpr double readableText = 4.5;
constexpr double visibleShape = 3.0;

QColor mixed(const QColor &from, const QColor &to, double share)
{
    const auto channel
        = [share](float a, float b) { return static_cast<float>(a + (b - a) * share); };
    return QColor::fromRgbF(channel(from.redF(), to.redF()), channel(from.greenF(), to.greenF()),
        channel(from.blueF(), to.blueF()));
}

QColor translucent(QColor color, float alpha)
{
    color.setAlphaF(alpha);
    return color;
}

double luminance(const QColor &color)
{
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
        + 0.0722 * linear(color.blueF());
}

double leastContrast(const QColor &color, const QList<QColor> &surfaces)
{
    double least = 21;
    for (const QColor &surface : surfaces) {
        least = std::min(least, ThemeColors::contrast(color, surface));
    }
    return least;
}

/// @p color, moved towards @p pole just as far as it takes to stand out from every surface.
QColor legible(
    const QColor &color, const QColor &pole, const QList<QColor> &surfaces, double minimum)
{
    constexpr int steps = 40;
    for (int step = 0; step < steps; ++step) {
        const QColor candidate = mixed(color, pole, double(step) / steps);
        if (leastContrast(candidate, surfaces) >= minimum) {
            return candidate;
        }
    }
    return pole;
}

void addSurfaces(ThemeColors &colors, const QPalette &palette)
{
    colors.window = palette.color(QPalette::Active, QPalette::Window);
    colors.text = palette.color(QPalette::Active, QPalette::WindowText);
    colors.dark = luminance(colors.window) < luminance(colors.text);
    colors.control = palette.color(QPalette::Active, QPalette::Base);
    colors.bar = mixed(colors.window, colors.text, 0.045);
    const bool baseStandsOut
        = !colors.dark && ThemeColors::contrast(colors.window, colors.control) > 1.04;
    colors.group = baseStandsOut ? colors.control : mixed(colors.window, colors.text, 0.045);
    colors.ultraThin = translucent(colors.window, 0.7F);
    colors.button = palette.color(QPalette::Active, QPalette::Button);
    colors.buttonText = palette.color(QPalette::Active, QPalette::ButtonText);
    colors.buttonHovered = mixed(colors.button, colors.buttonText, 0.06);
    colors.buttonPressed = mixed(colors.button, colors.buttonText, 0.14);
}

void addTexts(ThemeColors &colors)
{
    const QColor pole = colors.dark ? Qt::white : Qt::black;
    const QList<QColor> surfaces{
        colors.window, colors.bar, colors.group, colors.control, colors.button};
    const auto text
        = [&](const QColor &wish) { return legible(wish, pole, surfaces, readableText); };
    colors.secondary = text(mixed(colors.window, colors.text, 0.7));
    colors.tertiary = text(mixed(colors.window, colors.text, 0.55));
    colors.orange = text(colors.dark ? QColor(0xff, 0xb0, 0x4d) : QColor(0xc0, 0x56, 0x00));
    // Stands on buttons, too, in all their states.
    colors.red = legible(colors.dark ? QColor(0xff, 0x7f, 0x76) : QColor(0xcc, 0x2c, 0x20), pole,
        surfaces + QList<QColor>{colors.buttonHovered, colors.buttonPressed}, readableText);
    colors.green = text(colors.dark ? QColor(0x5f, 0xd3, 0x7a) : QColor(0x1f, 0x80, 0x36));
}

void addAccents(ThemeColors &colors, const QPalette &palette)
{
    const QColor accent = palette.color(QPalette::Active, QPalette::Highlight);
    const QColor darkened = legible(accent, Qt::black, {Qt::white}, readableText);
    // A light accent, yellow for instance, would turn to mud: it keeps its colour under black text.
    const bool keepsHue = luminance(darkened) > luminance(accent) * 0.55;
    colors.prominent = keepsHue ? darkened : accent;
    colors.prominentText = keepsHue ? QColor(Qt::white) : QColor(Qt::black);
    const QColor towards = keepsHue ? Qt::black : Qt::white;
    colors.prominentHovered = mixed(colors.prominent, towards, 0.08);
    colors.prominentPressed = mixed(colors.prominent, towards, 0.2);
    const QColor pole = colors.dark ? Qt::white : Qt::black;
    colors.focusRing
        = legible(accent, pole, {colors.window, colors.bar, colors.group}, visibleShape);
    colors.selection = colors.prominent;
    colors.selectedText = colors.prominentText;
}

void addLines(ThemeColors &colors)
{
    const QColor pole = colors.dark ? Qt::white : Qt::black;
    colors.quaternary = translucent(colors.text, 0.09F);
    colors.separator = mixed(colors.window, colors.text, 0.16);
    colors.outline = mixed(colors.window, colors.text, 0.26);
    colors.track = legible(mixed(colors.window, colors.text, 0.4), pole,
        {colors.window, colors.bar, colors.group}, visibleShape);
}

} // namespace

double ThemeColors::contrast(const QColor &one, const QColor &other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

ThemeColors ThemeColors::from(const QPalette &palette)
{
    ThemeColors colors;
    addSurfaces(colors, palette);
    addTexts(colors);
    addAccents(colors, palette);
    addLines(colors);
    return colors;
}

} // namespace ui
