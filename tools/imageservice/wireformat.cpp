#include "imageservice/wireformat.h"

#include "imageservice/geminiformat.h"
#include "imageservice/grokformat.h"
#include "imageservice/openaiformat.h"

#include <QJsonDocument>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace imageservice {

QString WireFormat::imageText(const Picture &picture, Shape shape)
{
    QString text = QString::fromLatin1(picture.bytes.toBase64());
    switch (shape) {
    case Shape::DataUrl:
        return u"data:"_s + QString::fromLatin1(picture.mimeType()) + u";base64,"_s + text;
    case Shape::EmptyData:
        return u""_s;
    case Shape::BadBase64:
        return u"*not/base64*"_s + text;
    default:
        return text;
    }
}

const WireFormat *wireFormatFor(const HttpRequest &request, const QJsonObject &body)
{
    static const GeminiFormat gemini;
    static const GrokFormat grok;
    static const OpenAIFormat openai;
    const QString path = QUrl(QString::fromLatin1(request.target)).path();
    if (request.method != "POST") {
        return nullptr;
    }
    if (path.startsWith(u"/v1beta/models/") && path.endsWith(u":generateContent")) {
        return &gemini;
    }
    if (path != u"/v1/images/generations") {
        return nullptr;
    }
    const bool isGrok
        = body[u"model"].toString().startsWith(u"grok") || body.contains(u"aspect_ratio");
    return isGrok ? static_cast<const WireFormat *>(&grok) : &openai;
}

HttpResponse jsonResponse(const QJsonObject &object, int status)
{
    return {.status = status, .body = QJsonDocument(object).toJson(QJsonDocument::Compact)};
}

} // namespace imageservice
