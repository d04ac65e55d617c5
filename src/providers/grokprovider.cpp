#include "providers/grokprovider.h"

#include "providers/answerreader.h"
#include "providers/httpexchange.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace providers {

namespace {

/// Older answers hold a data URL, whose base64 begins behind the first comma.
std::string_view withoutDataUrlPrefix(std::string_view text)
{
    const size_t comma = text.find(',');
    if (comma == std::string_view::npos
        || text.substr(0, comma).find("base64") == std::string_view::npos) {
        return text;
    }
    return text.substr(comma + 1);
}

QString alwaysJpg(std::string_view /*mimeType*/)
{
    return u"jpg"_s;
}

} // namespace

GrokProvider::GrokProvider(std::shared_ptr<HttpExchange> exchange, Service service)
    : m_exchange(std::move(exchange)), m_service(std::move(service))
{
}

QByteArray GrokProvider::requestBody(const QString &prompt, const QString &model)
{
    return QJsonDocument(
        QJsonObject{{u"model"_s, model}, {u"prompt"_s, prompt},
            {u"response_format"_s, u"b64_json"_s}, {u"n"_s, 1}, {u"aspect_ratio"_s, u"16:9"_s}})
        .toJson(QJsonDocument::Compact);
}

ImageResult GrokProvider::readAnswer(QByteArray body)
{
    return providers::readAnswer(std::move(body),
        {.image = AnswerFormat::Image::InData,
            .extension = alwaysJpg,
            .base64 = withoutDataUrlPrefix,
            .undecodable = "Failed to decode base64 image"_L1});
}

QCoro::Task<ImageResult> GrokProvider::generate(QString prompt, QString apiKey, QString model) const
{
    return m_exchange->post({.url = m_service.baseUrl + "/v1/images/generations"_L1,
                                .headers = {{"Authorization"_ba, "Bearer "_ba + apiKey.toUtf8()}},
                                .body = [prompt, model] { return requestBody(prompt, model); }},
        readAnswer);
}

} // namespace providers
