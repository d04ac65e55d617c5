#include "desktop/shownimage.h"

#include <QFile>
#include <QImageReader>
#include <QXmlStreamReader>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

/// Empty when @p file is no slide show.
QString firstSlide(const QString &file)
{
    QFile opened(file);
    if (!opened.open(QIODevice::ReadOnly)) {
        return {};
    }
    QXmlStreamReader xml(&opened);
    if (!xml.readNextStartElement() || xml.name() != "background"_L1) {
        return {};
    }
    bool isPicture = false;
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::StartElement) {
            // A picture that there is in several sizes has an element for each of them.
            isPicture = isPicture || xml.name() == "file"_L1 || xml.name() == "from"_L1;
        } else if (isPicture && token == QXmlStreamReader::Characters && !xml.isWhitespace()) {
            return xml.text().trimmed().toString();
        }
    }
    return {};
}

QImage decoded(const QString &file)
{
    QImageReader reader(file);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    return reader.read();
}

} // namespace

QImage readShownImage(const QString &file)
{
    if (file.isEmpty()) {
        return {};
    }
    const QString slide = firstSlide(file);
    return decoded(slide.isEmpty() ? file : slide);
}

} // namespace desktop
