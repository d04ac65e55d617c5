#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

// Draws an SVG file as a square PNG file: rendericon SVG SIZE PNG
int main(int argc, char *argv[])
{
    if (argc != 4) {
        std::fputs("usage: rendericon SVG SIZE PNG\n", stderr);
        return EXIT_FAILURE;
    }
    QSvgRenderer drawing(QFile::decodeName(argv[1]));
    const int size = QByteArray(argv[2]).toInt();
    if (!drawing.isValid() || size <= 0) {
        std::fprintf(stderr, "rendericon: cannot draw %s\n", argv[1]);
        return EXIT_FAILURE;
    }
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    drawing.render(&painter);
    painter.end();
    if (!image.save(QFile::decodeName(argv[3]))) {
        std::fprintf(stderr, "rendericon: cannot write %s\n", argv[3]);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
