#pragma once

#include <QColor>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QTemporaryDir>

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

/// A folder for pictures of one colour, which lives as long as this.
class PictureFolder : public QTemporaryDir
{
public:
    explicit PictureFolder(QSize size = {1600, 900}) : m_size(size) { }

    /// Makes one, whose name tells the format; the file.
    QString picture(const QString &name, QColor colour) const
    {
        return picture(name, colour, m_size);
    }
    QString picture(const QString &name, QColor colour, QSize size) const
    {
        if (!oneColour(size, colour).save(filePath(name))) {
            qFatal("The test's own picture cannot be written.");
        }
        return filePath(name);
    }

private:
    QSize m_size;
};
