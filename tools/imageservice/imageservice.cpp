#include "imageservice/imageservice.h"

#include "imageservice/painting/painter.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QPromise>

using namespace Qt::StringLiterals;

namespace imageservice {

namespace {

HttpResponse notFound(const HttpRequest &request)
{
    const QString what = QString::fromLatin1(request.method + ' ' + request.target);
    return jsonResponse(
        {{u"error"_s,
            QJsonObject{{u"code"_s, 404}, {u"message"_s, u"There is no "_s + what + u" here."_s},
                {u"status"_s, u"NOT_FOUND"_s}}}},
        404);
}

HttpResponse gatewayPage(int status)
{
    return {.status = status,
        .contentType = "text/html",
        .body = "<html><head><title>502 Bad Gateway</title></head><body><h1>502 Bad "
                "Gateway</h1></body></html>"};
}

bool holdsPicture(Shape shape)
{
    switch (shape) {
    case Shape::EmptyData:
    case Shape::NullData:
    case Shape::NoCandidates:
    case Shape::NoContent:
    case Shape::TextOnly:
        return false;
    default:
        return true;
    }
}

/// Absent where the picture to make larger is none.
std::optional<Picture> pictureFor(const Order &order, const Behaviour &behaviour)
{
    const PictureFormat format = behaviour.format.value_or(order.format);
    if (!holdsPicture(behaviour.shape)) {
        return Picture{format, {}};
    }
    if (!behaviour.isPicture) {
        return Picture{format, "These words stand where a picture should be."};
    }
    const QImage image = order.original ? upscaled(*order.original)
                                        : painted(sceneFor(order.prompt, order.model), order.size);
    if (image.isNull()) {
        return {};
    }
    Picture picture = encoded(image, format);
    // Readers of pictures ignore what follows the end; base64 makes 4 bytes of 3.
    const qsizetype wanted = behaviour.atLeast / 4 * 3;
    picture.bytes.append(std::max<qsizetype>(wanted - picture.bytes.size(), 0), '\0');
    return picture;
}

HttpResponse pictureResponse(
    const WireFormat &format, const Order &order, const Behaviour &behaviour)
{
    const auto picture = pictureFor(order, behaviour);
    if (!picture) {
        return format.error(400);
    }
    QJsonObject answer = format.answer(order, *picture, behaviour.shape);
    if (behaviour.errorBeside == Behaviour::ErrorBeside::Object) {
        answer[u"error"_s] = QJsonObject{
            {u"code"_s, 500}, {u"message"_s, u"A picture came, and an error with it."_s}};
    } else if (behaviour.errorBeside == Behaviour::ErrorBeside::Text) {
        answer[u"error"_s] = u"A picture came, and a complaint with it."_s;
    }
    if (behaviour.reply == Behaviour::Reply::Array) {
        return {.body = QJsonDocument(QJsonArray{answer}).toJson(QJsonDocument::Compact)};
    }
    return jsonResponse(answer);
}

HttpResponse replyOf(const WireFormat &format, const Order &order, const Behaviour &behaviour)
{
    switch (behaviour.reply) {
    case Behaviour::Reply::Error:
        return format.error(behaviour.status);
    case Behaviour::Reply::Blocked:
        return format.blocked();
    case Behaviour::Reply::Html:
        return gatewayPage(behaviour.status);
    case Behaviour::Reply::Nothing:
        return {};
    case Behaviour::Reply::Picture:
    case Behaviour::Reply::Array:
        break;
    }
    const bool arrives
        = behaviour.delivery == Delivery::Whole || behaviour.delivery == Delivery::Cut;
    return arrives ? pictureResponse(format, order, behaviour) : HttpResponse{};
}

} // namespace

ImageService::ImageService(std::optional<Recorder> recorder) : m_recorder(std::move(recorder)) { }

QFuture<HttpResponse> ImageService::handle(const HttpRequest &request)
{
    const int number = m_recorder ? m_recorder->nextNumber() : 0;
    const auto promise = std::make_shared<QPromise<HttpResponse>>();
    m_threads.start([this, promise, number, request] {
        promise->start();
        promise->addResult(answer(number, request));
        promise->finish();
    });
    return promise->future();
}

HttpResponse ImageService::answer(int number, const HttpRequest &request) const
{
    if (m_recorder && !m_recorder->write(number, request)) {
        return jsonResponse(
            {{u"error"_s, QJsonObject{{u"message"_s, u"The request could not be recorded."_s}}}},
            500);
    }
    const QJsonObject body = QJsonDocument::fromJson(request.body).object();
    const WireFormat *format = wireFormatFor(request, body);
    if (!format) {
        return notFound(request);
    }
    const QByteArray key = format->key(request);
    if (key.isEmpty()) {
        return format->keyMissing();
    }
    const auto order = format->order(request, body);
    if (!order) {
        return order.error();
    }
    const Behaviour behaviour = behaviourFor(key, order->original.has_value());
    HttpResponse response = replyOf(*format, *order, behaviour);
    response.status = behaviour.sentStatus.value_or(response.status);
    response.delivery = behaviour.delivery;
    response.delay = behaviour.delay;
    return response;
}

} // namespace imageservice
