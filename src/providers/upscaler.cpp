#include "providers/upscaler.h"

#include "providers/answerreader.h"
#include "providers/httpexchange.h"
#include "providers/strictbase64.h"

using namespace Qt::StringLiterals;

namespace providers {

Upscaler::Upscaler(std::shared_ptr<HttpExchange> exchange, const QString &geminiBaseUrl)
    : m_exchange(std::move(exchange)),
      m_url(geminiBaseUrl + "/v1beta/models/gemini-3-pro-image-preview:generateContent"_L1)
{
}

QByteArray Upscaler::requestBody(const QByteArray &bytes, const QString &ext)
{
    // Put together by hand: a JSON document with the image in it would hold it several times over.
    const QByteArray beforeImage
        = R"({"contents":[{"parts":[{"text":"Upscale this image to 4K resolution while preserving )"
          R"(all details. Do not change the content."},{"inlineData":{"mimeType":")"_ba
        + (ext == "png"_L1 ? "image/png"_ba : "image/jpeg"_ba) + R"(","data":")"_ba;
    const QByteArray afterImage = R"("}}]}],"generationConfig":{"responseModalities":["IMAGE"],)"
                                  R"("imageConfig":{"imageSize":"4K"}}})"_ba;
    QByteArray body;
    body.reserve(beforeImage.size() + base64Size(bytes.size()) + afterImage.size());
    body += beforeImage;
    appendBase64(body, bytes);
    body += afterImage;
    return body;
}

ImageResult Upscaler::readAnswer(QByteArray body)
{
    return providers::readAnswer(std::move(body),
        {.image = AnswerFormat::Image::InCandidates,
            .extension = extensionForMimeType,
            .unreadable = "Failed to parse upscale response"_L1,
            .noImage = "No image in upscale response"_L1,
            .undecodable = "No image in upscale response"_L1,
            .errorPrefix = "Upscale failed: "_L1});
}

QCoro::Task<ImageResult> Upscaler::upscale(
    QByteArray bytes, QString ext, QString geminiApiKey) const
{
    return m_exchange->post(
        {.url = m_url,
            .headers = {{"x-goog-api-key"_ba, std::move(geminiApiKey).toUtf8()}},
            .body
            = [bytes = std::move(bytes), ext = std::move(ext)] { return requestBody(bytes, ext); }},
        readAnswer);
}

} // namespace providers
