#pragma once

#include "providers/imageprovider.h"

#include <QByteArray>
#include <QLatin1StringView>
#include <QString>

#include <string_view>

namespace providers {

/// What is peculiar to the answers of one service.
struct AnswerFormat
{
    enum class Image {
        InCandidates, ///< candidates[0].content.parts[the first with inlineData].inlineData
        InData, ///< data[0].b64_json
    };

    Image image;
    /// The extension to save the image under; the MIME type is empty where the service names none.
    QString (*extension)(std::string_view mimeType);
    /// The part of the image's text that is base64.
    std::string_view (*base64)(std::string_view text) = [](std::string_view text) { return text; };
    QLatin1StringView unreadable{"Failed to parse response"};
    QLatin1StringView noImage{"No image in response"};
    QLatin1StringView undecodable{"No image in response"};
    /// Stands before the service's own message.
    QLatin1StringView errorPrefix{};
};

/// The image of a service's answer, or what the answer says instead: first whether it is a JSON
/// object at all, from its first byte to its last, then the service's own error, then the image.
///
/// The image is decoded in the memory of @p body, so a body that nobody else holds costs none.
[[nodiscard]] ImageResult readAnswer(QByteArray body, const AnswerFormat &format);

/// "png" for a MIME type with "png" in it, "jpg" for every other.
QString extensionForMimeType(std::string_view mimeType);

} // namespace providers
