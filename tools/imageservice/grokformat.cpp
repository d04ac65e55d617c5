#include "imageservice/grokformat.h"

#include <QJsonArray>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace imageservice {

namespace {

struct Failure
{
    int status;
    QLatin1StringView code;
    QLatin1StringView message;
};

constexpr std::array Failures = {
    Failure{400, "Client specified an invalid argument"_L1,
        "Incorrect API key provided: ca***ey. You can obtain an API key from https://console.x.ai."_L1},
    Failure{401, "Unauthenticated or invalid authentication credentials"_L1,
        "The key is not accepted."_L1},
    Failure{403, "The caller does not have permission to execute the specified operation"_L1,
        "Your team has no credits yet."_L1},
    Failure{404, "Some requested entity was not found"_L1,
        "The model does not exist or your team has no access to it."_L1},
    Failure{429, "Some resource has been exhausted"_L1,
        "Your team has either used all available credits or reached its monthly spending limit."_L1},
    Failure{500, "Internal error"_L1, "Something went wrong on our side."_L1},
    Failure{503, "The service is currently unavailable"_L1, "The model is at capacity."_L1},
};

HttpResponse failure(int status, const QString &code, const QString &message)
{
    return jsonResponse({{u"code"_s, code}, {u"error"_s, message}}, status);
}

/// This service names what it misses in plain text.
HttpResponse unreadable(const QByteArray &field)
{
    return {.status = 422,
        .contentType = "text/plain; charset=utf-8",
        .body = "Failed to deserialize the JSON body into the target type: missing field `" + field
            + '`'};
}

QSize sizeFor(const QString &aspectRatio)
{
    struct Named
    {
        QLatin1StringView ratio;
        QSize size;
    };
    static constexpr std::array sizes = {Named{"16:9"_L1, {1920, 1080}},
        Named{"9:16"_L1, {1080, 1920}}, Named{"3:2"_L1, {1536, 1024}},
        Named{"2:3"_L1, {1024, 1536}}, Named{"4:3"_L1, {1440, 1080}}, Named{"3:4"_L1, {1080, 1440}},
        Named{"1:1"_L1, {1024, 1024}}};
    const auto *found = std::ranges::find_if(
        sizes, [&](const Named &entry) { return entry.ratio == aspectRatio; });
    return found == sizes.end() ? QSize() : found->size;
}

} // namespace

tl::expected<Order, HttpResponse> GrokFormat::order(
    const HttpRequest &, const QJsonObject &body) const
{
    if (!body[u"prompt"].isString()) {
        return tl::unexpected(unreadable("prompt"));
    }
    const QSize size = sizeFor(body[u"aspect_ratio"].toString(u"1:1"_s));
    if (size.isEmpty()) {
        return tl::unexpected(failure(400, u"Client specified an invalid argument"_s,
            u"The aspect ratio is not supported."_s));
    }
    return Order{.prompt = body[u"prompt"].toString(),
        .model = body[u"model"].toString(),
        .size = size,
        .format = PictureFormat::Jpeg,
        .original = {}};
}

QJsonObject GrokFormat::answer(const Order &order, const Picture &picture, Shape shape) const
{
    QJsonObject result{{u"usage"_s, QJsonObject{{u"cost_in_usd_ticks"_s, 200000000}}}};
    const QJsonValue list = data(picture, shape,
        {{u"mime_type"_s, QString::fromLatin1(picture.mimeType())},
            {u"revised_prompt"_s, shape == Shape::TextThenImage ? order.prompt : QString()}});
    if (!list.isUndefined()) {
        result[u"data"_s] = list;
    }
    return result;
}

HttpResponse GrokFormat::keyMissing() const
{
    return failure(401, u"Unauthenticated"_s, u"The request carries no API key."_s);
}

HttpResponse GrokFormat::error(int status) const
{
    if (status == 422) {
        return unreadable("prompt");
    }
    const auto *found = std::ranges::find_if(
        Failures, [&](const Failure &entry) { return entry.status == status; });
    const Failure &entry = found == Failures.end() ? Failures.front() : *found;
    return failure(status, entry.code, entry.message);
}

HttpResponse GrokFormat::blocked() const
{
    return jsonResponse({{u"data"_s, QJsonArray()}, {u"block_reason"_s, u"content_moderation"_s}});
}

} // namespace imageservice
