#pragma once

#include "imageservice/httpmessage.h"
#include "imageservice/picturefile.h"

#include <QJsonObject>
#include <QSize>
#include <QString>

#include <optional>

#include <tl/expected.hpp>

namespace imageservice {

/// What a request asks for.
struct Order
{
    QString prompt;
    QString model;
    QSize size;
    PictureFormat format = PictureFormat::Png;
    /// The encoded picture to make larger; absent where a new one is to be painted.
    std::optional<QByteArray> original;
};

/// What an answer looks like when all went well, or not quite.
enum class Shape {
    Image,
    TextThenImage,
    DataUrl,
    EmptyData,
    NullData,
    BadBase64,
    NoCandidates,
    NoContent,
    TextOnly,
    NullThenImage,
    SecondCandidate,
};

/// How one service speaks: reads its requests and writes its answers. Stateless.
class WireFormat
{
public:
    WireFormat() = default;
    WireFormat(const WireFormat &) = delete;
    WireFormat &operator=(const WireFormat &) = delete;
    virtual ~WireFormat() = default;

    /// The key that came with the request; null where none did.
    virtual QByteArray key(const HttpRequest &request) const = 0;
    /// The order in the request, or the service's answer to a bad one.
    virtual tl::expected<Order, HttpResponse> order(
        const HttpRequest &request, const QJsonObject &body) const = 0;
    virtual QJsonObject answer(const Order &order, const Picture &picture, Shape shape) const = 0;
    /// The answer to a request without a key.
    virtual HttpResponse keyMissing() const = 0;
    /// An error of the service itself, with its usual text.
    virtual HttpResponse error(int status) const = 0;
    /// The answer to a prompt that the service refuses to draw.
    virtual HttpResponse blocked() const = 0;

protected:
    /// The picture as the text that @p shape asks for.
    static QString imageText(const Picture &picture, Shape shape);
};

/// The service that a request is meant for; null where it is none of the three. @p body tells the
/// two apart that share a path.
const WireFormat *wireFormatFor(const HttpRequest &request, const QJsonObject &body);

/// @p object as the body of an answer.
HttpResponse jsonResponse(const QJsonObject &object, int status = 200);

} // namespace imageservice
