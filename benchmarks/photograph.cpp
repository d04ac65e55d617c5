#include "photograph.h"

#include <QPainter>
#include <QRandomGenerator>

QImage photograph(int number)
{
    QImage image(3840, 2160, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, 0, image.height());
    sky.setColorAt(0, QColor::fromHsv(60 * number, 90, 240));
    sky.setColorAt(1, QColor::fromHsv(60 * number + 40, 120, 90));
    painter.fillRect(image.rect(), sky);
    painter.end();
    QRandomGenerator random(number);
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QRgb grain = random.generate() & 0x0f0f0f0fU;
            line[x] = (line[x] & 0xf0f0f0f0U) | grain | 0xff000000U;
        }
    }
    return image;
}
