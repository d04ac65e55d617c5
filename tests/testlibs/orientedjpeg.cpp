#include "testlibs/orientedjpeg.h"

#include <QBuffer>
#include <QFile>
#include <QList>
#include <QMap>
#include <QPainter>
#include <QTest>

#include <algorithm>
#include <array>
#include <cmath>

namespace testlibs {

namespace {

const QMap<char, QColor> colours{
    {'R', Qt::red}, {'G', Qt::green}, {'B', Qt::blue}, {'Y', Qt::yellow}};

// Where the first row and the first column of a file belong is all that EXIF says. What follows for
// the quarters is written down here, so that nothing depends on somebody else's turning.
constexpr std::array<const char *, lastOrientation + 1> quartersInFile{"",
    "RGBY", // above, left
    "GRYB", // above, right
    "YBGR", // below, right
    "BYRG", // below, left
    "RBGY", // left, above
    "GYRB", // right, above
    "YGBR", // right, below
    "BRYG"}; // left, below
constexpr int firstOnItsSide = 5;

QList<QRect> quarterPlaces(QSize size)
{
    const QSize quarter = size / 2;
    QList<QRect> places;
    for (const QPoint at : {QPoint(0, 0), QPoint(1, 0), QPoint(0, 1), QPoint(1, 1)}) {
        places << QRect({at.x() * quarter.width(), at.y() * quarter.height()}, quarter);
    }
    return places;
}

/// An EXIF segment with this one entry.
QByteArray orientationSegment(int orientation)
{
    const auto hex = QByteArrayLiteral("ffe10022"
                                       "457869660000" // Exif
                                       "4d4d002a00000008" // the highest byte first
                                       "0001"
                                       "01120003000000010000"
                                       "0000"
                                       "00000000");
    constexpr qsizetype lowByteOfTheValue = 29;
    QByteArray segment = QByteArray::fromHex(hex);
    segment[lowByteOfTheValue] = char(orientation);
    return segment;
}

char letterOf(const QColor &colour)
{
    constexpr int tolerance = 30;
    const auto isNear = [&](const QColor &exact) {
        return std::abs(colour.red() - exact.red()) < tolerance
            && std::abs(colour.green() - exact.green()) < tolerance
            && std::abs(colour.blue() - exact.blue()) < tolerance;
    };
    const auto found = std::find_if(colours.begin(), colours.end(), isNear);
    return found == colours.end() ? '?' : found.key();
}

} // namespace

QByteArray orientedJpeg(int orientation, QSize size)
{
    constexpr int bestQuality = 100;
    constexpr qsizetype behindTheStart = 2;
    QImage image(orientation < firstOnItsSide ? size : size.transposed(), QImage::Format_RGB32);
    QPainter painter(&image);
    const char *letter = quartersInFile.at(orientation);
    for (const QRect &place : quarterPlaces(image.size())) {
        painter.fillRect(place, colours[*letter++]);
    }
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "jpeg", bestQuality)) {
        qFatal("The test's own picture cannot be written.");
    }
    return bytes.insert(behindTheStart, orientationSegment(orientation));
}

QString putOrientedJpeg(const QString &file, int orientation, QSize size)
{
    QFile opened(file);
    const QByteArray bytes = orientedJpeg(orientation, size);
    if (!opened.open(QIODevice::WriteOnly) || opened.write(bytes) != bytes.size()) {
        qFatal("The test's own picture cannot be written.");
    }
    return file;
}

void addOrientations()
{
    QTest::addColumn<int>("orientation");
    for (int orientation = firstOrientation; orientation <= lastOrientation; ++orientation) {
        QTest::addRow("EXIF orientation %d", orientation) << orientation;
    }
}

QByteArray quarters(const QImage &image)
{
    QByteArray letters;
    for (const QRect &place : quarterPlaces(image.size())) {
        letters += letterOf(image.pixelColor(place.center()));
    }
    return letters;
}

} // namespace testlibs
