#include "anotherreader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace canned {

QString outcomeByQt(const QByteArray &body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (!document.isObject()) {
        return unreadable;
    }
    const QJsonValue message = document[u"error"_s][u"message"_s];
    if (message.isString()) {
        return u"API error: "_s + message.toString();
    }
    const QJsonArray data = document[u"data"_s].toArray();
    const QJsonValue text = data.first()[u"b64_json"_s];
    const bool allObjects = std::all_of(
        data.begin(), data.end(), [](const QJsonValue &value) { return value.isObject(); });
    const QByteArray encoded = text.toString().toUtf8();
    const auto bytes = QByteArray::fromBase64Encoding(
        encoded, QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
    return text.isString() && allObjects && bytes && encoded.size() % 4 == 0
        ? QString::fromLatin1(*bytes) + u".jpg"_s
        : noImage;
}

} // namespace canned
