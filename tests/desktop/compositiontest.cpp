#include "desktop/composition.h"

#include "onscreen.h"

#include <QTest>

using namespace Qt::StringLiterals;
using desktop::compose;
using desktop::Part;
using desktop::Placement;

namespace {

/// Red, green, blue and white quarters.
QImage quarters(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const bool isLeft = x < size.width() / 2;
            const bool isTop = y < size.height() / 2;
            image.setPixelColor(x, y,
                isTop        ? isLeft ? Qt::red : Qt::green
                    : isLeft ? Qt::blue
                             : Qt::white);
        }
    }
    return image;
}

Part covered(const QRect &screen, QColor colour)
{
    return {screen, screen, oneColour({16, 9}, colour)};
}

QColor at(const QImage &image, int x, int y)
{
    return image.pixelColor(x, y);
}

} // namespace

class CompositionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneScreenIsCovered()
    {
        const QImage composed = compose({covered({0, 0, 80, 60}, Qt::red)});
        QCOMPARE(composed, oneColour({80, 60}, Qt::red));
    }

    void eachScreenIsCoveredToItsLastPixel()
    {
        const QImage composed
            = compose({covered({0, 0, 80, 60}, Qt::red), covered({80, 0, 80, 60}, Qt::blue)});
        QCOMPARE(composed.size(), QSize(160, 60));
        QCOMPARE(composed.copy(0, 0, 80, 60), oneColour({80, 60}, Qt::red));
        QCOMPARE(composed.copy(80, 0, 80, 60), oneColour({80, 60}, Qt::blue));
    }

    void screensOfDifferentSizesLeaveBlackGaps()
    {
        const QImage composed = compose({covered({0, 0, 80, 60}, Qt::red),
            covered({80, 20, 100, 100}, Qt::blue), covered({200, 0, 40, 30}, Qt::green)});
        QCOMPARE(composed.size(), QSize(240, 120));
        QCOMPARE(at(composed, 79, 59), QColor(Qt::red));
        QCOMPARE(at(composed, 79, 60), QColor(Qt::black));
        QCOMPARE(at(composed, 80, 19), QColor(Qt::black));
        QCOMPARE(at(composed, 80, 20), QColor(Qt::blue));
        QCOMPARE(at(composed, 179, 119), QColor(Qt::blue));
        QCOMPARE(at(composed, 190, 10), QColor(Qt::black));
        QCOMPARE(at(composed, 200, 29), QColor(Qt::green));
        QCOMPARE(at(composed, 239, 30), QColor(Qt::black));
    }

    void aDesktopMayBeginLeftOfAndAboveZero()
    {
        const QImage composed
            = compose({covered({-80, -10, 80, 60}, Qt::red), covered({0, 0, 80, 60}, Qt::blue)});
        QCOMPARE(composed.size(), QSize(160, 70));
        QCOMPARE(at(composed, 0, 0), QColor(Qt::red));
        QCOMPARE(at(composed, 79, 59), QColor(Qt::red));
        QCOMPARE(at(composed, 80, 10), QColor(Qt::blue));
        QCOMPARE(at(composed, 159, 69), QColor(Qt::blue));
        QCOMPARE(at(composed, 0, 60), QColor(Qt::black));
    }

    void theLaterOfTwoScreensInOnePlaceIsSeen()
    {
        const QImage composed
            = compose({covered({0, 0, 80, 60}, Qt::red), covered({0, 0, 80, 60}, Qt::blue)});
        QCOMPARE(composed, oneColour({80, 60}, Qt::blue));
    }

    void aPictureLiesAsItIsPlaced_data()
    {
        QTest::addColumn<Placement>("placement");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QRect>("place"); // Of the whole picture on a screen of 100 x 100.

        QTest::newRow("stretched") << Placement::Stretch << QSize(40, 20) << QRect(0, 0, 100, 100);
        QTest::newRow("stretched, much flatter")
            << Placement::Stretch << QSize(40, 400) << QRect(0, 0, 100, 100);
        QTest::newRow("stretched, much narrower")
            << Placement::Stretch << QSize(400, 40) << QRect(0, 0, 100, 100);
        QTest::newRow("fit, wide") << Placement::Fit << QSize(40, 20) << QRect(0, 25, 100, 50);
        QTest::newRow("fit, high") << Placement::Fit << QSize(20, 40) << QRect(25, 0, 50, 100);
        QTest::newRow("centered") << Placement::Center << QSize(40, 20) << QRect(30, 40, 40, 20);
        QTest::newRow("centered, too large")
            << Placement::Center << QSize(200, 200) << QRect(-50, -50, 200, 200);
        QTest::newRow("cover, wide")
            << Placement::Cover << QSize(400, 200) << QRect(-50, 0, 200, 100);
        QTest::newRow("cover, high")
            << Placement::Cover << QSize(20, 40) << QRect(0, -50, 100, 200);
    }
    void aPictureLiesAsItIsPlaced()
    {
        QFETCH(Placement, placement);
        QFETCH(QSize, size);
        QFETCH(QRect, place);
        const QRect screen(0, 0, 100, 100);
        const QImage composed = compose({{screen, screen, quarters(size), placement, Qt::yellow}});

        const QRect seen = place & screen;
        // Where quarters meet and at the rim, colours are mixed.
        constexpr int mixed = 6;
        const QPoint middle = place.center();
        QCOMPARE(at(composed, middle.x() - mixed, middle.y() - mixed), QColor(Qt::red));
        QCOMPARE(at(composed, middle.x() + mixed, middle.y() - mixed), QColor(Qt::green));
        QCOMPARE(at(composed, middle.x() - mixed, middle.y() + mixed), QColor(Qt::blue));
        QCOMPARE(at(composed, seen.left(), seen.top()), QColor(Qt::red));
        QCOMPARE(at(composed, seen.right(), seen.bottom()), QColor(Qt::white));
        if (seen.left() > 0) {
            QCOMPARE(at(composed, seen.left() - 1, 50), QColor(Qt::yellow));
            QCOMPARE(at(composed, seen.right() + 1, 50), QColor(Qt::yellow));
        }
        if (seen.top() > 0) {
            QCOMPARE(at(composed, 50, seen.top() - 1), QColor(Qt::yellow));
            QCOMPARE(at(composed, 50, seen.bottom() + 1), QColor(Qt::yellow));
        }
    }

    void aPictureMadeMuchSmallerIsMadeOfAllItsPixels()
    {
        QImage stripes({400, 400}, QImage::Format_RGB32);
        for (int y = 0; y < 400; ++y) {
            for (int x = 0; x < 400; ++x) {
                stripes.setPixelColor(x, y, (x + y) % 2 == 0 ? QColor(200, 100, 0) : Qt::blue);
            }
        }
        const QRect screen(0, 0, 100, 100);
        QCOMPARE(compose({{screen, screen, stripes}}), oneColour({100, 100}, QColor(100, 50, 128)));
    }

    void tilesBeginAtTheScreensCorner()
    {
        const QRect screen(30, 10, 100, 100);
        const QImage composed = compose({covered({0, 0, 30, 10}, Qt::black),
            {screen, screen, quarters({40, 40}), Placement::Tile}});
        QCOMPARE(at(composed, 30, 10), QColor(Qt::red));
        QCOMPARE(at(composed, 69, 10), QColor(Qt::green));
        QCOMPARE(at(composed, 70, 10), QColor(Qt::red));
        QCOMPARE(at(composed, 30, 89), QColor(Qt::blue));
        QCOMPARE(at(composed, 29, 10), QColor(Qt::black));
    }

    void ofAPictureOverSeveralScreensEachShowsItsShare()
    {
        const QRect all(0, 0, 200, 100);
        const QImage picture = quarters({200, 100});
        const QImage composed = compose({{{0, 0, 100, 100}, all, picture, Placement::Stretch},
            {{100, 0, 100, 100}, all, picture, Placement::Stretch}});
        QCOMPARE(composed, picture);
    }

    void aPictureEndsWithItsScreen()
    {
        const QRect left(0, 0, 100, 100);
        const QRect right(100, 0, 100, 100);
        const QImage composed = compose({covered(right, Qt::green),
            {left, left | right, oneColour({200, 100}, Qt::red), Placement::Stretch},
            {{0, 100, 100, 50}, left, oneColour({100, 300}, Qt::blue), Placement::Center}});
        QCOMPARE(composed.copy(right), oneColour({100, 100}, Qt::green));
        QCOMPARE(composed.copy(left), oneColour({100, 100}, Qt::red));
    }

    void whereThereIsNoPictureTheColourIsSeen()
    {
        const QRect screen(0, 0, 50, 50);
        const QImage picture = oneColour({50, 50}, Qt::red);
        QCOMPARE(compose({{screen, screen, {}, Placement::Cover, Qt::green}}),
            oneColour({50, 50}, Qt::green));
        QCOMPARE(compose({{screen, screen, picture, Placement::None, Qt::green}}),
            oneColour({50, 50}, Qt::green));
    }

    void throughATransparentPictureTheColourIsSeen()
    {
        QImage picture(50, 50, QImage::Format_ARGB32);
        picture.fill(Qt::transparent);
        const QRect screen(0, 0, 100, 100);
        QCOMPARE(compose({{screen, screen, picture, Placement::Cover, Qt::green}}),
            oneColour({100, 100}, Qt::green));
    }

    void everyKindOfPixelsKeepsItsColour_data()
    {
        QTest::addColumn<QImage::Format>("format");
        QTest::newRow("two colours") << QImage::Format_Mono;
        QTest::newRow("a palette") << QImage::Format_Indexed8;
        QTest::newRow("with transparency") << QImage::Format_ARGB32;
        QTest::newRow("deep") << QImage::Format_RGBA64;
    }
    void everyKindOfPixelsKeepsItsColour()
    {
        QFETCH(QImage::Format, format);
        QImage picture(1920, 1080, format);
        if (picture.depth() <= 8) {
            picture.setColorTable({qRgb(255, 0, 0), qRgb(255, 255, 255)});
            picture.fill(0);
        } else {
            picture.fill(Qt::red);
        }
        const QRect screen(0, 0, 800, 600);
        QCOMPARE(compose({{screen, screen, picture}}), oneColour({800, 600}, Qt::red));
    }
};

QTEST_GUILESS_MAIN(CompositionTest)

#include "compositiontest.moc"
