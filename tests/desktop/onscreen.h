#pragma once

#include <QColor>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>

/// What a person sees of the whole virtual desktop.
inline QImage screenshot()
{
    QScreen *screen = QGuiApplication::primaryScreen();
    const QRect all = screen->virtualGeometry().translated(-screen->geometry().topLeft());
    return screen->grabWindow(0, all.x(), all.y(), all.width(), all.height()).toImage();
}

inline QColor seenAt(int x, int y)
{
    return screenshot().pixelColor(x, y);
}

inline QImage oneColour(QSize size, QColor colour)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

/// A picture of one colour at @p file, whose name tells the format; the file.
inline QString oneColourPicture(const QString &file, QColor colour, QSize size = {1600, 900})
{
    if (!oneColour(size, colour).save(file)) {
        qFatal("The test's own picture cannot be written.");
    }
    return file;
}
