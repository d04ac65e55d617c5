#pragma once

#include "providers/imageprovider.h"

#include <memory>

namespace providers {

class HttpExchange;

/// The one further call that brings an image to 4K: Gemini draws it again, larger.
class Upscaler
{
public:
    Upscaler(std::shared_ptr<HttpExchange> exchange, const QString &geminiBaseUrl);

    /// @p ext is the extension that came with @p bytes; the result's may differ.
    /// Same thread and completion rules as ImageProvider::generate().
    QCoro::Task<ImageResult> upscale(QByteArray bytes, QString ext, QString geminiApiKey) const;

    static QByteArray requestBody(const QByteArray &bytes, const QString &ext);
    static ImageResult readAnswer(QByteArray body);

private:
    std::shared_ptr<HttpExchange> m_exchange;
    QString m_url;
};

} // namespace providers
