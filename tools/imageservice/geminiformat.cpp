#include "imageservice/geminiformat.h"

#include <QJsonArray>
#include <QUrl>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace imageservice {

namespace {

struct Failure
{
    int status;
    QLatin1StringView name;
    QLatin1StringView message;
};

constexpr std::array Failures = {
    Failure{400, "INVALID_ARGUMENT"_L1, "API key not valid. Please pass a valid API key."_L1},
    Failure{401, "UNAUTHENTICATED"_L1, "Request had invalid authentication credentials."_L1},
    Failure{403, "PERMISSION_DENIED"_L1, "The caller does not have permission."_L1},
    Failure{404, "NOT_FOUND"_L1,
        "The model is not found for API version v1beta, or is not supported for generateContent."_L1},
    Failure{429, "RESOURCE_EXHAUSTED"_L1,
        "You exceeded your current quota, please check your plan and billing details. \n"
        "* Quota exceeded for metric: generate_content_free_tier_requests, limit: 0\n"
        "Please retry in 49.1s."_L1},
    Failure{500, "INTERNAL"_L1, "Something failed inside the service. Please try again."_L1},
    Failure{503, "UNAVAILABLE"_L1, "The model is overloaded. Please try again later."_L1},
    Failure{504, "DEADLINE_EXCEEDED"_L1, "The request could not be finished in time."_L1},
};

HttpResponse failure(int status, const QString &name, const QString &message)
{
    return jsonResponse(
        {{u"error"_s,
            QJsonObject{{u"code"_s, status}, {u"message"_s, message}, {u"status"_s, name}}}},
        status);
}

HttpResponse badArgument(const QString &message)
{
    return failure(400, u"INVALID_ARGUMENT"_s, message);
}

/// The longer side for "1K", "2K" and "4K"; 0 for anything else.
int longSide(const QString &imageSize)
{
    if (imageSize == u"4K") {
        return 3840;
    }
    return imageSize == u"2K" ? 2048 : imageSize == u"1K" ? 1024 : 0;
}

QSize sizeFor(const QString &aspectRatio, int side)
{
    const auto parts = aspectRatio.split(u':');
    const QSize ratio(parts.value(0).toInt(), parts.value(1).toInt());
    if (parts.size() != 2 || ratio.isEmpty() || std::max(ratio.width(), ratio.height()) > 21) {
        return {};
    }
    return (ratio * side).scaled(side, side, Qt::KeepAspectRatio);
}

QJsonObject textPart()
{
    return {{u"text"_s, u"Here is your picture."_s}};
}

QJsonObject candidate(const QJsonArray &parts)
{
    return {{u"content"_s, QJsonObject{{u"role"_s, u"model"_s}, {u"parts"_s, parts}}},
        {u"finishReason"_s, u"STOP"_s}, {u"index"_s, 0}};
}

QJsonArray candidates(const QJsonObject &image, Shape shape)
{
    switch (shape) {
    case Shape::TextThenImage:
        return {candidate({textPart(), image})};
    case Shape::TextOnly:
        return {candidate({textPart()})};
    case Shape::NullThenImage:
        return {candidate({QJsonObject{{u"inlineData"_s, QJsonValue::Null}}, image})};
    case Shape::SecondCandidate:
        return {candidate({textPart()}), candidate({image})};
    case Shape::NoContent:
        return {QJsonObject{{u"finishReason"_s, u"NO_IMAGE"_s}, {u"index"_s, 0},
            {u"finishMessage"_s, u"The model did not make an image."_s}}};
    default:
        return {candidate({image})};
    }
}

} // namespace

QByteArray GeminiFormat::key(const HttpRequest &request) const
{
    return request.header("x-goog-api-key");
}

tl::expected<Order, HttpResponse> GeminiFormat::order(
    const HttpRequest &request, const QJsonObject &body) const
{
    const QJsonArray parts = body[u"contents"][0][u"parts"].toArray();
    const QJsonValue config = body[u"generationConfig"][u"imageConfig"];
    const int side = longSide(config[u"imageSize"].toString(u"1K"_s));
    Order order;
    order.model
        = QUrl(QString::fromLatin1(request.target)).path().section(u'/', 3).section(u':', 0, -2);
    order.size = sizeFor(config[u"aspectRatio"].toString(u"1:1"_s), side);
    // The newer model answers in JPEG, the older one in PNG.
    order.format = order.model.startsWith(u"gemini-3") ? PictureFormat::Jpeg : PictureFormat::Png;
    for (const QJsonValue part : parts) {
        order.prompt += part[u"text"].toString();
        if (const auto data = part[u"inlineData"][u"data"]; data.isString()) {
            order.original = QByteArray::fromBase64(data.toString().toLatin1());
        }
    }
    if (parts.isEmpty()) {
        return tl::unexpected(
            badArgument(u"* GenerateContentRequest.contents: contents is not specified"_s));
    }
    if (order.size.isEmpty()) {
        return tl::unexpected(badArgument(u"Invalid value at 'generation_config.image_config'"_s));
    }
    return order;
}

QJsonObject GeminiFormat::answer(const Order &order, const Picture &picture, Shape shape) const
{
    const QJsonObject usage{{u"promptTokenCount"_s, 9}, {u"candidatesTokenCount"_s, 1290},
        {u"totalTokenCount"_s, 1299}};
    if (shape == Shape::NoCandidates) {
        return {{u"promptFeedback"_s, QJsonObject{{u"blockReason"_s, u"OTHER"_s}}},
            {u"usageMetadata"_s, usage}};
    }
    const QJsonValue data = shape == Shape::NullData ? QJsonValue() : imageText(picture, shape);
    const QJsonObject image{
        {u"inlineData"_s,
            QJsonObject{
                {u"mimeType"_s, QString::fromLatin1(picture.mimeType())}, {u"data"_s, data}}},
        {u"thoughtSignature"_s, u"CtQBAVSoXO5rbm93biB0byBub2JvZHk="_s}};
    return {{u"candidates"_s, candidates(image, shape)}, {u"usageMetadata"_s, usage},
        {u"modelVersion"_s, order.model}, {u"responseId"_s, u"local"_s}};
}

HttpResponse GeminiFormat::keyMissing() const
{
    return failure(403, u"PERMISSION_DENIED"_s, u"The request carries no API key."_s);
}

HttpResponse GeminiFormat::error(int status) const
{
    const auto *found = std::ranges::find_if(
        Failures, [&](const Failure &entry) { return entry.status == status; });
    const Failure &entry = found == Failures.end() ? Failures.front() : *found;
    return failure(status, entry.name, entry.message);
}

HttpResponse GeminiFormat::blocked() const
{
    return jsonResponse(
        {{u"promptFeedback"_s, QJsonObject{{u"blockReason"_s, u"PROHIBITED_CONTENT"_s}}},
            {u"usageMetadata"_s, QJsonObject()}});
}

} // namespace imageservice
