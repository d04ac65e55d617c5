#include "imageservice/openaiformat.h"

#include <QJsonArray>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace imageservice {

namespace {

struct Failure
{
    int status;
    QLatin1StringView type;
    QLatin1StringView code; ///< Null where the service sends none.
    QLatin1StringView message;
};

constexpr std::array Failures = {
    Failure{400, "image_generation_user_error"_L1, "billing_hard_limit_reached"_L1,
        "Billing hard limit has been reached."_L1},
    Failure{401, "invalid_request_error"_L1, "invalid_api_key"_L1,
        "Incorrect API key provided: ca***ey. You can find your API key at "
        "https://platform.openai.com/account/api-keys."_L1},
    Failure{403, "invalid_request_error"_L1, QLatin1StringView(),
        "Your organization must be verified to use the model `gpt-image-1`."_L1},
    Failure{404, "invalid_request_error"_L1, "model_not_found"_L1,
        "The model does not exist or you do not have access to it."_L1},
    Failure{429, "requests"_L1, "rate_limit_exceeded"_L1,
        "Rate limit reached for images per minute. Please try again in 12s."_L1},
    Failure{500, "server_error"_L1, QLatin1StringView(),
        "The server failed while it worked on your request."_L1},
    Failure{503, "server_error"_L1, QLatin1StringView(), "The engine is currently overloaded."_L1},
};

HttpResponse failure(int status, const Failure &entry)
{
    const QJsonValue code = entry.code.isNull() ? QJsonValue() : QJsonValue(QString(entry.code));
    return jsonResponse(
        {{u"error"_s,
            QJsonObject{{u"message"_s, QString(entry.message)}, {u"type"_s, QString(entry.type)},
                {u"param"_s, QJsonValue::Null}, {u"code"_s, code}}}},
        status);
}

/// "1536x1024" and the like; "auto" is the square.
QSize sizeFor(const QString &text)
{
    const auto sides = (text == u"auto" ? u"1024x1024"_s : text).split(u'x');
    const QSize size(sides.value(0).toInt(), sides.value(1).toInt());
    const bool fits = sides.size() == 2 && std::min(size.width(), size.height()) >= 16
        && std::max(size.width(), size.height()) <= 3840;
    return fits ? size : QSize();
}

} // namespace

tl::expected<Order, HttpResponse> OpenAIFormat::order(
    const HttpRequest &, const QJsonObject &body) const
{
    if (!body[u"prompt"].isString()) {
        return tl::unexpected(failure(400,
            {400, "invalid_request_error"_L1, "missing_required_parameter"_L1,
                "Missing required parameter: 'prompt'."_L1}));
    }
    const QSize size = sizeFor(body[u"size"].toString(u"auto"_s));
    if (size.isEmpty()) {
        return tl::unexpected(failure(400,
            {400, "invalid_request_error"_L1, "invalid_value"_L1, "Invalid value for 'size'."_L1}));
    }
    return Order{.prompt = body[u"prompt"].toString(),
        .model = body[u"model"].toString(),
        .size = size,
        .format = body[u"output_format"] == u"jpeg"_s ? PictureFormat::Jpeg : PictureFormat::Png,
        .original = {}};
}

QJsonObject OpenAIFormat::answer(const Order &order, const Picture &picture, Shape shape) const
{
    const QString size
        = QString::number(order.size.width()) + u'x' + QString::number(order.size.height());
    QJsonObject result{{u"created"_s, 1760000000}, {u"background"_s, u"opaque"_s},
        {u"output_format"_s, picture.format == PictureFormat::Png ? u"png"_s : u"jpeg"_s},
        {u"quality"_s, u"high"_s}, {u"size"_s, size},
        {u"usage"_s,
            QJsonObject{
                {u"input_tokens"_s, 12}, {u"output_tokens"_s, 6208}, {u"total_tokens"_s, 6220}}}};
    const QJsonValue list = data(picture, shape,
        shape == Shape::TextThenImage ? QJsonObject{{u"revised_prompt"_s, order.prompt}}
                                      : QJsonObject());
    if (!list.isUndefined()) {
        result[u"data"_s] = list;
    }
    return result;
}

HttpResponse OpenAIFormat::keyMissing() const
{
    return failure(401,
        {401, "invalid_request_error"_L1, QLatin1StringView(),
            "The request carries no API key."_L1});
}

HttpResponse OpenAIFormat::error(int status) const
{
    const auto *found = std::ranges::find_if(
        Failures, [&](const Failure &entry) { return entry.status == status; });
    HttpResponse response = failure(status, found == Failures.end() ? Failures.front() : *found);
    if (status == 429) {
        response.headers = {{"Retry-After", "12"}, {"x-ratelimit-limit-requests", "5"},
            {"x-ratelimit-remaining-requests", "0"}};
    }
    return response;
}

HttpResponse OpenAIFormat::blocked() const
{
    return failure(400,
        {400, "image_generation_user_error"_L1, "moderation_blocked"_L1,
            "Your request was rejected by the safety system."_L1});
}

} // namespace imageservice
