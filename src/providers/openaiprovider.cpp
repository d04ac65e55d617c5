#include "providers/openaiprovider.h"

#include "providers/answerreader.h"
#include "providers/httpexchange.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace providers {

namespace {

QString alwaysPng(std::string_view /*mimeType*/)
{
    return u"png"_s;
}

} // namespace

OpenAIProvider::OpenAIProvider(std::shared_ptr<HttpExchange> exchange, Service service)
    : m_exchange(std::move(exchange)), m_service(std::move(service))
{
}

QByteArray OpenAIProvider::requestBody(const QString &prompt, const QString &model)
{
    return QJsonDocument(
        QJsonObject{{u"model"_s, model}, {u"prompt"_s, prompt}, {u"size"_s, u"1536x1024"_s},
            {u"quality"_s, u"high"_s}, {u"output_format"_s, u"png"_s},
            {u"background"_s, u"opaque"_s}, {u"moderation"_s, u"low"_s}})
        .toJson(QJsonDocument::Compact);
}

ImageResult OpenAIProvider::readAnswer(QByteArray body)
{
    return providers::readAnswer(
        std::move(body), {.image = AnswerFormat::Image::InData, .extension = alwaysPng});
}

QCoro::Task<ImageResult> OpenAIProvider::generate(
    QString prompt, QString apiKey, QString model) const
{
    return m_exchange->post({.url = m_service.baseUrl + "/v1/images/generations"_L1,
                                .headers = {{"Authorization"_ba, "Bearer "_ba + apiKey.toUtf8()}},
                                .body = [prompt, model] { return requestBody(prompt, model); }},
        readAnswer);
}

} // namespace providers
