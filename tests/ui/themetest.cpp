#include "stage.h"

#include "ui/themecolors.h"

#include <QGuiApplication>
#include <QPalette>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace ui::fakes;

namespace {

constexpr double readable = 4.5;

QPalette lightPalette()
{
    QPalette palette(QColor(0xef, 0xf0, 0xf1));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0xae, 0xe9));
    return palette;
}

QPalette darkPalette()
{
    QPalette palette(QColor(0x31, 0x36, 0x3b), QColor(0x2a, 0x2e, 0x32));
    palette.setColor(QPalette::Base, QColor(0x1b, 0x1e, 0x20));
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0xae, 0xe9));
    return palette;
}

/// Grey on grey: what is readable here owes nothing to a helpful palette.
QPalette dullPalette()
{
    QPalette palette(QColor(0xc8, 0xc8, 0xc8), QColor(0xb8, 0xb8, 0xb8));
    palette.setColor(QPalette::Base, QColor(0xc0, 0xc0, 0xc0));
    palette.setColor(QPalette::Highlight, QColor(0xf0, 0xd0, 0x20));
    return palette;
}

/// What is drawn of @p item's surface over what is behind it; null if the item draws no ground.
QColor ground(QQuickItem *item)
{
    const bool fills = item->inherits("QQuickRectangle") && item->opacity() > 0;
    QColor color = fills ? item->property("color").value<QColor>() : QColor(Qt::transparent);
    color.setAlphaF(color.alphaF() * float(item->opacity()));
    return color;
}

QColor over(const QColor &top, const QColor &below)
{
    const auto mix = [share = top.alphaF()](
                         float one, float other) { return one * share + other * (1 - share); };
    return QColor::fromRgbF(mix(top.redF(), below.redF()), mix(top.greenF(), below.greenF()),
        mix(top.blueF(), below.blueF()));
}

/// The colour that a person sees behind @p item: the grounds that cover its middle, on one another,
/// as far as they are painted before it.
QColor behind(QQuickItem *item)
{
    QQuickWindow *window = item->window();
    const QPointF middle = place(item).center();
    QColor seen = window->color();
    const auto items = visibleItems(window);
    for (QQuickItem *one : items) {
        if (one == item) {
            break;
        }
        if (place(one).contains(middle)) {
            seen = over(ground(one), seen);
        }
    }
    return seen;
}

QList<QQuickItem *> inkedItems(QQuickWindow *window)
{
    QList<QQuickItem *> inked = itemsOfType(window->contentItem(), "QQuickText");
    for (const char *type : {"QQuickTextInput", "QQuickTextEdit", "ui::Symbol"}) {
        inked << itemsOfType(window->contentItem(), type);
    }
    return inked;
}

/// A disabled control may be faint.
bool countsAsText(QQuickItem *item)
{
    const QVariant text = item->property("text");
    const bool empty = text.isValid() && text.toString().isEmpty();
    // What a picker shows is a field that only the picker itself makes use of.
    QQuickItem *control = item->inherits("QQuickTextField") ? item->parentItem() : item;
    return control->isEnabled() && !empty && item->width() > 0;
}

QString describe(QQuickItem *item, const QColor &ink, const QColor &paper)
{
    const QString what = item->property(item->inherits("QQuickText") ? "text" : "name").toString();
    return u"%1: %2 on %3 is %4"_s.arg(
        what, ink.name(), paper.name(), QString::number(ui::ThemeColors::contrast(ink, paper)));
}

QStringList illegible(QQuickWindow *window)
{
    QStringList found;
    const auto items = inkedItems(window);
    for (QQuickItem *item : items) {
        const QColor paper = behind(item);
        const QColor ink = over(item->property("color").value<QColor>(), paper);
        if (countsAsText(item) && ui::ThemeColors::contrast(ink, paper) < readable) {
            found << describe(item, ink, paper);
        }
    }
    return found;
}

QFont fontOf(QQuickItem *item)
{
    return item->property("font").value<QFont>();
}

} // namespace

/// The windows while the desktop changes its colours and fonts under them.
class ThemeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void openWindowFollowsThePalette();
    void openWindowFollowsTheAccent();
    void openWindowFollowsTheFontSize();
    void openWindowFollowsTheFontFamily();
    void openSettingsFollowTheFont_data();
    void openSettingsFollowTheFont();
    void largeFontKeepsEverythingInPlace();
    void everythingIsReadable_data();
    void everythingIsReadable();

private:
    QPalette m_palette;
    QFont m_font;
};

void ThemeTest::init()
{
    m_palette = QGuiApplication::palette();
    m_font = QGuiApplication::font();
}

void ThemeTest::cleanup()
{
    QGuiApplication::setPalette(m_palette);
    QGuiApplication::setFont(m_font);
}

void ThemeTest::openWindowFollowsThePalette()
{
    QGuiApplication::setPalette(lightPalette());
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QQuickItem *header = label(window, u"Options"_s);
    QQuickItem *title = label(window, u"4K resolution"_s);
    for (const QPalette &palette : {darkPalette(), lightPalette(), darkPalette()}) {
        QGuiApplication::setPalette(palette);
        const auto expected = ui::ThemeColors::from(palette);
        QTRY_COMPARE(window->color(), palette.color(QPalette::Window));
        QCOMPARE(title->property("color").value<QColor>(), palette.color(QPalette::WindowText));
        QCOMPARE(header->property("color").value<QColor>().name(), expected.secondary.name());
        QCOMPARE(behind(header).name(), expected.bar.name());
    }
    const QImage picture = window->grabWindow();
    QCOMPARE(picture.pixelColor(picture.width() - 4, 4), darkPalette().color(QPalette::Window));
}

void ThemeTest::openWindowFollowsTheAccent()
{
    QGuiApplication::setPalette(lightPalette());
    Stage stage;
    stage.manager().setAutoEnabled(true);
    QQuickWindow *window = stage.openMain();
    QQuickItem *indicator
        = control(window, u"Auto-generate"_s)->property("indicator").value<QQuickItem *>();
    const QColor before = ground(indicator);
    QPalette palette = lightPalette();
    palette.setColor(QPalette::Highlight, QColor(0xa0, 0x20, 0x80));
    QGuiApplication::setPalette(palette);
    QTRY_COMPARE(ground(indicator), QColor(0xa0, 0x20, 0x80));
    QVERIFY(before != ground(indicator));
}

void ThemeTest::openWindowFollowsTheFontSize()
{
    QGuiApplication::setFont(QFont(m_font.family(), 10));
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QQuickItem *title = label(window, u"4K resolution"_s);
    QQuickItem *hint = label(window, u"Open Settings (⌘,)"_s);
    QCOMPARE(fontOf(title).pointSizeF(), 10.0);
    const qreal before = place(title).height();
    const qreal hintBefore = fontOf(hint).pointSizeF();
    QGuiApplication::setFont(QFont(m_font.family(), 16));
    QTRY_COMPARE(fontOf(title).pointSizeF(), 16.0);
    QCOMPARE_GT(fontOf(hint).pointSizeF(), hintBefore);
    QCOMPARE_LT(fontOf(hint).pointSizeF(), 16.0);
    QCOMPARE_GT(place(title).height(), before);
}

void ThemeTest::openWindowFollowsTheFontFamily()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QQuickItem *title = label(window, u"4K resolution"_s);
    QQuickItem *editor = itemOfType(window->contentItem(), "QQuickTextArea");
    QGuiApplication::setFont(QFont(u"DejaVu Serif"_s, 10));
    QTRY_COMPARE(fontOf(title).family(), u"DejaVu Serif"_s);
    QCOMPARE(fontOf(editor).family(), u"DejaVu Serif"_s);
}

void ThemeTest::openSettingsFollowTheFont_data()
{
    QTest::addColumn<QFont>("font");
    QFont inPoints(u"DejaVu Serif"_s, 13);
    QFont inPixels(u"DejaVu Serif"_s);
    inPixels.setPixelSize(19);
    QTest::newRow("in points") << inPoints;
    QTest::newRow("in pixels") << inPixels;
}

void ThemeTest::openSettingsFollowTheFont()
{
    QFETCH(QFont, font);
    Stage stage;
    QQuickWindow *window = stage.openSettings();
    QQuickItem *header = label(window, u"Grok (xAI)"_s);
    QCOMPARE(fontOf(header).weight(), QFont::DemiBold);
    QGuiApplication::setFont(font);
    QTRY_COMPARE(fontOf(header).family(), font.family());
    QCOMPARE(fontOf(header).pixelSize(), font.pixelSize());
    QCOMPARE(fontOf(header).pointSize(), font.pointSize());
    QCOMPARE(fontOf(header).weight(), QFont::DemiBold);
}

void ThemeTest::largeFontKeepsEverythingInPlace()
{
    Stage stage;
    stage.fillGallery(3);
    stage.manager().setAutoEnabled(true);
    QQuickWindow *window = stage.openMain();
    QGuiApplication::setFont(QFont(m_font.family(), 20));
    QTRY_COMPARE(fontOf(label(window, u"4K resolution"_s)).pointSizeF(), 20.0);
    QQuickItem *sidebar = itemOfType(window->contentItem(), "Sidebar");
    QCOMPARE(place(sidebar).width(), 280.0);
    const auto labels = itemsOfType(sidebar, "PlainLabel");
    for (QQuickItem *one : labels) {
        QVERIFY2(place(one).right() <= 280, qPrintable(one->property("text").toString()));
    }
    const auto all = tiles(window);
    for (QQuickItem *tile : all) {
        QQuickItem *caption = label(tile, tile->property("timestamp").toString());
        QVERIFY(place(caption).bottom() <= place(tile).bottom());
    }
}

void ThemeTest::everythingIsReadable_data()
{
    QTest::addColumn<QPalette>("palette");
    QTest::newRow("light") << lightPalette();
    QTest::newRow("dark") << darkPalette();
    QTest::newRow("dull") << dullPalette();
}

void ThemeTest::everythingIsReadable()
{
    QFETCH(QPalette, palette);
    QGuiApplication::setPalette(palette);
    Stage stage;
    stage.manager().setNsfwEnabled(true);
    stage.manager().setFourKEnabled(true);
    stage.manager().setAutoEnabled(true);
    stage.manager().setStatus(u"Wallpaper set!"_s, false);
    QQuickWindow *window = stage.openMain();
    QCOMPARE(illegible(window), QStringList());
    QVERIFY(inkedItems(window).size() > 20);
    stage.manager().setStatus(u"Failed: no"_s, true);
    stage.fillGallery(1);
    QTRY_COMPARE(tiles(window).size(), 1);
    hover(tiles(window).first());
    QTRY_VERIFY(label(window, u"Apply"_s));
    QCOMPARE(illegible(window), QStringList());
    QQuickWindow *settings = stage.openSettings();
    QCOMPARE(illegible(settings), QStringList());
    QVERIFY(showAdvanced(settings));
    QCOMPARE(illegible(settings), QStringList());
}

QTEST_MAIN(ThemeTest)
#include "themetest.moc"
