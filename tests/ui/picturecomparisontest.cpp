#include "picturecomparison.h"

#include <QPainter>
#include <QTest>

using namespace Qt::StringLiterals;
using ui::fakes::difference;

namespace {

QImage gray()
{
    QImage image(60, 40, QImage::Format_RGB32);
    image.fill(QColor(120, 120, 120));
    return image;
}

QImage withBlock(QRect block, const QColor &color)
{
    QImage image = gray();
    QPainter(&image).fillRect(block, color);
    return image;
}

} // namespace

class PictureComparisonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void samePictureDoesNotDiffer();
    void shadesDoNotDiffer();
    void strayPixelsDoNotDiffer();
    void linesDiffer();
    void placeAndNumberOfPixelsAreTold();
    void differingPixelsAreMarked();
    void otherSizeDiffers();
};

void PictureComparisonTest::samePictureDoesNotDiffer()
{
    QVERIFY(!difference(gray(), gray()));
    QVERIFY(!difference(gray(), gray().convertToFormat(QImage::Format_ARGB32_Premultiplied)));
}

void PictureComparisonTest::shadesDoNotDiffer()
{
    QVERIFY(!difference(gray(), withBlock(gray().rect(), QColor(150, 100, 120))));
}

void PictureComparisonTest::strayPixelsDoNotDiffer()
{
    QVERIFY(!difference(gray(), withBlock({5, 5, 7, 1}, Qt::black)));
}

void PictureComparisonTest::linesDiffer()
{
    QVERIFY(difference(gray(), withBlock({5, 5, 8, 1}, Qt::black)));
    QVERIFY(difference(gray(), withBlock({5, 5, 1, 8}, QColor(120, 120, 165))));
}

void PictureComparisonTest::placeAndNumberOfPixelsAreTold()
{
    const auto found = difference(gray(), withBlock({10, 20, 30, 5}, Qt::white));
    QVERIFY(found);
    QCOMPARE(found->where, QRect(10, 20, 30, 5));
    QCOMPARE(found->pixels, 150);
}

void PictureComparisonTest::differingPixelsAreMarked()
{
    const auto found = difference(gray(), withBlock({10, 20, 30, 5}, Qt::white));
    QCOMPARE(found->marked.pixelColor(10, 20), QColor(Qt::red));
    QVERIFY(found->marked.pixelColor(9, 20).red() == found->marked.pixelColor(9, 20).blue());
}

void PictureComparisonTest::otherSizeDiffers()
{
    const auto found = difference(gray(), gray().copy(0, 0, 60, 39));
    QVERIFY(found);
    QCOMPARE(found->where, QRect(0, 0, 60, 39));
}

QTEST_APPLESS_MAIN(PictureComparisonTest)
#include "picturecomparisontest.moc"
