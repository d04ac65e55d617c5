#include "providers/geminiprovider.h"

#include "providers/answerreader.h"
#include "providers/httpexchange.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace providers {

GeminiProvider::GeminiProvider(std::shared_ptr<HttpExchange> exchange, Service service)
    : m_exchange(std::move(exchange)), m_service(std::move(service))
{
}

QByteArray GeminiProvider::requestBody(const QString &prompt)
{
    const QJsonObject part{{u"text"_s, prompt}};
    const QJsonObject content{{u"parts"_s, QJsonArray{part}}};
    const QJsonObject imageConfig{{u"imageSize"_s, u"4K"_s}, {u"aspectRatio"_s, u"16:9"_s}};
    const QJsonObject generationConfig{
        {u"responseModalities"_s, QJsonArray{u"IMAGE"_s}}, {u"imageConfig"_s, imageConfig}};
    return QJsonDocument(QJsonObject{{u"contents"_s, QJsonArray{content}},
                             {u"generationConfig"_s, generationConfig}})
        .toJson(QJsonDocument::Compact);
}

ImageResult GeminiProvider::readAnswer(QByteArray body)
{
    return providers::readAnswer(std::move(body),
        {.image = AnswerFormat::Image::InCandidates, .extension = extensionForMimeType});
}

QCoro::Task<ImageResult> GeminiProvider::generate(
    QString prompt, QString apiKey, QString model) const
{
    return m_exchange->post(
        {.url = m_service.baseUrl + "/v1beta/models/"_L1 + model + ":generateContent"_L1,
            .headers = {{"x-goog-api-key"_ba, apiKey.toUtf8()}},
            .body = [prompt] { return requestBody(prompt); }},
        readAnswer);
}

} // namespace providers
