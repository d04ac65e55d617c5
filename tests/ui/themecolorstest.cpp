#include "ui/themecolors.h"

#include <QPalette>
#include <QTest>

using namespace Qt::StringLiterals;
using ui::ThemeColors;

namespace {

struct Pair
{
    QString name;
    QColor front;
    QColor ground;
};

QPalette palette(const char *window, const char *text, const char *base, const char *button,
    const char *highlight)
{
    QPalette palette{QColor(button), QColor(window)};
    palette.setColor(QPalette::WindowText, QColor(text));
    palette.setColor(QPalette::ButtonText, QColor(text));
    palette.setColor(QPalette::Base, QColor(base));
    palette.setColor(QPalette::Highlight, QColor(highlight));
    return palette;
}

QColor over(const QColor &color, const QColor &ground)
{
    const auto channel = [share = color.alphaF()](
                             float front, float back) { return back + (front - back) * share; };
    return QColor::fromRgbF(channel(color.redF(), ground.redF()),
        channel(color.greenF(), ground.greenF()), channel(color.blueF(), ground.blueF()));
}

/// Every text of the windows, and the symbol of deleting, with what it stands on.
QList<Pair> texts(const ThemeColors &colors)
{
    const QList<Pair> grounds{{u"window"_s, {}, colors.window}, {u"bar"_s, {}, colors.bar},
        {u"group"_s, {}, colors.group}, {u"control"_s, {}, colors.control}};
    const QList<Pair> fronts{{u"text"_s, colors.text, {}}, {u"secondary"_s, colors.secondary, {}},
        {u"tertiary"_s, colors.tertiary, {}}, {u"orange"_s, colors.orange, {}},
        {u"red"_s, colors.red, {}}, {u"green"_s, colors.green, {}}};
    QList<Pair> pairs;
    for (const Pair &ground : grounds) {
        for (const Pair &front : fronts) {
            pairs << Pair{front.name + u" on "_s + ground.name, front.front, ground.ground};
        }
    }
    const QColor tab = over(colors.quaternary, colors.bar);
    pairs << Pair{u"tab"_s, colors.text, tab};
    pairs << Pair{u"button"_s, colors.buttonText, colors.button};
    pairs << Pair{u"button, hovered"_s, colors.buttonText, colors.buttonHovered};
    pairs << Pair{u"button, pressed"_s, colors.buttonText, colors.buttonPressed};
    pairs << Pair{u"trash"_s, colors.red, colors.button};
    pairs << Pair{u"trash, hovered"_s, colors.red, colors.buttonHovered};
    pairs << Pair{u"trash, pressed"_s, colors.red, colors.buttonPressed};
    pairs << Pair{u"disabled button"_s, colors.tertiary, colors.button};
    pairs << Pair{u"main button"_s, colors.prominentText, colors.prominent};
    pairs << Pair{u"main button, hovered"_s, colors.prominentText, colors.prominentHovered};
    pairs << Pair{u"main button, pressed"_s, colors.prominentText, colors.prominentPressed};
    pairs << Pair{u"selection"_s, colors.selectedText, colors.selection};
    return pairs;
}

/// Rings and tracks, and the texts of controls that are disabled.
QList<Pair> shapes(const ThemeColors &colors)
{
    QList<Pair> pairs{
        {u"disabled main button"_s, colors.tertiary, over(colors.quaternary, colors.bar)}};
    for (const QColor &ground : {colors.window, colors.bar, colors.group}) {
        pairs << Pair{u"focus ring"_s, colors.focusRing, ground};
        pairs << Pair{u"track"_s, colors.track, ground};
    }
    return pairs;
}

QString faint(const QList<Pair> &pairs, double least)
{
    QStringList found;
    for (const Pair &pair : pairs) {
        const double contrast = ThemeColors::contrast(pair.front, pair.ground);
        if (contrast < least) {
            found << u"%1: %2"_s.arg(pair.name).arg(contrast, 0, 'f', 2);
        }
    }
    return found.join(u", "_s);
}

void addPalettes()
{
    QTest::addColumn<QPalette>("palette");
    QTest::newRow("light") << palette("#eff0f1", "#1f2225", "#ffffff", "#fcfcfc", "#2f74c8");
    QTest::newRow("dark") << palette("#2a2a2c", "#ffffff", "#1e1e20", "#353538", "#3daee9");
    QTest::newRow("grey") << palette("#d4d0c8", "#000000", "#ffffff", "#d4d0c8", "#0a246a");
    QTest::newRow("soft light") << palette("#f6f5f4", "#2e3436", "#ffffff", "#f6f5f4", "#3584e4");
    QTest::newRow("soft dark") << palette("#353535", "#eeeeec", "#2d2d2d", "#353535", "#15539e");
    QTest::newRow("green accent") << palette("#f0f0f0", "#303030", "#ffffff", "#e8e8e8", "#9ab87c");
    QTest::newRow("yellow accent")
        << palette("#202020", "#f0f0f0", "#101010", "#303030", "#ffd500");
    QTest::newRow("black") << palette("#000000", "#ffffff", "#000000", "#000000", "#1aebff");
    QTest::newRow("white") << palette("#ffffff", "#000000", "#ffffff", "#ffffff", "#37006e");
}

} // namespace

class ThemeColorsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void contrastIsThatOfTheGuidelines();
    void everyTextIsLegible_data() { addPalettes(); }
    void everyTextIsLegible();
    void shapesStandOut_data() { addPalettes(); }
    void shapesStandOut();
    void schemeIsThatOfThePalette();
    void whereNoColorIsLegibleOnAllSurfacesTextIsBlackOrWhite_data();
    void whereNoColorIsLegibleOnAllSurfacesTextIsBlackOrWhite();
};

void ThemeColorsTest::contrastIsThatOfTheGuidelines()
{
    QCOMPARE(ThemeColors::contrast(Qt::black, Qt::white), 21.0);
    QCOMPARE(ThemeColors::contrast(Qt::white, Qt::black), 21.0);
    QCOMPARE(ThemeColors::contrast(Qt::red, Qt::red), 1.0);
    QVERIFY(std::abs(ThemeColors::contrast(QColor(0x76, 0x76, 0x76), Qt::white) - 4.54) < 0.01);
}

void ThemeColorsTest::everyTextIsLegible()
{
    QFETCH(QPalette, palette);
    QCOMPARE(faint(texts(ThemeColors::from(palette)), 4.5), QString());
}

void ThemeColorsTest::shapesStandOut()
{
    QFETCH(QPalette, palette);
    QCOMPARE(faint(shapes(ThemeColors::from(palette)), 3), QString());
}

void ThemeColorsTest::schemeIsThatOfThePalette()
{
    QVERIFY(ThemeColors::from(palette("#202020", "#f0f0f0", "#101010", "#303030", "#ffd500")).dark);
    QVERIFY(
        !ThemeColors::from(palette("#ffffff", "#000000", "#ffffff", "#ffffff", "#37006e")).dark);
}

void ThemeColorsTest::whereNoColorIsLegibleOnAllSurfacesTextIsBlackOrWhite_data()
{
    QTest::addColumn<QPalette>("palette");
    QTest::addColumn<QColor>("expected");
    QTest::newRow("black fields in a white window")
        << palette("#ffffff", "#101010", "#000000", "#808080", "#37006e") << QColor(Qt::black);
    QTest::newRow("white fields in a black window")
        << palette("#000000", "#f0f0f0", "#ffffff", "#808080", "#37006e") << QColor(Qt::white);
}

void ThemeColorsTest::whereNoColorIsLegibleOnAllSurfacesTextIsBlackOrWhite()
{
    QFETCH(const QPalette, palette);
    QFETCH(const QColor, expected);
    const ThemeColors colors = ThemeColors::from(palette);
    for (const QColor &text :
        {colors.secondary, colors.tertiary, colors.orange, colors.red, colors.green}) {
        QCOMPARE(text, expected);
    }
}

QTEST_MAIN(ThemeColorsTest)
#include "themecolorstest.moc"
