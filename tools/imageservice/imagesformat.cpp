#include "imageservice/imagesformat.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace imageservice {

QByteArray ImagesFormat::key(const HttpRequest &request) const
{
    const QByteArray value = request.header("Authorization");
    return value.startsWith("Bearer ") ? value.sliced(7) : QByteArray();
}

QJsonValue ImagesFormat::data(const Picture &picture, Shape shape, const QJsonObject &extra)
{
    QJsonObject image = extra;
    image[u"b64_json"_s] = imageText(picture, shape);
    const QJsonObject null{{u"b64_json"_s, QJsonValue::Null}};
    switch (shape) {
    case Shape::EmptyData:
        return QJsonArray();
    case Shape::NoCandidates:
        return QJsonValue::Undefined;
    case Shape::NoContent:
        return QJsonArray{QJsonObject()};
    case Shape::TextOnly:
        return QJsonArray{QJsonObject{{u"revised_prompt"_s, u"A picture in words only."_s}}};
    case Shape::NullData:
        return QJsonArray{null};
    case Shape::NullThenImage:
        return QJsonArray{null, image};
    case Shape::SecondCandidate:
        return QJsonArray{QJsonObject(), image};
    default:
        return QJsonArray{image};
    }
}

} // namespace imageservice
