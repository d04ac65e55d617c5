#pragma once

#include "onscreen.h"

#include <QPainter>
#include <QTest>

#include <array>

/// A picture that is placed on a screen of 100 x 60 pixels: yellow on its left, green on its right.
inline QString placedPicture(const PictureFolder &folder)
{
    QImage image = oneColour({40, 20}, Qt::green);
    QPainter(&image).fillRect(0, 0, 20, 20, Qt::yellow);
    const QString file = folder.filePath(QStringLiteral("placed.png"));
    if (!image.save(file)) {
        qFatal("The test's own picture cannot be written.");
    }
    return file;
}

/// What is seen of it near the screen's top left corner, at its left edge, left of its middle, and
/// near its bottom right corner.
using Seen = QList<QColor>;

inline Seen seenOfPlaced(const QImage &screen)
{
    Seen seen;
    for (const QPoint place : {QPoint(2, 1), QPoint(5, 30), QPoint(38, 30), QPoint(95, 58)}) {
        seen << screen.pixelColor(place);
    }
    return seen;
}

/// A row for each way of placing a picture, by the desktop's own names for none, tiled, centred,
/// fitted, stretched and covering, before @p behind.
inline void addPlacements(const std::array<const char *, 6> &names, QColor behind)
{
    const QColor left = Qt::yellow;
    const QColor right = Qt::green;
    QTest::addColumn<QString>("placement");
    QTest::addColumn<Seen>("seen");
    const std::array<Seen, 6> seen{Seen{behind, behind, behind, behind},
        Seen{left, left, right, left}, Seen{behind, behind, left, behind},
        Seen{behind, left, left, behind}, Seen{left, left, left, right},
        Seen{left, left, left, right}};
    for (size_t i = 0; i < names.size(); ++i) {
        QTest::newRow(names[i]) << QString::fromLatin1(names[i]) << seen[i];
    }
}
