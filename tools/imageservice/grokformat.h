#pragma once

#include "imageservice/imagesformat.h"

namespace imageservice {

/// xAI's image generation. Its errors are texts, not objects.
class GrokFormat : public ImagesFormat
{
public:
    tl::expected<Order, HttpResponse> order(
        const HttpRequest &request, const QJsonObject &body) const override;
    QJsonObject answer(const Order &order, const Picture &picture, Shape shape) const override;
    HttpResponse keyMissing() const override;
    HttpResponse error(int status) const override;
    HttpResponse blocked() const override;
};

} // namespace imageservice
