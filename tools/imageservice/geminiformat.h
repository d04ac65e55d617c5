#pragma once

#include "imageservice/wireformat.h"

namespace imageservice {

/// Google Gemini's content generation, for new pictures and for larger ones.
class GeminiFormat : public WireFormat
{
public:
    QByteArray key(const HttpRequest &request) const override;
    tl::expected<Order, HttpResponse> order(
        const HttpRequest &request, const QJsonObject &body) const override;
    QJsonObject answer(const Order &order, const Picture &picture, Shape shape) const override;
    HttpResponse keyMissing() const override;
    HttpResponse error(int status) const override;
    HttpResponse blocked() const override;
};

} // namespace imageservice
