#pragma once

#include "imageservice/wireformat.h"

namespace imageservice {

/// What the image services of xAI and OpenAI have in common: a bearer key, and a list of pictures
/// in "data" of which each is a text "b64_json".
class ImagesFormat : public WireFormat
{
public:
    QByteArray key(const HttpRequest &request) const override;

protected:
    /// The list for @p shape; absent where the answer is to have none. @p extra goes into each
    /// element that has a picture.
    static QJsonValue data(const Picture &picture, Shape shape, const QJsonObject &extra);
};

} // namespace imageservice
